#pragma once

#include "MarkdownEngine/Core/MarkdownDocument.h"
#include "MarkdownEngine/Core/MarkdownDocumentChange.h"

#include <algorithm>

namespace velmo::test {

// The change a reparse reports for an edit, worked out from two full parses: the longest run
// of blocks equal in both that end before the edited lines, and the longest equal but for
// the shift that start after them. The edit replaced the old text's [editStart, editEnd).
// Notes must hold no link reference definitions or footnotes: they change inlines anywhere.
inline markdown::MarkdownDocumentChange changeBetween(const markdown::MarkdownDocument& before,
                                                      const markdown::MarkdownDocument& after, int editStart,
                                                      int editEnd)
{
    using markdown::MarkdownBlock;
    const auto same = [](const MarkdownBlock& a, const MarkdownBlock& b, int shift) {
        const auto moved = [shift](markdown::MarkdownSourceRange r) {
            return markdown::MarkdownSourceRange{r.location + shift, r.length};
        };
        return a.kind.index() == b.kind.index() && moved(a.range) == b.range && moved(a.contentRange) == b.contentRange
            && a.quoteDepth == b.quoteDepth && a.listDepth == b.listDepth
            && a.markerRanges.size() == b.markerRanges.size() && a.inlines.size() == b.inlines.size();
    };
    const QString& old = before.text;
    const int lineStart = editStart == 0 ? 0 : int(old.lastIndexOf(u'\n', editStart - 1)) + 1;
    const qsizetype newline = old.indexOf(u'\n', editEnd);
    const int lineEnd = newline < 0 ? int(old.size()) : int(newline) + 1;
    const size_t nb = before.blocks.size(), na = after.blocks.size();
    size_t first = 0;
    while (first < std::min(nb, na) && before.blocks[first].range.upperBound() <= lineStart
           && same(before.blocks[first], after.blocks[first], 0))
        ++first;
    markdown::MarkdownDocumentChange change;
    change.delta = int(after.text.size() - old.size());
    size_t kept = 0;
    while (kept < nb - first && kept < na - first && before.blocks[nb - 1 - kept].range.location >= lineEnd
           && same(before.blocks[nb - 1 - kept], after.blocks[na - 1 - kept], change.delta))
        ++kept;
    change.firstBlock = first;
    change.oldEnd = nb - kept;
    change.newEnd = na - kept;
    change.start = first > 0 ? before.blocks[first - 1].range.upperBound() : 0;
    change.oldStop = kept > 0 ? before.blocks[nb - kept].range.location : int(old.size());
    return change;
}

}
