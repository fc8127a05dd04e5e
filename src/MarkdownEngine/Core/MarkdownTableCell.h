#pragma once

#include "MarkdownEngine/Core/MarkdownSourceRange.h"
#include "MarkdownEngine/Core/MarkdownTableAlignment.h"

namespace velmo::markdown {

struct MarkdownTableCell {
    MarkdownSourceRange range; // trimmed of spaces; empty at the line's end for a missing cell
    int column = 0;
    int row = 0; // 0 is the header
    bool isHeader = false;
    MarkdownTableAlignment alignment = MarkdownTableAlignment::none;

    bool operator==(const MarkdownTableCell&) const = default;
};

}
