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

// A column of one row is everything between its two pipes, padding included, so that empty
// cells and cells padded in the source keep their place. The room a column lacks goes to the
// segment's last character (its opening pipe when it holds nothing), as letter spacing.
void MarkdownTableColumnLayout::apply(MarkdownStyledText& text, int offset,
                                      const std::vector<const MarkdownTable*>& tables, const QString& note)
{
    struct Segment {
        int column;
        double width;
        int kernAt;
    };
    std::vector<MarkdownTextAttributes> kerns;
    std::vector<MarkdownSourceRange> ranges;
    std::vector<Segment> segments;
    for (const MarkdownTable* table : tables) {
        if (!isWellFormed(*table, note))
            continue;
        const int columnCount = int(table->alignments.size());
        std::vector<double> columns(size_t(columnCount), 0.0);
        segments.clear();
        for (size_t r = 0; r < table->rowRanges.size(); ++r) {
            if (r == 1)
                continue; // the delimiter row is drawn as a rule
            const MarkdownSourceRange row = table->rowRanges[r].intersection({0, int(note.size())});
            const std::vector<int> pipes = unescapedPipes(row, note);
            const int rowEnd = int(chars::lineAt(note, row.location).contentsEnd);
            for (int c = 0; c < columnCount && size_t(c) < pipes.size(); ++c) {
                const int start = pipes[size_t(c)] + 1;
                const int end = size_t(c) + 1 < pipes.size() ? pipes[size_t(c) + 1] : std::min(rowEnd, row.upperBound());
                if (end < start)
                    break;
                const double width = measure(text, offset, MarkdownSourceRange::fromBounds(start, end));
                segments.push_back({c, width, end > start ? end - 1 : start - 1});
                columns[size_t(c)] = std::max(columns[size_t(c)], width);
            }
        }
        for (const Segment& segment : segments) {
            const double lack = columns[size_t(segment.column)] - segment.width;
            if (lack <= 0.01)
                continue;
            kerns.emplace_back().setKern(float(lack));
            ranges.push_back({segment.kernAt - offset, 1});
        }
    }
    std::vector<MarkdownStyledText::Addition> additions;
    additions.reserve(ranges.size());
    for (size_t i = 0; i < ranges.size(); ++i)
        additions.push_back({ranges[i], &kerns[i], nullptr});
    text.add(additions);
}

}
