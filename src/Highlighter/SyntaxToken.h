#pragma once

#include "Highlighter/SyntaxTokenKind.h"

#include <QtGlobal>

namespace velmo::highlighter {

// A coloured span of code. Offsets are UTF-16 code units into the scanned text.
struct SyntaxToken {
    struct Range {
        qsizetype location = 0;
        qsizetype length = 0;

        [[nodiscard]] constexpr qsizetype end() const { return location + length; }
        friend constexpr bool operator==(const Range&, const Range&) = default;
    };

    Range range;
    SyntaxTokenKind kind = SyntaxTokenKind::keyword;

    friend constexpr bool operator==(const SyntaxToken&, const SyntaxToken&) = default;
};

}
