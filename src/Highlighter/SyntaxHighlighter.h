#pragma once

#include "Highlighter/SyntaxLanguage.h"
#include "Highlighter/SyntaxPalette.h"
#include "Highlighter/SyntaxToken.h"

#include <QString>
#include <QStringList>
#include <QStringView>
#include <vector>

namespace velmo::highlighter {

// Turns a fence's code and language name into styled text. It holds no Qt font or colour
// types, so an adapter maps `StyledCode` onto whatever the text surface takes.
struct SyntaxHighlighter {
    // A font by description; the adapter picks the first family installed.
    struct Font {
        QStringList families = {QStringLiteral("Noto Sans Mono"), QStringLiteral("DejaVu Sans Mono")};
        double pointSize = 12.0;
        friend bool operator==(const Font&, const Font&) = default;
    };

    // A coloured span of `StyledCode::text`; text outside every run has `plainColor`.
    struct Run {
        SyntaxToken::Range range;
        SyntaxTokenKind kind;
        SyntaxColor color;
        friend bool operator==(const Run&, const Run&) = default;
    };

    struct StyledCode {
        QString text; // the code with its tabs widened
        std::vector<Run> runs; // in order, not overlapping
        SyntaxColor plainColor;
        Font font;
    };

    SyntaxPalette palette = SyntaxPalette::forAppearance(SyntaxPalette::Appearance::light);
    Font font;
    int tabWidth = 4;

    [[nodiscard]] StyledCode attributedCode(QStringView code, QStringView languageName) const;
    [[nodiscard]] SyntaxColor color(SyntaxTokenKind kind) const { return palette.color(kind); }

    // Tabs become spaces up to the next multiple of `tabWidth` columns (UTF-16 units since the
    // line's start).
    [[nodiscard]] static QString expanded(QStringView code, int tabWidth);
    [[nodiscard]] static QString displayName(QStringView languageName);
    [[nodiscard]] static const SyntaxLanguage& language(QStringView languageName);
};

}
