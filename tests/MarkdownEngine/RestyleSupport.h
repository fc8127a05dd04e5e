#pragma once

#include "MarkdownEngine/Core/MarkdownDocument.h"
#include "MarkdownEngine/Core/MarkdownDocumentChange.h"
#include "MarkdownEngine/Styling/MarkdownASTStyler.h"
#include "MarkdownEngine/Styling/MarkdownFragmentDump.h"

#include <algorithm>
#include <string>

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

// Where two passes differ, or an empty string: fragments, the store's lists and tiles, the
// active lines, the styled text.
inline std::string difference(const markdown::MarkdownASTStyler::Result& got,
                              const markdown::MarkdownASTStyler::Result& expected, const QString& text)
{
    using namespace markdown;
    const auto& a = got.fragments.fragments();
    const auto& b = expected.fragments.fragments();
    for (size_t i = 0; i < std::max(a.size(), b.size()); ++i) {
        if (i >= a.size() || i >= b.size() || !(a[i] == b[i])) {
            const auto line = [&](const auto& list) {
                return i < list.size() ? MarkdownFragmentDump::fragmentLine(list[i], text).toStdString() : "(none)";
            };
            return "fragment " + std::to_string(i) + ": " + line(a) + "\n  instead of " + line(b);
        }
    }
    const auto lists = [](const MarkdownEditorFragmentStore& store) {
        std::vector<ptrdiff_t> indices;
        for (const auto& list : {store.decorations(), store.hitTargets()}) {
            for (const MarkdownEditorFragment* f : list)
                indices.push_back(f - store.fragments().data());
            indices.push_back(-1);
        }
        return std::tuple(indices, store.hiddenRanges(), store.tileEnds());
    };
    if (lists(got.fragments) != lists(expected.fragments))
        return "store lists";
    if (got.activeLines != expected.activeLines)
        return "active lines";
    const MarkdownStyledText x = got.attributedString.resolved(), y = expected.attributedString.resolved();
    const auto sameRun = [](const MarkdownStyledText::Run& r, const MarkdownStyledText::Run& s) {
        return r.range == s.range && r.attributes == s.attributes;
    };
    if (x.text() != y.text() || !std::equal(x.runs().begin(), x.runs().end(), y.runs().begin(), y.runs().end(), sameRun))
        return "styled text";
    return {};
}

}
