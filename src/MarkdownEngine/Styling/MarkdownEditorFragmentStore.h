#pragma once

#include "MarkdownEngine/Styling/MarkdownEditorFragment.h"
#include "MarkdownEngine/Styling/MarkdownStyledText.h"

#include <set>
#include <vector>

namespace velmo::markdown {

// The styler's fragments with the lists the text view consults. A value; built once per pass.
class MarkdownEditorFragmentStore {
public:
    MarkdownEditorFragmentStore() = default;
    explicit MarkdownEditorFragmentStore(std::vector<MarkdownEditorFragment> fragments);
    [[nodiscard]] static MarkdownEditorFragmentStore empty() { return {}; }

    // By location, then priority; stable.
    const std::vector<MarkdownEditorFragment>& fragments() const { return m_fragments; }
    // Hidden ranges of positive length, coalesced where they touch or overlap.
    const std::vector<MarkdownSourceRange>& hiddenRanges() const { return m_hiddenRanges; }
    // Indices into fragments(), in order.
    [[nodiscard]] std::vector<const MarkdownEditorFragment*> decorations() const;
    [[nodiscard]] std::vector<const MarkdownEditorFragment*> hitTargets() const;
    [[nodiscard]] bool isEmpty() const { return m_fragments.empty(); }

    // Lays `baseAttributes` over the whole text, then every fragment by priority.
    void apply(MarkdownStyledText& text, const MarkdownTextAttributes& baseAttributes) const;

    [[nodiscard]] bool isHidden(int location) const;
    [[nodiscard]] std::vector<const MarkdownEditorFragment*> fragments(MarkdownSourceRange in) const;
    [[nodiscard]] std::vector<const MarkdownEditorFragment*> fragments(MarkdownEditorFragmentRole role) const;
    [[nodiscard]] std::vector<const MarkdownEditorFragment*> decorations(MarkdownSourceRange in) const;
    [[nodiscard]] const MarkdownEditorFragment* hitTarget(int location) const;
    [[nodiscard]] const MarkdownEditorFragment* fragment(int location, MarkdownEditorFragmentRole role) const;
    [[nodiscard]] std::set<MarkdownEditorFragmentRole> roles() const;

private:
    std::vector<MarkdownEditorFragment> m_fragments;
    std::vector<MarkdownSourceRange> m_hiddenRanges;
    std::vector<int> m_decorations, m_hitTargets;
    // The longest fragment: bounds the backward reach of a range query.
    int m_longest = 0;
};

}
