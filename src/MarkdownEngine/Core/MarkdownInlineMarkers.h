#pragma once

#include "MarkdownEngine/Core/MarkdownSourceRange.h"

#include <QtGlobal>
#include <algorithm>
#include <initializer_list>

namespace velmo::markdown {

// The marker ranges of an inline, held in the node. No inline has more than four (an image:
// "!", "[", "](", ")"), so a fixed array does, and the node stays plain data that is copied and
// freed as bytes. Reads like `MarkdownMarkerRanges`.
class MarkdownInlineMarkers {
public:
    using value_type = MarkdownSourceRange;
    using const_iterator = const MarkdownSourceRange*;
    static constexpr int capacity = 4;

    MarkdownInlineMarkers() = default;
    MarkdownInlineMarkers(std::initializer_list<MarkdownSourceRange> ranges)
    {
        for (MarkdownSourceRange range : ranges)
            append(range);
    }

    [[nodiscard]] qsizetype size() const { return m_size; }
    [[nodiscard]] bool isEmpty() const { return m_size == 0; }
    [[nodiscard]] bool empty() const { return m_size == 0; }
    const MarkdownSourceRange* data() const { return m_ranges; }
    const MarkdownSourceRange* constData() const { return m_ranges; }
    const MarkdownSourceRange* begin() const { return m_ranges; }
    const MarkdownSourceRange* end() const { return m_ranges + m_size; }
    MarkdownSourceRange* begin() { return m_ranges; }
    MarkdownSourceRange* end() { return m_ranges + m_size; }
    const MarkdownSourceRange& operator[](qsizetype i) const { return m_ranges[i]; }
    const MarkdownSourceRange& first() const { return m_ranges[0]; }
    const MarkdownSourceRange& last() const { return m_ranges[m_size - 1]; }

    void append(MarkdownSourceRange range)
    {
        Q_ASSERT(m_size < capacity);
        if (m_size < capacity)
            m_ranges[m_size++] = range;
    }
    void append(const MarkdownSourceRange* ranges, qsizetype count)
    {
        for (qsizetype i = 0; i < count; ++i)
            append(ranges[i]);
    }

    friend bool operator==(const MarkdownInlineMarkers& a, const MarkdownInlineMarkers& b)
    {
        return std::equal(a.begin(), a.end(), b.begin(), b.end());
    }

private:
    MarkdownSourceRange m_ranges[capacity];
    unsigned char m_size = 0;
};

}
