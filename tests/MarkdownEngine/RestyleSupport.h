#pragma once

#include "MarkdownEngine/Core/MarkdownDocument.h"
#include "MarkdownEngine/Core/MarkdownDocumentChange.h"
#include "MarkdownEngine/Styling/MarkdownASTStyler.h"
#include "MarkdownEngine/Styling/MarkdownFragmentDump.h"

#include <algorithm>
#include <string>

namespace velmo::test {

// The change the reparse reports for the edit that made `after`'s text from `before`'s.
inline markdown::MarkdownDocumentChange changeBetween(const markdown::MarkdownDocument& before,
                                                      const markdown::MarkdownDocument& after)
{
    markdown::MarkdownDocumentChange change;
    markdown::MarkdownDocument copy = before;
    static_cast<void>(markdown::MarkdownDocument::reparse(std::move(copy), after.text, change));
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
