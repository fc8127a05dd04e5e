#include "MarkdownEngine/Parser/InlineCloserIndex.h"

#include <algorithm>

namespace velmo::markdown {

InlineCloserIndex::InlineCloserIndex(QStringView text, MarkdownSourceRange range)
    : m_text(text), m_range(range)
{
}

// One pass for every opener at once. The scan from an opener p meets the same units as a
// scan from the range start does after p (p itself is never a backslash), so its relative
// depth is the global depth minus a base fixed at p: the opener's partner is the first
// closer that brings the global depth down to that base. An opener skipped by a backslash
// in the global pass still starts its own scan at depth 1, hence the base below. Pending
// openers form a stack whose bases never decrease, so each is settled once.
void InlineCloserIndex::buildPartners(Partners& partners, char16_t open, char16_t close,
                                      bool lineEndFailsEveryDepth) const
{
    struct Pending {
        int base;
        int index;
    };
    std::vector<Pending> pending;
    int depth = 0;
    bool skip = false;
    for (int i = m_range.location; i < m_range.upperBound(); ++i) {
        const char16_t unit = m_text[i].unicode();
        if (skip) {
            skip = false;
            if (unit == open) {
                pending.push_back({depth - 1, int(partners.size())});
                partners.emplace_back(i, -1);
            }
            continue;
        }
        if (unit == u'\\') {
            skip = true;
        } else if (unit == open) {
            ++depth;
            pending.push_back({depth - 1, int(partners.size())});
            partners.emplace_back(i, -1);
        } else if (unit == close) {
            --depth;
            while (!pending.empty() && pending.back().base == depth) {
                partners[pending.back().index].second = i;
                pending.pop_back();
            }
        } else if (unit == u'\n') {
            if (lineEndFailsEveryDepth)
                pending.clear();
            while (!pending.empty() && pending.back().base == depth - 1)
                pending.pop_back();
        }
    }
}

std::optional<int> InlineCloserIndex::partnerOf(const Partners& partners, size_t& hint, int p, int end)
{
    size_t slot = hint;
    if (slot < partners.size() && partners[slot].first != p) {
        if (slot + 1 < partners.size() && partners[slot + 1].first == p)
            ++slot;
        else
            slot = size_t(std::lower_bound(partners.begin(), partners.end(), std::pair(p, -1)) - partners.begin());
    }
    if (slot >= partners.size() || partners[slot].first != p)
        return std::nullopt;
    hint = slot;
    const int partner = partners[slot].second;
    if (partner < 0 || partner >= end)
        return std::nullopt;
    return partner;
}

std::optional<int> InlineCloserIndex::matchingBracket(int p, int end)
{
    if (!m_brackets) {
        m_brackets.emplace();
        buildPartners(*m_brackets, u'[', u']', false);
    }
    return partnerOf(*m_brackets, m_bracketHint, p, end);
}

std::optional<int> InlineCloserIndex::matchingParen(int p, int end)
{
    if (!m_parens) {
        m_parens.emplace();
        buildPartners(*m_parens, u'(', u')', true);
    }
    return partnerOf(*m_parens, m_parenHint, p, end);
}

std::optional<int> InlineCloserIndex::backtickRun(int from, int length, int end)
{
    if (!m_runsByStart) {
        m_runsByStart.emplace();
        const int rangeEnd = m_range.upperBound();
        for (int i = m_range.location; i < rangeEnd;) {
            if (m_text[i] != u'`') {
                ++i;
                continue;
            }
            const int start = i;
            while (i < rangeEnd && m_text[i] == u'`')
                ++i;
            m_runsByStart->push_back({i - start, start});
        }
        m_runsByLength = *m_runsByStart;
        std::sort(m_runsByLength.begin(), m_runsByLength.end());
    }
    std::optional<int> found;
    const auto candidate = std::lower_bound(m_runsByLength.begin(), m_runsByLength.end(), Run{length, from});
    if (candidate != m_runsByLength.end() && candidate->length == length && candidate->start + length <= end)
        found = candidate->start;
    // A run cut by `end` is shorter inside the subrange and may match there. Subranges never
    // cut runs, but the answer should not depend on that.
    const auto byStart = std::partition_point(m_runsByStart->begin(), m_runsByStart->end(),
                                              [end](Run run) { return run.start < end; });
    if (byStart != m_runsByStart->begin()) {
        const Run last = *(byStart - 1);
        if (last.start + last.length > end && last.start >= from && end - last.start == length
            && (!found || last.start < *found))
            found = last.start;
    }
    return found;
}

// The first position of `unit` (or of a doubled `unit`) at or after `from`.
std::optional<int> InlineCloserIndex::firstPosition(char16_t unit, bool doubledUnit, int from)
{
    const int slot = !doubledUnit ? (unit == u'$' ? 0 : 1) : unit == u'$' ? 2 : unit == u'~' ? 3 : 4;
    std::optional<std::vector<int>>& positions = m_positions[slot];
    if (!positions) {
        positions.emplace();
        const int end = m_range.upperBound();
        for (int i = m_range.location; i < end; ++i) {
            if (m_text[i] == unit && (!doubledUnit || (i + 1 < end && m_text[i + 1] == unit)))
                positions->push_back(i);
        }
    }
    const std::vector<int>& list = *positions;
    size_t& hint = m_positionHints[slot];
    // The walk asks in increasing order, so the answer is usually the last one or the next.
    if (hint > list.size() || (hint > 0 && list[hint - 1] >= from))
        hint = size_t(std::lower_bound(list.begin(), list.end(), from) - list.begin());
    while (hint < list.size() && list[hint] < from) {
        if (list.size() - hint > 8 && list[hint + 8] < from)
            hint = size_t(std::lower_bound(list.begin() + hint, list.end(), from) - list.begin());
        else
            ++hint;
    }
    if (hint >= list.size())
        return std::nullopt;
    return list[hint];
}

std::optional<int> InlineCloserIndex::dollar(int from, int end)
{
    const std::optional<int> found = firstPosition(u'$', false, from);
    return found && *found < end ? found : std::nullopt;
}

std::optional<int> InlineCloserIndex::lineFeed(int from, int end)
{
    const std::optional<int> found = firstPosition(u'\n', false, from);
    return found && *found < end ? found : std::nullopt;
}

std::optional<int> InlineCloserIndex::doubled(char16_t unit, int from, int end)
{
    const std::optional<int> found = firstPosition(unit, true, from);
    return found && *found + 2 <= end ? found : std::nullopt;
}

}
