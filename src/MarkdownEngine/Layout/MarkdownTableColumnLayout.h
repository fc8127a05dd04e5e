#pragma once

#include "MarkdownEngine/Core/MarkdownTable.h"
#include "MarkdownEngine/Styling/MarkdownStyledText.h"

#include <QString>
#include <vector>

namespace velmo::markdown {

// Lines up the pipes of well-formed tables by widening cells with kerning, measured in each
// cell's own font once all fragments are in.
class MarkdownTableColumnLayout {
public:
    MarkdownTableColumnLayout() = delete;

    // At least one alignment and two rows, and every row but the separator holds an unescaped
    // pipe with only white space before the first.
    [[nodiscard]] static bool isWellFormed(const MarkdownTable& table, const QString& text);
    // Locations of the pipes of a row not preceded by a backslash inside the row.
    [[nodiscard]] static std::vector<int> unescapedPipes(MarkdownSourceRange row, const QString& text);
    // Each cell's last character is kerned by what it lacks of its column's widest cell, so the
    // pipe after it starts where the column ends. Hidden runs take no width. `text` is the
    // stretch of `note` from `offset` on, holding every row of the tables.
    static void apply(MarkdownStyledText& text, int offset, const std::vector<const MarkdownTable*>& tables,
                      const QString& note);
};

}
