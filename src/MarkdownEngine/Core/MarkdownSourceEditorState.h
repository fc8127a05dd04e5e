#pragma once

#include "MarkdownEngine/Core/MarkdownSourceRange.h"

#include <optional>
#include <vector>

namespace velmo::markdown {

// The selection as the styler consults it: which markers to reveal. Ranges are clamped to the
// text by whoever fills it.
struct MarkdownSourceEditorState {
    std::vector<MarkdownSourceRange> selectedRanges;
    std::vector<MarkdownSourceRange> selectedLineRanges;

    [[nodiscard]] static MarkdownSourceEditorState none() { return {}; }
    [[nodiscard]] static MarkdownSourceEditorState caret(int i) { return {{{i, 0}}, {}}; }

    [[nodiscard]] std::optional<int> caretLocation() const;
    [[nodiscard]] bool isEmpty() const { return selectedRanges.empty(); }
    // A caret touching either edge of r counts as intersecting it.
    [[nodiscard]] bool intersects(MarkdownSourceRange r) const;
    [[nodiscard]] bool contains(MarkdownSourceRange r) const;
    [[nodiscard]] bool caretInside(MarkdownSourceRange r) const;
};

}
