#pragma once

#include "MarkdownEngine/Core/MarkdownBlockKind.h"
#include "MarkdownEngine/Core/MarkdownInlineList.h"
#include "MarkdownEngine/Core/MarkdownMarkerRanges.h"
#include "MarkdownEngine/Core/MarkdownSourceRange.h"

#include <optional>
#include <vector>

namespace velmo::markdown {

// One block of the flat parse. Values in the document's vector; the later passes of a parse
// (quote markers, inlines) amend them in place, nothing after the parse does.
struct MarkdownBlock {
    // From a process-wide counter: tells apart the blocks of one parse, nothing more. Not to
    // be changed after construction.
    int id = 0;
    MarkdownBlockKind kind;
    MarkdownSourceRange range;        // whole lines, terminators included
    MarkdownSourceRange contentRange; // what the inlines are parsed from
    // Sorted by location once quote markers are in; a directive's first marker is relative to
    // its trimmed line, not a document offset.
    MarkdownMarkerRanges markerRanges;
    std::vector<MarkdownBlock> children; // always empty from the tokenizer; walkers still recurse
    MarkdownInlineList inlines;
    int quoteDepth = 0; // of the block's first line
    int listDepth = 0;  // list items: indent / 2

    MarkdownBlock() = default;
    MarkdownBlock(MarkdownBlockKind kind, MarkdownSourceRange range,
                  std::optional<MarkdownSourceRange> contentRange = std::nullopt,
                  MarkdownMarkerRanges markerRanges = {}, std::vector<MarkdownBlock> children = {},
                  int quoteDepth = 0, int listDepth = 0);

    template<typename Kind>
    bool is() const { return std::holds_alternative<Kind>(kind); }
    template<typename Kind>
    const Kind* as() const { return std::get_if<Kind>(&kind); }

    [[nodiscard]] std::optional<QString> language() const;
    [[nodiscard]] std::optional<int> headingLevel() const;
    [[nodiscard]] bool isBlockquoteKind() const { return is<block_kind::Blockquote>(); }
    [[nodiscard]] int firstLineContentStart() const { return contentRange.location; }

    // The block, then its children depth first.
    template<typename Visit>
    void forEach(Visit&& visit) const
    {
        visit(*this);
        for (const MarkdownBlock& child : children)
            child.forEach(visit);
    }

    // Takes the next id; the first is 1.
    [[nodiscard]] static int nextId();
};

}
