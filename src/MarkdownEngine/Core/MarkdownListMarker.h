#pragma once

#include "MarkdownEngine/Core/MarkdownListKind.h"
#include "MarkdownEngine/Core/MarkdownSourceRange.h"

namespace velmo::markdown {

struct MarkdownListMarker {
    MarkdownListKind kind;
    // A bullet's range holds the blank after it; a number's holds digits and delimiter only.
    MarkdownSourceRange markerRange;
    int contentStart = 0;
    int indent = 0; // width of the line's indentation, a tab counting 4

    bool operator==(const MarkdownListMarker&) const = default;
};

}
