#include "MarkdownEngine/Styling/MarkdownEditorFragmentStore.h"

#include <algorithm>
#include <tuple>

namespace velmo::markdown {

MarkdownEditorFragmentStore::MarkdownEditorFragmentStore(std::vector<MarkdownEditorFragment> fragments)
{
    // Sort small keys, then move each fragment once: fragments are too big to shuffle. The
    // index makes every key unique, which keeps the order stable.
    struct Key {
        int location, priority, index;
        bool operator<(const Key& o) const
        {
            return location != o.location ? location < o.location
                : priority != o.priority  ? priority < o.priority
                                          : index < o.index;
        }
    };
    const auto inOrder = [](const MarkdownEditorFragment& a, const MarkdownEditorFragment& b) {
        return a.range.location != b.range.location ? a.range.location < b.range.location : a.priority < b.priority;
    };
    if (std::is_sorted(fragments.begin(), fragments.end(), inOrder)) {
        // The styler hands its fragments over in order: the stable sort would leave them be.
        m_fragments = std::move(fragments);
    } else {
        std::vector<Key> keys(fragments.size());
        for (size_t i = 0; i < fragments.size(); ++i)
            keys[i] = {fragments[i].range.location, fragments[i].priority, int(i)};
        std::sort(keys.begin(), keys.end());
        m_fragments.reserve(fragments.size());
        for (const Key& key : keys)
            m_fragments.push_back(std::move(fragments[size_t(key.index)]));
    }
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
    // Application order: priority, then longer first, then earlier; stable. Only fragments
    // that overlap can be affected by that order, so the text is cut into regions no
    // fragment crosses and each region is ordered on its own: the same result, sorted in
    // small pieces and applied with locality instead of hopping over the whole note.
    struct Key {
        int priority, negativeLength, location, index;
        bool operator<(const Key& o) const
        {
            return std::tie(priority, negativeLength, location, index)
                < std::tie(o.priority, o.negativeLength, o.location, o.index);
        }
    };
    std::vector<Key> keys;
    std::vector<MarkdownStyledText::Addition> additions;
    additions.reserve(m_fragments.size());
    size_t i = 0;
    while (i < m_fragments.size()) {
        int regionEnd = m_fragments[i].end();
        size_t j = i + 1;
        while (j < m_fragments.size() && m_fragments[j].range.location < regionEnd) {
            regionEnd = std::max(regionEnd, m_fragments[j].end());
            ++j;
        }
        keys.clear();
        for (size_t k = i; k < j; ++k) {
            const MarkdownEditorFragment& f = m_fragments[k];
            if (f.range.length != 0)
                keys.push_back({f.priority, -f.range.length, f.range.location, int(k)});
        }
        std::sort(keys.begin(), keys.end());
        // Velmo.role and Velmo.hidden go on after each fragment's own attributes, then its
        // replacement attributes, if any.
        for (const Key& key : keys) {
            const MarkdownEditorFragment& f = m_fragments[size_t(key.index)];
            additions.push_back({f.range, &f.attributes, nullptr, true, f.isHidden, f.role});
            if (f.replacementAttributes)
                additions.push_back({f.range, f.replacementAttributes.get()});
        }
        i = j;
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
