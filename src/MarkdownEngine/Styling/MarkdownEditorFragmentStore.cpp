#include "MarkdownEngine/Styling/MarkdownEditorFragmentStore.h"

#include <algorithm>
#include <numeric>

namespace velmo::markdown {

MarkdownEditorFragmentStore::MarkdownEditorFragmentStore(std::vector<MarkdownEditorFragment> fragments)
    : m_fragments(std::move(fragments))
{
    std::stable_sort(m_fragments.begin(), m_fragments.end(), [](const auto& a, const auto& b) {
        return a.range.location != b.range.location ? a.range.location < b.range.location : a.priority < b.priority;
    });
    for (int i = 0; i < int(m_fragments.size()); ++i) {
        const MarkdownEditorFragment& f = m_fragments[size_t(i)];
        m_longest = std::max(m_longest, f.range.length);
        if (f.isHidden && f.range.length >= 1)
            m_hiddenRanges.push_back(f.range);
        if (isDecoration(f.role))
            m_decorations.push_back(i);
        if (isHitTarget(f.role))
            m_hitTargets.push_back(i);
    }
    // Already in location order, as the fragments are.
    std::vector<MarkdownSourceRange> merged;
    for (const MarkdownSourceRange& r : m_hiddenRanges) {
        if (!merged.empty() && r.location <= merged.back().upperBound())
            merged.back() = merged.back().united(r);
        else
            merged.push_back(r);
    }
    m_hiddenRanges = std::move(merged);
}

std::vector<const MarkdownEditorFragment*> MarkdownEditorFragmentStore::decorations() const
{
    std::vector<const MarkdownEditorFragment*> out;
    out.reserve(m_decorations.size());
    for (int i : m_decorations)
        out.push_back(&m_fragments[size_t(i)]);
    return out;
}

std::vector<const MarkdownEditorFragment*> MarkdownEditorFragmentStore::hitTargets() const
{
    std::vector<const MarkdownEditorFragment*> out;
    out.reserve(m_hitTargets.size());
    for (int i : m_hitTargets)
        out.push_back(&m_fragments[size_t(i)]);
    return out;
}

void MarkdownEditorFragmentStore::apply(MarkdownStyledText& text, const MarkdownTextAttributes& baseAttributes) const
{
    text.setAttributes(baseAttributes);
    // Application order: priority, then longer first, then earlier; stable.
    std::vector<int> order(m_fragments.size());
    std::iota(order.begin(), order.end(), 0);
    std::stable_sort(order.begin(), order.end(), [this](int x, int y) {
        const MarkdownEditorFragment& a = m_fragments[size_t(x)];
        const MarkdownEditorFragment& b = m_fragments[size_t(y)];
        if (a.priority != b.priority)
            return a.priority < b.priority;
        if (a.range.length != b.range.length)
            return a.range.length > b.range.length;
        return a.range.location < b.range.location;
    });
    // Velmo.role and Velmo.hidden go on after each fragment's own attributes, then its
    // replacement attributes, if any.
    std::vector<MarkdownTextAttributes> marks;
    marks.reserve(order.size()); // no reallocation: additions point into it
    std::vector<MarkdownStyledText::Addition> additions;
    additions.reserve(order.size());
    for (int i : order) {
        const MarkdownEditorFragment& f = m_fragments[size_t(i)];
        if (f.range.length == 0)
            continue;
        MarkdownTextAttributes& mark = marks.emplace_back();
        mark.setRole(f.role);
        if (f.isHidden)
            mark.setHidden();
        additions.push_back({f.range, &f.attributes, &mark});
        if (f.replacementAttributes)
            additions.push_back({f.range, f.replacementAttributes.get(), nullptr});
    }
    text.add(additions);
}

bool MarkdownEditorFragmentStore::isHidden(int location) const
{
    auto it = std::upper_bound(m_hiddenRanges.begin(), m_hiddenRanges.end(), location,
                               [](int at, const MarkdownSourceRange& r) { return at < r.location; });
    return it != m_hiddenRanges.begin() && (it - 1)->contains(location);
}

std::vector<const MarkdownEditorFragment*> MarkdownEditorFragmentStore::fragments(MarkdownSourceRange in) const
{
    std::vector<const MarkdownEditorFragment*> out;
    // Nothing starting before in.location - longest can reach into the range.
    const int from = in.location - m_longest;
    auto it = std::lower_bound(m_fragments.begin(), m_fragments.end(), from,
                               [](const MarkdownEditorFragment& f, int at) { return f.range.location < at; });
    for (; it != m_fragments.end() && it->range.location < in.upperBound(); ++it) {
        if (it->intersects(in))
            out.push_back(&*it);
    }
    return out;
}

std::vector<const MarkdownEditorFragment*> MarkdownEditorFragmentStore::fragments(MarkdownEditorFragmentRole role) const
{
    std::vector<const MarkdownEditorFragment*> out;
    for (const MarkdownEditorFragment& f : m_fragments) {
        if (f.role == role)
            out.push_back(&f);
    }
    return out;
}

std::vector<const MarkdownEditorFragment*> MarkdownEditorFragmentStore::decorations(MarkdownSourceRange in) const
{
    std::vector<const MarkdownEditorFragment*> out;
    for (int i : m_decorations) {
        if (m_fragments[size_t(i)].intersects(in))
            out.push_back(&m_fragments[size_t(i)]);
    }
    return out;
}

const MarkdownEditorFragment* MarkdownEditorFragmentStore::hitTarget(int location) const
{
    const MarkdownEditorFragment* best = nullptr;
    for (int i : m_hitTargets) {
        const MarkdownEditorFragment& f = m_fragments[size_t(i)];
        if (f.range.location > location)
            break;
        if (f.contains(location) && (!best || f.range.length < best->range.length))
            best = &f;
    }
    return best;
}

const MarkdownEditorFragment* MarkdownEditorFragmentStore::fragment(int location, MarkdownEditorFragmentRole role) const
{
    for (const MarkdownEditorFragment& f : m_fragments) {
        if (f.range.location > location)
            break;
        if (f.role == role && f.contains(location))
            return &f;
    }
    return nullptr;
}

std::set<MarkdownEditorFragmentRole> MarkdownEditorFragmentStore::roles() const
{
    std::set<MarkdownEditorFragmentRole> out;
    for (const MarkdownEditorFragment& f : m_fragments)
        out.insert(f.role);
    return out;
}

}
