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

    // Takes fragments one at a time and makes the lists while each is at hand. Fragments
    // given in store order stay where they are put; any others are sorted at the end.
    class Builder {
    public:
        explicit Builder(size_t expected = 0);
        void append(MarkdownEditorFragment&& fragment);
        [[nodiscard]] const MarkdownEditorFragment* back() const;
        [[nodiscard]] MarkdownEditorFragmentStore finish() &&;

    private:
        std::shared_ptr<Data> m_data;
        bool m_inOrder = true;
    };

    [[nodiscard]] static MarkdownEditorFragmentStore empty() { return {}; }

    // The store's order for a fragment: location, then priority, then `index`, its place in
    // the order it was handed over, which keeps the sort stable.
    struct OrderKey {
        int location, priority, index;
        bool operator<(const OrderKey& o) const
        {
            return location != o.location ? location < o.location
                : priority != o.priority  ? priority < o.priority
                                          : index < o.index;
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
        // The longest fragment: bounds the backward reach of a range query.
        int longest = 0;

        // Adds fragments[i], the last so far in order, to the lists.
        void list(int i);
    };
    [[nodiscard]] const Data& data() const;
    // Indices of the fragments that overlap `in`, in order.
    [[nodiscard]] std::pair<size_t, size_t> candidates(MarkdownSourceRange in) const;

    std::shared_ptr<const Data> m_data; // null when empty
};

}
