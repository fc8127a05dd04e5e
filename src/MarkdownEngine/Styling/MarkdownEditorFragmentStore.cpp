#include "MarkdownEngine/Styling/MarkdownEditorFragmentStore.h"

#include <algorithm>
#include <tuple>

namespace velmo::markdown {

MarkdownEditorFragmentStore::MarkdownEditorFragmentStore(std::vector<MarkdownEditorFragment> fragments)
{
    if (fragments.empty())
        return;
    auto data = std::make_shared<Data>();
    std::vector<MarkdownEditorFragment>& ordered = data->fragments;
    const auto inOrder = [](const MarkdownEditorFragment& a, const MarkdownEditorFragment& b) {
        return a.range.location != b.range.location ? a.range.location < b.range.location : a.priority < b.priority;
    };
    if (std::is_sorted(fragments.begin(), fragments.end(), inOrder)) {
        // The styler hands its fragments over in order: the stable sort would leave them be.
        ordered = std::move(fragments);
    } else {
        // Sort small keys, then move each fragment once: fragments are too big to shuffle.
        std::vector<OrderKey> keys(fragments.size());
        for (size_t i = 0; i < fragments.size(); ++i)
            keys[i] = {fragments[i].range.location, fragments[i].priority, int(i)};
        std::sort(keys.begin(), keys.end());
        ordered.reserve(fragments.size());
        for (const OrderKey& key : keys)
            ordered.push_back(std::move(fragments[size_t(key.index)]));
    }
    for (int i = 0; i < int(ordered.size()); ++i)
        data->list(i);
    m_data = std::move(data);
}

void MarkdownEditorFragmentStore::Data::list(int i)
{
    const MarkdownEditorFragment& f = fragments[size_t(i)];
    longest = std::max(longest, f.range.length);
    // In location order, so a hidden range can only join the last.
    if (f.isHidden && f.range.length >= 1) {
        if (!hiddenRanges.empty() && f.range.location <= hiddenRanges.back().upperBound())
            hiddenRanges.back() = hiddenRanges.back().united(f.range);
        else
            hiddenRanges.push_back(f.range);
    }
    if (isDecoration(f.role))
        decorations.push_back(i);
    if (isHitTarget(f.role))
        hitTargets.push_back(i);
}

MarkdownEditorFragmentStore::Builder::Builder(size_t expected)
    : m_data(std::make_shared<Data>())
{
    m_data->fragments.reserve(expected);
}

void MarkdownEditorFragmentStore::Builder::append(MarkdownEditorFragment&& fragment)
{
    std::vector<MarkdownEditorFragment>& fragments = m_data->fragments;
    if (!fragments.empty()) {
        const MarkdownEditorFragment& last = fragments.back();
        if (fragment.range.location < last.range.location
            || (fragment.range.location == last.range.location && fragment.priority < last.priority))
            m_inOrder = false;
    }
    fragments.push_back(std::move(fragment));
    if (m_inOrder)
        m_data->list(int(fragments.size()) - 1);
}

const MarkdownEditorFragment* MarkdownEditorFragmentStore::Builder::back() const
{
    return m_data->fragments.empty() ? nullptr : &m_data->fragments.back();
}

MarkdownEditorFragmentStore MarkdownEditorFragmentStore::Builder::finish() &&
{
    if (!m_inOrder)
        return MarkdownEditorFragmentStore(std::move(m_data->fragments));
    MarkdownEditorFragmentStore store;
    if (!m_data->fragments.empty())
        store.m_data = std::move(m_data);
    return store;
}

const MarkdownEditorFragmentStore::Data& MarkdownEditorFragmentStore::data() const
{
    static const Data none;
    return m_data ? *m_data : none;
}

std::vector<const MarkdownEditorFragment*> MarkdownEditorFragmentStore::decorations() const
{
    const Data& d = data();
    std::vector<const MarkdownEditorFragment*> out;
    out.reserve(d.decorations.size());
    for (int i : d.decorations)
        out.push_back(&d.fragments[size_t(i)]);
    return out;
}

std::vector<const MarkdownEditorFragment*> MarkdownEditorFragmentStore::hitTargets() const
{
    const Data& d = data();
    std::vector<const MarkdownEditorFragment*> out;
    out.reserve(d.hitTargets.size());
    for (int i : d.hitTargets)
        out.push_back(&d.fragments[size_t(i)]);
    return out;
}

void MarkdownEditorFragmentStore::apply(MarkdownStyledText& text, const MarkdownTextAttributes& baseAttributes) const
{
    apply(text, baseAttributes, 0);
}

void MarkdownEditorFragmentStore::apply(MarkdownStyledText& text, const MarkdownTextAttributes& baseAttributes,
                                        int offset) const
{
    text.setAttributes(baseAttributes);
    const std::vector<MarkdownEditorFragment>& fragments = data().fragments;
    const MarkdownSourceRange stretch{offset, text.length()};
    // Application order: priority, then longer first, then earlier; stable. Only fragments
    // that overlap can be affected by that order, so the text is cut into regions no
    // fragment crosses and each region is ordered on its own: the same result, sorted in
    // small pieces and applied with locality instead of hopping over the whole note. The
    // order is one over the whole store, so a stretch keeps the order its fragments have there.
    struct Key {
        int priority, negativeLength, location, index;
        bool operator<(const Key& o) const
        {
            return std::tie(priority, negativeLength, location, index)
                < std::tie(o.priority, o.negativeLength, o.location, o.index);
        }
    };
    const auto [first, last] = candidates(stretch);
    // Fragments outside the stretch change none of its characters.
    const auto counts = [&](size_t k) { return fragments[k].range.length != 0 && fragments[k].intersects(stretch); };
    std::vector<Key> keys;
    std::vector<MarkdownStyledText::Addition> additions;
    additions.reserve(last - first);
    size_t i = first;
    while (i < last) {
        if (!counts(i)) {
            ++i;
            continue;
        }
        int regionEnd = fragments[i].end();
        size_t j = i + 1;
        for (; j < last && fragments[j].range.location < regionEnd; ++j) {
            if (counts(j))
                regionEnd = std::max(regionEnd, fragments[j].end());
        }
        keys.clear();
        for (size_t k = i; k < j; ++k) {
            if (counts(k))
                keys.push_back({fragments[k].priority, -fragments[k].range.length, fragments[k].range.location, int(k)});
        }
        std::sort(keys.begin(), keys.end());
        // Velmo.role and Velmo.hidden go on after each fragment's own attributes, then its
        // replacement attributes, if any.
        for (const Key& key : keys) {
            const MarkdownEditorFragment& f = fragments[size_t(key.index)];
            const MarkdownSourceRange range{f.range.location - offset, f.range.length};
            additions.push_back({range, &f.attributes, nullptr, true, f.isHidden, f.role});
            if (f.replacementAttributes)
                additions.push_back({range, f.replacementAttributes.get()});
        }
        i = j;
    }
    text.add(additions);
}

std::pair<size_t, size_t> MarkdownEditorFragmentStore::candidates(MarkdownSourceRange in) const
{
    const std::vector<MarkdownEditorFragment>& fragments = data().fragments;
    const auto before = [](const MarkdownEditorFragment& f, int at) { return f.range.location < at; };
    // Nothing starting before in.location - longest can reach into the range.
    const auto first = std::lower_bound(fragments.begin(), fragments.end(), in.location - data().longest, before);
    const auto last = std::lower_bound(first, fragments.end(), in.upperBound(), before);
    return {size_t(first - fragments.begin()), size_t(last - fragments.begin())};
}

bool MarkdownEditorFragmentStore::isHidden(int location) const
{
    const std::vector<MarkdownSourceRange>& hidden = data().hiddenRanges;
    auto it = std::upper_bound(hidden.begin(), hidden.end(), location,
                               [](int at, const MarkdownSourceRange& r) { return at < r.location; });
    return it != hidden.begin() && (it - 1)->contains(location);
}

std::vector<const MarkdownEditorFragment*> MarkdownEditorFragmentStore::fragments(MarkdownSourceRange in) const
{
    const std::vector<MarkdownEditorFragment>& all = fragments();
    std::vector<const MarkdownEditorFragment*> out;
    const auto [first, last] = candidates(in);
    for (size_t i = first; i < last; ++i) {
        if (all[i].intersects(in))
            out.push_back(&all[i]);
    }
    return out;
}

std::vector<const MarkdownEditorFragment*> MarkdownEditorFragmentStore::fragments(MarkdownEditorFragmentRole role) const
{
    std::vector<const MarkdownEditorFragment*> out;
    for (const MarkdownEditorFragment& f : fragments()) {
        if (f.role == role)
            out.push_back(&f);
    }
    return out;
}

std::vector<const MarkdownEditorFragment*> MarkdownEditorFragmentStore::decorations(MarkdownSourceRange in) const
{
    const Data& d = data();
    std::vector<const MarkdownEditorFragment*> out;
    for (int i : d.decorations) {
        if (d.fragments[size_t(i)].intersects(in))
            out.push_back(&d.fragments[size_t(i)]);
    }
    return out;
}

const MarkdownEditorFragment* MarkdownEditorFragmentStore::hitTarget(int location) const
{
    const Data& d = data();
    const MarkdownEditorFragment* best = nullptr;
    for (int i : d.hitTargets) {
        const MarkdownEditorFragment& f = d.fragments[size_t(i)];
        if (f.range.location > location)
            break;
        if (f.contains(location) && (!best || f.range.length < best->range.length))
            best = &f;
    }
    return best;
}

const MarkdownEditorFragment* MarkdownEditorFragmentStore::fragment(int location, MarkdownEditorFragmentRole role) const
{
    for (const MarkdownEditorFragment& f : fragments()) {
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
    for (const MarkdownEditorFragment& f : fragments())
        out.insert(f.role);
    return out;
}

}
