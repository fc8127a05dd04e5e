#pragma once

#include <cstddef>

namespace velmo::markdown {

// How a document reparsed after an edit relates to the one before it, so that later passes
// redo only what changed. Blocks [0, firstBlock) are the old ones, untouched. New blocks
// [firstBlock, newEnd) replace old blocks [firstBlock, oldEnd). Old blocks from oldEnd on are
// the new blocks from newEnd on, every range moved by `delta`.
//
// In the text: everything before `start` is the same in both; the old text from `oldStop`
// on is the new text from `oldStop + delta` on. `start` is the first replaced block's
// location (or where the first kept block ended), `oldStop` the first kept old block's after
// the edit (or the old text's end); so the replaced blocks and the blank lines around them
// lie in [start, oldStop) of the old text and [start, oldStop + delta) of the new.
struct MarkdownDocumentChange {
    size_t firstBlock = 0;
    size_t oldEnd = 0;
    size_t newEnd = 0;
    int delta = 0;
    int start = 0;
    int oldStop = 0;

    // Nothing changed in a document of `blocks` blocks and `length` units.
    [[nodiscard]] static MarkdownDocumentChange none(size_t blocks, int length)
    {
        return {blocks, blocks, blocks, 0, length, length};
    }

    [[nodiscard]] int newStop() const { return oldStop + delta; }
    // Old block index to new, for the blocks outside the replaced run.
    [[nodiscard]] size_t newIndex(size_t old) const { return old < firstBlock ? old : old - oldEnd + newEnd; }
};

}
