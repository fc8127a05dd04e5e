#include "MarkdownEngine/Parser/BlockReparser.h"

#include "MarkdownEngine/Core/TextCharacters.h"
#include "MarkdownEngine/Parser/BlockTokenizer.h"

#include <algorithm>

namespace velmo::markdown {

namespace {

// Just past the LF that ends the line holding `from`; the text's end on the last line.
qsizetype lineEnd(QStringView text, qsizetype from)
{
    const qsizetype newline = text.indexOf(u'\n', from);
    return newline < 0 ? text.size() : newline + 1;
}

// Whether the walk stood at block i's first line. A run of lines at several quote depths is
// one step that makes a paragraph per depth, and the walk never stood between those.
bool walkStoodAt(const std::vector<MarkdownBlock>& blocks, size_t i)
{
    if (i == 0 || i >= blocks.size())
        return true;
    const MarkdownBlock& before = blocks[i - 1];
    const MarkdownBlock& block = blocks[i];
    return !(block.is<block_kind::Paragraph>() && before.is<block_kind::Paragraph>()
             && before.range.upperBound() == block.range.location);
}

void moveBlock(MarkdownBlock& block, int delta)
{
    block.range.location += delta;
    block.contentRange.location += delta;
    // A directive's opener marker is relative to its line and sorts first.
    const bool skipsFirst = block.is<block_kind::Directive>();
    for (auto marker = block.markerRanges.begin() + (skipsFirst && !block.markerRanges.isEmpty() ? 1 : 0);
         marker != block.markerRanges.end(); ++marker)
        marker->location += delta;
    if (auto* item = std::get_if<block_kind::ListItem>(&block.kind)) {
        item->marker.markerRange.location += delta;
        item->marker.contentStart += delta;
    } else if (auto* table = std::get_if<block_kind::Table>(&block.kind)) {
        table->table.range.location += delta;
        table->table.separatorRange.location += delta;
        for (MarkdownSourceRange& row : table->table.rowRanges)
            row.location += delta;
        for (std::vector<MarkdownTableCell>& row : table->table.rows) {
            for (MarkdownTableCell& cell : row)
                cell.range.location += delta;
        }
    }
    for (MarkdownBlock& child : block.children)
        moveBlock(child, delta);
    block.inlines.shift(delta);
}

// Whether the old text between blocks of the replaced run holds anything but blank lines: a
// link definition, which adds no block.
bool gapsHoldText(const MarkdownDocument& old, size_t first, size_t end, int from, int to)
{
    const QStringView text = old.text;
    int at = from;
    for (size_t i = first; i <= end; ++i) {
        const int next = i < end ? old.blocks[i].range.location : to;
        if (!chars::trimmed(text.mid(at, next - at)).isEmpty())
            return true;
        if (i < end)
            at = old.blocks[i].range.upperBound();
    }
    return false;
}

bool holdsFootnoteDefinition(const std::vector<MarkdownBlock>& blocks, size_t first, size_t end)
{
    return std::any_of(blocks.begin() + qsizetype(first), blocks.begin() + qsizetype(end),
                       [](const MarkdownBlock& b) { return b.is<block_kind::FootnoteDefinition>(); });
}

}

MarkdownDocument BlockReparser::reparse(MarkdownDocument&& old, const QString& text, MarkdownDocumentChange& change)
{
    const int oldLength = int(old.text.size());
    const int delta = int(text.size()) - oldLength;
    const auto parseWhole = [&] {
        MarkdownDocument parsed = BlockTokenizer::document(text, old.options);
        change = {0, old.blocks.size(), parsed.blocks.size(), delta, 0, oldLength};
        return parsed;
    };
    const chars::Difference edit = chars::difference(old.text, text);
    if (edit.start == edit.beforeEnd && edit.start == edit.afterEnd) {
        change = MarkdownDocumentChange::none(old.blocks.size(), oldLength);
        old.text = text;
        return std::move(old);
    }
    // An edit of most of the note gains nothing from the walk's bookkeeping.
    if (2 * (edit.afterEnd - edit.start) > text.size())
        return parseWhole();

    // The blocks kept: a paragraph looks two lines past its last one (a table's delimiter row
    // ends it), every other block less, so those lines must lie before the edited one.
    const QStringView before = old.text;
    const qsizetype editLine = edit.start == 0 ? 0 : before.lastIndexOf(u'\n', edit.start - 1) + 1;
    const std::vector<MarkdownBlock>& blocks = old.blocks;
    size_t kept = size_t(std::partition_point(blocks.begin(), blocks.end(), [&](const MarkdownBlock& b) {
                             const qsizetype next = b.range.upperBound();
                             return next < before.size() && lineEnd(before, next) < editLine;
                         })
                         - blocks.begin());
    while (!walkStoodAt(blocks, kept))
        --kept;
    const int start = kept == 0 ? 0 : blocks[kept - 1].range.upperBound();
    if (old.unclosedOpenerAt < start)
        return parseWhole();

    // Lines are split only as far as the walk may need them: a window past the edit, grown
    // until the walk meets the old one.
    const qsizetype changedEnd = edit.afterEnd;
    qsizetype windowEnd = lineEnd(text, std::min<qsizetype>(text.size(), changedEnd + 4096));
    size_t oldEnd = blocks.size();
    int oldStop = oldLength;
    std::vector<MarkdownBlock> region;
    int regionUnclosed = std::numeric_limits<int>::max();
    while (true) {
        BlockTokenizer tokenizer(text, old.options, start, windowEnd);
        const std::vector<BlockTokenizer::SourceLine>& lines = tokenizer.lines();
        const bool wholeRest = windowEnd >= text.size();
        const auto stop = [&](int line) {
            const int at = lines[size_t(line)].fullRange.location;
            // The blocks before looked two lines ahead at most; those must be the text's.
            if (at < changedEnd || (!wholeRest && line + 2 > int(lines.size())))
                return false;
            const int oldAt = at - delta;
            // Front matter is looked for only at the very start.
            if (at == 0 || oldAt == 0)
                return false;
            const auto found = std::lower_bound(blocks.begin() + qsizetype(kept), blocks.end(), oldAt,
                                                [](const MarkdownBlock& b, int at) { return b.range.location < at; });
            if (found == blocks.end() || found->range.location != oldAt || !walkStoodAt(blocks, size_t(found - blocks.begin())))
                return false;
            oldEnd = size_t(found - blocks.begin());
            oldStop = oldAt;
            return true;
        };
        region = tokenizer.parseBlocks(stop);
        if (tokenizer.readLinkDefinition() || !tokenizer.footnoteDefinitions().isEmpty())
            return parseWhole();
        const bool met = tokenizer.stoppedAt() < int(lines.size());
        // An opener that found no closer in the window might find one past it.
        const bool trusted = wholeRest || tokenizer.unclosedOpenerAt() == std::numeric_limits<int>::max();
        if ((met && trusted) || wholeRest) {
            if (!met) {
                oldEnd = blocks.size();
                oldStop = oldLength;
            }
            regionUnclosed = tokenizer.unclosedOpenerAt();
            BlockTokenizer::attachQuoteMarkers(region, lines, text);
            break;
        }
        oldEnd = blocks.size();
        oldStop = oldLength;
        windowEnd = lineEnd(text, std::min<qsizetype>(text.size(), start + 4 * (windowEnd - start)));
    }
    if (holdsFootnoteDefinition(blocks, kept, oldEnd)
        || (!old.linkDefinitions.isEmpty() && gapsHoldText(old, kept, oldEnd, start, oldStop)))
        return parseWhole();

    // An unclosed opener among the replaced blocks hid whether the kept ones after it hold one;
    // the first kept line after the edit stands for them.
    int unclosed = old.unclosedOpenerAt;
    if (unclosed != std::numeric_limits<int>::max())
        unclosed = std::max(unclosed, oldStop) + delta;
    unclosed = std::min(unclosed, regionUnclosed);

    MarkdownDocument document;
    document.text = text;
    document.options = old.options;
    document.linkDefinitions = std::move(old.linkDefinitions);
    document.footnoteDefinitions = std::move(old.footnoteDefinitions);
    document.unclosedOpenerAt = unclosed;
    BlockTokenizer::attachInlines(region, document);
    document.blocks = std::move(old.blocks);
    std::vector<MarkdownBlock>& all = document.blocks;
    // One move of the tail, whichever run is longer.
    const size_t replaced = oldEnd - kept;
    if (region.size() > replaced)
        all.insert(all.begin() + qsizetype(oldEnd), region.size() - replaced, MarkdownBlock());
    else
        all.erase(all.begin() + qsizetype(kept + region.size()), all.begin() + qsizetype(oldEnd));
    std::move(region.begin(), region.end(), all.begin() + qsizetype(kept));
    const size_t newEnd = kept + region.size();
    if (delta != 0) {
        for (size_t i = newEnd; i < all.size(); ++i)
            moveBlock(all[i], delta);
    }
    change = {kept, oldEnd, newEnd, delta, start, oldStop};
    return document;
}

}
