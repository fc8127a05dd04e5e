#include "MarkdownEngine/Core/MarkdownSourceEditorState.h"

namespace velmo::markdown {

std::optional<int> MarkdownSourceEditorState::caretLocation() const
{
    if (selectedRanges.size() == 1 && selectedRanges.front().length == 0)
        return selectedRanges.front().location;
    return std::nullopt;
}

bool MarkdownSourceEditorState::intersects(MarkdownSourceRange r) const
{
    for (const MarkdownSourceRange& s : selectedRanges) {
        if (s.intersects(r) || s.containsInclusive(r.location) || s.containsInclusive(r.upperBound()))
            return true;
    }
    return false;
}

bool MarkdownSourceEditorState::contains(MarkdownSourceRange r) const
{
    for (const MarkdownSourceRange& s : selectedRanges) {
        if (s.contains(r.location) && r.upperBound() <= s.upperBound())
            return true;
    }
    return false;
}

bool MarkdownSourceEditorState::caretInside(MarkdownSourceRange r) const
{
    const std::optional<int> caret = caretLocation();
    return caret && r.location <= *caret && *caret <= r.upperBound();
}

}
