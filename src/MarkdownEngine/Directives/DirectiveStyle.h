#pragma once

#include "MarkdownEngine/Directives/DirectiveFontTransform.h"

#include <QTextCharFormat>

namespace velmo::markdown {

// What a directive does to its text on screen: a font change and character attributes.
struct DirectiveStyle {
    DirectiveFontTransform font;
    QTextCharFormat attributes;

    [[nodiscard]] static DirectiveStyle inherit() { return {}; }
    [[nodiscard]] bool isInherit() const { return font.isIdentity() && attributes.properties().isEmpty(); }
};

}
