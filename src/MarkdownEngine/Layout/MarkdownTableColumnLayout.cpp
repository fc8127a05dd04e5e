#include "MarkdownEngine/Layout/MarkdownTableColumnLayout.h"

#include "MarkdownEngine/Core/TextCharacters.h"

namespace velmo::markdown {

std::vector<int> MarkdownTableColumnLayout::unescapedPipes(MarkdownSourceRange row, const QString& text)
{
    std::vector<int> pipes;
    const MarkdownSourceRange r = row.intersection({0, int(text.size())});
    for (int i = r.location; i < r.upperBound(); ++i) {
        if (text.at(i) == u'|' && !(i > r.location && text.at(i - 1) == u'\\'))
            pipes.push_back(i);
    }
    return pipes;
}

bool MarkdownTableColumnLayout::isWellFormed(const MarkdownTable& table, const QString& text)
{
    if (table.alignments.empty() || table.rowRanges.size() < 2)
        return false;
    for (size_t r = 0; r < table.rowRanges.size(); ++r) {
        if (r == 1)
            continue;
        const MarkdownSourceRange row = table.rowRanges[r].intersection({0, int(text.size())});
        const std::vector<int> pipes = unescapedPipes(row, text);
        if (pipes.empty())
            return false;
        for (int i = row.location; i < pipes.front(); ++i) {
            if (!chars::isWhitespace(text.at(i).unicode()))
                return false;
        }
    }
    return true;
}

namespace {

// `range` is in the note; `styled` starts at `offset` in it.
double measure(const MarkdownStyledText& styled, int offset, MarkdownSourceRange range)
{
    double width = 0;
    int at = range.location - offset;
    const int end = range.upperBound() - offset;
    while (at < end) {
        const MarkdownStyledText::Run* run = styled.runAt(at);
        if (!run)
            break;
        const int runEnd = std::min(run->range.upperBound(), end);
        if (!run->attributes.hidden)
            width += run->attributes.font.width(styled.text().mid(at, runEnd - at));
        at = runEnd;
    }
    return width;
}

}

void MarkdownTableColumnLayout::apply(MarkdownStyledText& text, int offset,
                                      const std::vector<const MarkdownTable*>& tables, const QString& note)
{
    std::vector<MarkdownTextAttributes> kerns;
    std::vector<MarkdownSourceRange> ranges;
    for (const MarkdownTable* table : tables) {
        if (!isWellFormed(*table, note))
            continue;
        std::vector<double> columns(table->alignments.size(), 0.0);
        std::vector<std::vector<double>> widths;
        for (const auto& row : table->rows) {
            auto& rowWidths = widths.emplace_back();
            for (const MarkdownTableCell& cell : row) {
                const double w = cell.range.length > 0 ? measure(text, offset, cell.range) : 0;
                rowWidths.push_back(w);
                if (size_t(cell.column) < columns.size())
                    columns[size_t(cell.column)] = std::max(columns[size_t(cell.column)], w);
            }
        }
        for (size_t r = 0; r < table->rows.size(); ++r) {
            for (size_t c = 0; c < table->rows[r].size(); ++c) {
                const MarkdownTableCell& cell = table->rows[r][c];
                if (cell.range.length <= 0 || size_t(cell.column) >= columns.size())
                    continue;
                const double lack = columns[size_t(cell.column)] - widths[r][c];
                if (lack <= 0.01)
                    continue;
                kerns.emplace_back().setKern(float(lack));
                ranges.push_back({cell.range.upperBound() - 1 - offset, 1});
            }
        }
    }
    std::vector<MarkdownStyledText::Addition> additions;
    additions.reserve(ranges.size());
    for (size_t i = 0; i < ranges.size(); ++i)
        additions.push_back({ranges[i], &kerns[i], nullptr});
    text.add(additions);
}

}
