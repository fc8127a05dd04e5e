#pragma once

#include "MarkdownEngine/Core/MarkdownSourceRange.h"

#include <QtGlobal>
#include <algorithm>
#include <cstdlib>
#include <initializer_list>
#include <new>
#include <type_traits>

namespace velmo::markdown {

// The marker ranges of a block: a short list, kept in the block. Most blocks have one to three
// (a quoted block one per `>`, a table one per pipe), so three live in place and more go to the
// heap. 40 bytes against QVarLengthArray's 56: every block carries one. Inlines, which never
// have more than four, use the fixed `MarkdownInlineMarkers`.
class MarkdownMarkerRanges {
public:
    using value_type = MarkdownSourceRange;
    using size_type = qsizetype;
    using iterator = MarkdownSourceRange*;
    using const_iterator = const MarkdownSourceRange*;
    using reference = MarkdownSourceRange&;
    using const_reference = const MarkdownSourceRange&;

    MarkdownMarkerRanges() noexcept = default;
    MarkdownMarkerRanges(std::initializer_list<MarkdownSourceRange> ranges)
    {
        append(ranges.begin(), qsizetype(ranges.size()));
    }
    MarkdownMarkerRanges(const MarkdownMarkerRanges& other) { append(other.constData(), other.size()); }
    MarkdownMarkerRanges(MarkdownMarkerRanges&& other) noexcept { take(other); }
    MarkdownMarkerRanges& operator=(const MarkdownMarkerRanges& other)
    {
        if (this != &other) {
            m_size = 0;
            append(other.constData(), other.size());
        }
        return *this;
    }
    MarkdownMarkerRanges& operator=(MarkdownMarkerRanges&& other) noexcept
    {
        if (this != &other) {
            std::free(m_heap);
            m_heap = nullptr;
            m_capacity = inlineCapacity;
            take(other);
        }
        return *this;
    }
    ~MarkdownMarkerRanges() { std::free(m_heap); }

    [[nodiscard]] qsizetype size() const { return m_size; }
    [[nodiscard]] bool isEmpty() const { return m_size == 0; }
    [[nodiscard]] bool empty() const { return m_size == 0; }

    MarkdownSourceRange* data() { return m_heap ? m_heap : m_inline; }
    const MarkdownSourceRange* data() const { return m_heap ? m_heap : m_inline; }
    const MarkdownSourceRange* constData() const { return data(); }
    iterator begin() { return data(); }
    iterator end() { return data() + m_size; }
    const_iterator begin() const { return data(); }
    const_iterator end() const { return data() + m_size; }
    const_iterator cbegin() const { return data(); }
    const_iterator cend() const { return data() + m_size; }

    MarkdownSourceRange& operator[](qsizetype i) { return data()[i]; }
    const MarkdownSourceRange& operator[](qsizetype i) const { return data()[i]; }
    const MarkdownSourceRange& first() const { return data()[0]; }
    const MarkdownSourceRange& last() const { return data()[m_size - 1]; }

    void append(MarkdownSourceRange range)
    {
        if (m_size == m_capacity)
            grow(m_size + 1);
        data()[m_size++] = range;
    }
    void append(const MarkdownSourceRange* ranges, qsizetype count)
    {
        if (m_size + count > m_capacity)
            grow(int(m_size + count));
        std::copy(ranges, ranges + count, data() + m_size);
        m_size += int(count);
    }
    void push_back(MarkdownSourceRange range) { append(range); }

    friend bool operator==(const MarkdownMarkerRanges& a, const MarkdownMarkerRanges& b)
    {
        return std::equal(a.begin(), a.end(), b.begin(), b.end());
    }

private:
    static constexpr int inlineCapacity = 3;

    // At least doubles, so a list built by appending (a quoted block's markers) stays linear.
    // Ranges are plain data, so the heap block grows with realloc, which can extend a large
    // block in place instead of copying it.
    static_assert(std::is_trivially_copyable_v<MarkdownSourceRange>);
    void grow(int needed)
    {
        const int capacity = std::max(needed, 2 * m_capacity);
        void* heap = std::realloc(m_heap, size_t(capacity) * sizeof(MarkdownSourceRange));
        if (!heap)
            throw std::bad_alloc();
        if (!m_heap)
            std::copy(m_inline, m_inline + m_size, static_cast<MarkdownSourceRange*>(heap));
        m_heap = static_cast<MarkdownSourceRange*>(heap);
        m_capacity = capacity;
    }
    // Leaves `other` empty; this one must hold no heap block.
    void take(MarkdownMarkerRanges& other) noexcept
    {
        m_size = other.m_size;
        if (other.m_heap) {
            m_heap = other.m_heap;
            m_capacity = other.m_capacity;
            other.m_heap = nullptr;
            other.m_capacity = inlineCapacity;
        } else {
            std::copy(other.m_inline, other.m_inline + other.m_size, m_inline);
        }
        other.m_size = 0;
    }

    MarkdownSourceRange m_inline[inlineCapacity];
    MarkdownSourceRange* m_heap = nullptr; // set once more than inlineCapacity are held
    int m_size = 0;
    int m_capacity = inlineCapacity;
};

}
