#include "MarkdownEngine/Core/MarkdownBlock.h"

#include <atomic>

namespace velmo::markdown {

namespace {
// Relaxed: ids only tell apart the blocks of one parse, and parses run on several threads.
std::atomic<int> blockCounter{0};
}

int MarkdownBlock::nextId()
{
    return blockCounter.fetch_add(1, std::memory_order_relaxed) + 1;
}

MarkdownBlock::MarkdownBlock(MarkdownBlockKind kind, MarkdownSourceRange range,
                             std::optional<MarkdownSourceRange> contentRange, MarkdownMarkerRanges markerRanges,
                             std::vector<MarkdownBlock> children, int quoteDepth, int listDepth)
    : id(nextId())
    , kind(std::move(kind))
    , range(range)
    , contentRange(contentRange.value_or(range))
    , markerRanges(std::move(markerRanges))
    , children(std::move(children))
    , quoteDepth(quoteDepth)
    , listDepth(listDepth)
{
}

std::optional<QString> MarkdownBlock::language() const
{
    if (const auto* fence = as<block_kind::Fence>())
        return fence->language;
    return std::nullopt;
}

std::optional<int> MarkdownBlock::headingLevel() const
{
    if (const auto* heading = as<block_kind::Heading>())
        return heading->level;
    return std::nullopt;
}

const char* blockKindName(const MarkdownBlockKind& kind)
{
    static constexpr const char* names[] = {"heading",   "thematicBreak",      "blockquote",  "listItem",
                                            "fence",     "table",              "directive",   "footnoteDefinition",
                                            "frontMatter", "paragraph",        "latexBlock",  "htmlBlock"};
    static_assert(std::size(names) == std::variant_size_v<MarkdownBlockKind>);
    return names[kind.index()];
}

}
