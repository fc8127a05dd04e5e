#include "MarkdownEngine/Styling/MarkdownASTStyler.h"

namespace velmo::markdown {

// The pass after an edit, in order:
// 1. Checks that the old store was made tile by tile for the old blocks; else a full pass.
// 2. Marks the blocks to style again: the edit's (grown to the list runs they border), those
//    the selection touches now or did then, and fences whose colouring may have changed;
//    more than half of them is a full pass.
// 3. Styles the marked blocks' tiles; the unmarked keep their old tiles, moved by the edit.
// 4. Checks the store order where old and new tiles meet, and splices the store.
//
// A tile holds what its block, the text up to the next block, the selection, its list run's
// gutter and its fence's colouring make of it, and nothing else: ranges are the only text
// positions fragments carry (a fence's colouring is looked up by a key with its location,
// hence the fences), so a kept tile needs only moving.

namespace {

using Role = MarkdownEditorFragmentRole;

// A fence's colouring is drawn above its code at this priority.
constexpr int colouringPriority = 6;

bool isListItem(const MarkdownBlock& block)
{
    return block.is<block_kind::ListItem>();
}

}

MarkdownASTStyler::Result MarkdownASTStyler::restyle(const Request& request, MarkdownEditorFragmentStore old,
                                                     const MarkdownDocumentChange& change,
                                                     const std::vector<MarkdownSourceRange>& stale)
{
    const MarkdownEditorConfiguration& config = *request.config;
    const std::vector<MarkdownBlock>& blocks = request.document->blocks;
    const QString& text = request.document->text;
    const size_t count = blocks.size();
    // 1. One old tile for every old block.
    const std::vector<int>& oldEnds = old.tileEnds();
    const size_t replaced = std::max(change.oldEnd, change.newEnd) - std::min(change.firstBlock, change.oldEnd);
    const bool fits = !config.rawSourceMode && count > 0 && change.firstBlock <= change.oldEnd
        && change.firstBlock <= change.newEnd && change.newEnd <= count
        && oldEnds.size() == count - change.newEnd + change.oldEnd && replaced * 2 <= count;
    if (!fits)
        return style(request);

    const auto oldIndex = [&](size_t i) { return i < change.firstBlock ? i : i - change.newEnd + change.oldEnd; };
    const auto oldTileStart = [&](size_t t) { return t == 0 ? 0 : size_t(oldEnds[t - 1]); };
    const std::vector<MarkdownEditorFragment>& oldFragments = old.fragments();

    // 2. The blocks to style again.
    std::vector<char> marked(count, 0);
    // The replaced blocks and the one before them, whose tile reaches the first of them; when
    // the edit comes before every block, the first, whose tile starts at the note's start.
    size_t from = change.firstBlock > 0 ? change.firstBlock - 1 : 0;
    size_t to = std::min(count, std::max(change.newEnd, from + 1));
    // List items share their run's gutter, and an edit can lengthen, split or join runs.
    while (from > 0 && isListItem(blocks[from - 1]))
        --from;
    while (to < count && isListItem(blocks[to]))
        ++to;
    std::fill(marked.begin() + std::ptrdiff_t(from), marked.begin() + std::ptrdiff_t(to), 1);

    const int textLength = int(text.size());
    const auto markTouching = [&](MarkdownSourceRange r) {
        // A caret at a block's edge counts: styling a block again is never wrong.
        const int start = std::clamp(r.location, 0, textLength), end = std::clamp(r.upperBound(), start, textLength);
        for (size_t i = firstBlockEndingAfter(blocks, start - 1); i < count && blocks[i].range.location <= end; ++i)
            marked[i] = 1;
    };
    // An old range in the new text: the replaced span stands for all it held. A position
    // strictly inside it touched no kept block, so it stops short of the block after.
    const auto mapped = [&](MarkdownSourceRange r) {
        const auto map = [&](int p, bool upper) {
            if (p < change.start || (upper && p == change.start))
                return p;
            if (p >= change.oldStop)
                return p + change.delta;
            return upper ? std::max(change.start, change.newStop() - 1) : change.start;
        };
        return MarkdownSourceRange::fromBounds(map(r.location, false), map(r.upperBound(), true));
    };
    const std::vector<MarkdownSourceRange> activeLines = activeLineRanges(request.selection, text);
    const std::vector<MarkdownSourceRange> selection = selectionRecord(request, activeLines);
    for (const MarkdownSourceRange& r : selection)
        markTouching(r);
    for (const MarkdownSourceRange& r : old.selection())
        markTouching(mapped(r));
    for (const MarkdownSourceRange& r : stale)
        markTouching(mapped(r));

    // A kept fence's colouring was looked up by its old key: style it again when it has one
    // now and has moved or had none, or has none now and had one.
    for (size_t i = 0; i < count; ++i) {
        if (marked[i] || !blocks[i].is<block_kind::Fence>())
            continue;
        const size_t t = oldIndex(i);
        const auto first = oldFragments.begin() + std::ptrdiff_t(oldTileStart(t));
        const auto last = oldFragments.begin() + oldEnds[t];
        const bool hadColouring = std::any_of(first, last, [](const MarkdownEditorFragment& f) {
            return f.priority == colouringPriority && f.role == Role::fence;
        });
        const bool hasColouring = request.highlightedCode && request.highlightedCode->contains(codeKey(blocks[i]));
        const bool moved = i >= change.newEnd && change.delta != 0;
        if (hasColouring ? moved || !hadColouring : hadColouring)
            marked[i] = 1;
    }

    // A selection over most of the note: the full pass is cheaper than splicing.
    if (size_t(std::count(marked.begin(), marked.end(), 1)) * 2 > count)
        return style(request);

    // 3. Runs of marked blocks styled again, runs of the others kept.
    const MarkdownExtensionRegistry registry(config.extensions);
    const DirectiveRegistry directives = directiveRegistry(config);
    BlockContext context = makeContext(request, activeLines, registry, directives);
    for (size_t i = 0; i < count; ++i) {
        if (marked[i])
            addRunGutters(context, i);
    }

    std::vector<MarkdownEditorFragmentStore::Piece> pieces;
    size_t styled = 0;
    Tile tile;
    // The last fragment so far, where it ends up, to check the order where tiles meet.
    using Key = MarkdownEditorFragmentStore::OrderKey;
    std::optional<Key> lastSoFar;
    const auto follows = [&lastSoFar](const MarkdownEditorFragment& first, int shift) {
        return !lastSoFar || lastSoFar->precedes(Key::of(first, shift));
    };
    for (size_t i = 0; i < count;) {
        size_t end = i + 1;
        // A kept run lies wholly before the edit or wholly after it.
        while (end < count && marked[end] == marked[i] && end != change.newEnd)
            ++end;
        MarkdownEditorFragmentStore::Piece piece;
        if (marked[i]) {
            piece.isNew = true;
            styled += end - i;
            for (size_t b = i; b < end; ++b) {
                const size_t start = piece.fragments.size();
                styleTile(context, b, tile, piece.fragments);
                if (start < piece.fragments.size()
                    && !(start > 0 ? followsPrevious(piece.fragments, start) : follows(piece.fragments[start], 0)))
                    return style(request);
                piece.tileSizes.push_back(int(piece.fragments.size() - start));
            }
            if (!piece.fragments.empty())
                lastSoFar = Key::of(piece.fragments.back());
        } else {
            piece.firstTile = oldIndex(i);
            piece.endTile = oldIndex(end - 1) + 1;
            piece.shift = i >= change.newEnd ? change.delta : 0;
            const size_t first = oldTileStart(piece.firstTile), last = size_t(oldEnds[piece.endTile - 1]);
            if (first < last) {
                if (!follows(oldFragments[first], piece.shift))
                    return style(request);
                lastSoFar = Key::of(oldFragments[last - 1], piece.shift);
            }
        }
        pieces.push_back(std::move(piece));
        i = end;
    }

    // 4. The store, and the styled text as the full pass makes it.
    Result result;
    result.fragments = MarkdownEditorFragmentStore::splice(std::move(old), std::move(pieces), selection);
    result.activeLines = activeLines;
    result.attributedString = styledNote(request, result.fragments);
    result.styledBlocks = styled;
    return result;
}

}
