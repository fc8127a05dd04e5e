#pragma once

#include "MarkdownEngine/Core/MarkdownCallout.h"

#include <QColor>
#include <map>
#include <optional>

namespace velmo::markdown {

// Colours a theme file lays over a base theme; whatever is absent stays as the base has it.
struct ThemePatch {
    std::optional<QColor> background, bodyText, mutedText, disabledText, headingMarker, marker, link,
        incompleteLink, findMatchHighlight, findCurrentMatchHighlight, strikethroughColor, highlightColor,
        codeBackground, quoteBar, tag;
    std::map<MarkdownCallout::Kind, QColor> calloutColors;

    [[nodiscard]] bool isEmpty() const
    {
        return !background && !bodyText && !mutedText && !disabledText && !headingMarker && !marker && !link
            && !incompleteLink && !findMatchHighlight && !findCurrentMatchHighlight && !strikethroughColor
            && !highlightColor && !codeBackground && !quoteBar && !tag && calloutColors.empty();
    }
};

}
