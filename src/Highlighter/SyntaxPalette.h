#pragma once

#include "Highlighter/SyntaxColor.h"
#include "Highlighter/SyntaxTokenKind.h"

namespace velmo::highlighter {

// One colour per token kind, plus the colour of uncoloured code. The built-in palettes keep
// a contrast of at least 4.5:1 on the code backgrounds of the light and dark editor themes.
struct SyntaxPalette {
    enum class Appearance { light, dark };

    SyntaxColor plain;
    SyntaxColor keyword;
    SyntaxColor type;
    SyntaxColor function;
    SyntaxColor string;
    SyntaxColor number;
    SyntaxColor comment;
    SyntaxColor attribute;
    SyntaxColor constant;
    SyntaxColor operatorSign;
    SyntaxColor tag;
    SyntaxColor insertion;
    SyntaxColor deletion;

    [[nodiscard]] static SyntaxPalette forAppearance(Appearance appearance);
    [[nodiscard]] SyntaxColor color(SyntaxTokenKind kind) const;

    friend bool operator==(const SyntaxPalette&, const SyntaxPalette&) = default;
};

}
