#pragma once

#include <algorithm>

namespace velmo::markdown {

// A location and a length in UTF-16 code units of a note's text. 32 bits each: a note is far
// below 2 GiB, and halving the range halves every tree node's marker list.
struct MarkdownSourceRange {
    int location = 0;
    int length = 0;

    static constexpr MarkdownSourceRange zero() { return {}; }
    static constexpr MarkdownSourceRange fromBounds(int start, int end) { return {start, end - start}; }

    constexpr int upperBound() const { return location + length; }
    constexpr bool isEmpty() const { return length == 0; }
    constexpr bool contains(int i) const { return location <= i && i < upperBound(); }
    constexpr bool containsInclusive(int i) const { return location <= i && i <= upperBound(); }
    constexpr bool intersects(MarkdownSourceRange r) const
    {
        return r.location < upperBound() && location < r.upperBound();
    }
    constexpr MarkdownSourceRange united(MarkdownSourceRange r) const
    {
        return fromBounds(std::min(location, r.location), std::max(upperBound(), r.upperBound()));
    }
    // n is capped at the length; the length never goes below 0.
    constexpr MarkdownSourceRange inset(int n) const
    {
        n = std::min(n, length);
        return {location + n, std::max(0, length - 2 * n)};
    }
    // The overlap of two ranges, empty at the nearer edge when they do not meet.
    constexpr MarkdownSourceRange intersection(MarkdownSourceRange r) const
    {
        const int start = std::max(location, r.location);
        const int end = std::min(upperBound(), r.upperBound());
        return end >= start ? fromBounds(start, end) : MarkdownSourceRange{start, 0};
    }

    friend constexpr bool operator==(MarkdownSourceRange, MarkdownSourceRange) = default;
};

}
