#pragma once

#include "MarkdownEngine/Core/MarkdownSourceRange.h"

namespace velmo::markdown {

// One line of a note as the editing commands see it, in UTF-16 units.
struct MarkdownSourceLine {
    MarkdownSourceRange range;        // the line with its terminator
    MarkdownSourceRange contentRange; // without the terminator
    int index = 0;

    constexpr int start() const { return range.location; }
    constexpr int contentEnd() const { return contentRange.upperBound(); }
    constexpr bool contains(int i) const { return range.contains(i); }
};

}
