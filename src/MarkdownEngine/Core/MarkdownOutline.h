#pragma once

#include "MarkdownEngine/Core/MarkdownSourceRange.h"
#include "MarkdownEngine/Core/OutlineEntry.h"

#include <QStringView>
#include <optional>
#include <vector>

namespace velmo::markdown {

// Headings read from raw text: cheaper than a parse, and what heading links resolve against.
// Skips fenced code; setext and quoted headings are no entries.
class MarkdownOutline {
public:
    // The ATX level of a trimmed line: a run of 1 to 6 `#` followed by the end, a space or a tab.
    [[nodiscard]] static std::optional<int> headingLevel(QStringView trimmed);
    [[nodiscard]] static std::vector<OutlineEntry> entries(QStringView text);
    // Equal titles first, ignoring case; otherwise the first title containing the query.
    [[nodiscard]] static std::optional<OutlineEntry> entry(QStringView matching, QStringView text);
    [[nodiscard]] static MarkdownSourceRange range(const OutlineEntry& of, QStringView text);
};

}
