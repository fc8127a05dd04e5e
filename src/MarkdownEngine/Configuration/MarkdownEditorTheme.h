#pragma once

#include "MarkdownEngine/Configuration/ThemePatch.h"
#include "MarkdownEngine/Core/MarkdownCallout.h"

#include <QColor>
#include <map>

namespace velmo::markdown {

// The colours of the editor surface.
struct MarkdownEditorTheme {
    bool isDark = false;
    QColor background, bodyText, mutedText, disabledText, headingMarker, marker, link, incompleteLink, tag,
        findMatchHighlight, findCurrentMatchHighlight, latexLightModeText, latexDarkModeText, strikethroughColor,
        highlightColor, codeBackground, quoteBar;
    std::map<MarkdownCallout::Kind, QColor> calloutColors;

    [[nodiscard]] static MarkdownEditorTheme light();
    [[nodiscard]] static MarkdownEditorTheme dark();
    // Dark when the application's palette is dark; light with no application.
    [[nodiscard]] static MarkdownEditorTheme defaultTheme();

    [[nodiscard]] QColor latexInk() const { return isDark ? latexDarkModeText : latexLightModeText; }
    [[nodiscard]] static QColor defaultTag(bool isDark);
    [[nodiscard]] QColor color(MarkdownCallout callout) const;
    [[nodiscard]] MarkdownEditorTheme overriding(const ThemePatch& patch) const;

    friend bool operator==(const MarkdownEditorTheme&, const MarkdownEditorTheme&) = default;
};

}
