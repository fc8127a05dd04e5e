#pragma once

#include "MarkdownEngine/Core/MarkdownSourceRange.h"

namespace velmo::markdown {

// The text of an inline's payload (a destination, a wiki target, a code span's language): a
// range of the note, as nearly all are, or, where the text is no slice of it (a reference
// link's destination, an image's alt text), one of its list's own strings. The list reads it.
struct MarkdownInlineText {
    // An owned string's index i is stored as -1 - i. An empty text is {0, 0}, wherever it
    // stood, so that moving a tree leaves it as a fresh parse would make it.
    int location = 0;
    int length = 0;

    static constexpr MarkdownInlineText owned(int index) { return {-1 - index, 0}; }
    [[nodiscard]] constexpr bool isOwned() const { return location < 0; }
    [[nodiscard]] constexpr int ownedIndex() const { return -1 - location; }
    [[nodiscard]] constexpr MarkdownSourceRange range() const { return {location, length}; }
    // Moves a range of the note; owned and empty texts stay.
    constexpr void shift(int delta)
    {
        if (length > 0)
            location += delta;
    }

    friend bool operator==(const MarkdownInlineText&, const MarkdownInlineText&) = default;
};

}
