#pragma once

#include "MarkdownEngine/Styling/MarkdownEditorFragment.h"
#include "MarkdownEngine/Styling/MarkdownStyledText.h"

#include <memory>
#include <set>
#include <utility>
#include <vector>

namespace velmo::markdown {

// The styler's fragments with the lists the text view consults. A value built once per pass and
// never changed after, so copies share one body: handing the store on costs a pointer.
class MarkdownEditorFragmentStore {
    struct Data;

public:
    MarkdownEditorFragmentStore() = default;
    explicit MarkdownEditorFragmentStore(std::vector<MarkdownEditorFragment> fragments);

    // Takes fragments one at a time, or a tile at a time appended in place, and makes the lists
    // as they come in. Fragments given in store order stay where they are put; any others are
    // sorted at the end.
    class Builder {
    public:
        explicit Builder(size_t expected = 0);
        void append(MarkdownEditorFragment&& fragment);
        // The fragments so far, to append a tile to where it will stay; endTile takes it in.
        [[nodiscard]] std::vector<MarkdownEditorFragment>& tail() { return m_data->fragments; }
        // Closes the run of fragments of one block (its tile): a store made tile by tile can
        // be spliced after an edit.
        void endTile();
        // The active lines and selections the fragments were made for.
        void setSelection(std::vector<MarkdownSourceRange> ranges);
        [[nodiscard]] MarkdownEditorFragmentStore finish() &&;

    private:
        // Checks the order of the fragments added since the last call and lists them.
        void takeIn();

        std::shared_ptr<Data> m_data;
        size_t m_taken = 0;
        bool m_inOrder = true;
    };

    [[nodiscard]] static MarkdownEditorFragmentStore empty() { return {}; }

    // A piece of a store spliced after an edit: the old store's tiles [firstTile, endTile)
    // with every range moved by `shift`, or, when `isNew`, new fragments with each tile's count.
    struct Piece {
        bool isNew = false;
        size_t firstTile = 0, endTile = 0;
        int shift = 0;
        std::vector<MarkdownEditorFragment> fragments;
        std::vector<int> tileSizes;
    };
    // The store of the pieces in turn, which the caller has checked to be in store order.
    // Takes the old store's fragments over when nothing else shares them, and moves in place
    // only the pieces whose index changes; copies them otherwise.
    [[nodiscard]] static MarkdownEditorFragmentStore splice(MarkdownEditorFragmentStore&& old,
                                                            std::vector<Piece> pieces,
                                                            std::vector<MarkdownSourceRange> selection);

    // The store's order for a fragment: location, then priority, then `index`, its place in
    // the order it was handed over, which keeps the sort stable.
    struct OrderKey {
        int location, priority, index;

        // A fragment's key as it stands `shift` units further on.
        static OrderKey of(const MarkdownEditorFragment& f, int shift = 0)
        {
            return {f.range.location + shift, f.priority, 0};
        }
        bool operator<(const OrderKey& o) const
        {
            return precedes(o) || (location == o.location && priority == o.priority && index < o.index);
        }
        // Strictly before `o` by location and priority: two fragments tied there may not meet
        // where runs of the store are put together.
        bool precedes(const OrderKey& o) const
        {
            return location != o.location ? location < o.location : priority < o.priority;
        }
    };

    // By location, then priority; stable.
    const std::vector<MarkdownEditorFragment>& fragments() const { return data().fragments; }
    // Hidden ranges of positive length, coalesced where they touch or overlap.
    const std::vector<MarkdownSourceRange>& hiddenRanges() const { return data().hiddenRanges; }
    // Indices into fragments(), in order.
    [[nodiscard]] std::vector<const MarkdownEditorFragment*> decorations() const;
    [[nodiscard]] std::vector<const MarkdownEditorFragment*> hitTargets() const;
    [[nodiscard]] bool isEmpty() const { return fragments().empty(); }
    // For a store made tile by tile, where each tile's fragments end; otherwise empty.
    const std::vector<int>& tileEnds() const { return data().tileEnds; }
    // The ranges of `Builder::setSelection`: fragments of the blocks they touch depend on them.
    const std::vector<MarkdownSourceRange>& selection() const { return data().selection; }

    // Lays `baseAttributes` over the whole text, then every fragment by priority.
    void apply(MarkdownStyledText& text, const MarkdownTextAttributes& baseAttributes) const;
    // The same for `text` standing for the stretch of the note from `offset` on: each of its
    // characters ends up as it would in the whole note's styled text.
    void apply(MarkdownStyledText& text, const MarkdownTextAttributes& baseAttributes, int offset) const;

    [[nodiscard]] bool isHidden(int location) const;
    [[nodiscard]] std::vector<const MarkdownEditorFragment*> fragments(MarkdownSourceRange in) const;
    [[nodiscard]] std::vector<const MarkdownEditorFragment*> fragments(MarkdownEditorFragmentRole role) const;
    [[nodiscard]] std::vector<const MarkdownEditorFragment*> decorations(MarkdownSourceRange in) const;
    [[nodiscard]] const MarkdownEditorFragment* hitTarget(int location) const;
    [[nodiscard]] const MarkdownEditorFragment* fragment(int location, MarkdownEditorFragmentRole role) const;
    [[nodiscard]] std::set<MarkdownEditorFragmentRole> roles() const;

private:
    struct Data {
        std::vector<MarkdownEditorFragment> fragments;
        std::vector<MarkdownSourceRange> hiddenRanges;
        std::vector<int> decorations, hitTargets;
        // The longest fragment: bounds the backward reach of a range query. After a splice it
        // may be longer than any fragment left, which costs a query time, never a result.
        int longest = 0;
        std::vector<int> tileEnds;
        std::vector<MarkdownSourceRange> selection;

        // Adds `f`, the fragment at `i` and the last so far in order, to the lists.
        void list(const MarkdownEditorFragment& f, int i);
        // Adds a hidden range, the last so far in order.
        void hide(MarkdownSourceRange r);
        // Takes the lists of old fragments [first, last), which now start at `to`, their
        // ranges moved by `shift`: the lists are moved along rather than made again.
        void listMoved(const Data& old, size_t first, size_t last, size_t to, int shift);
    };
    [[nodiscard]] const Data& data() const;
    // Indices of the fragments that overlap `in`, in order.
    [[nodiscard]] std::pair<size_t, size_t> candidates(MarkdownSourceRange in) const;

    std::shared_ptr<const Data> m_data; // null when empty
};

}
