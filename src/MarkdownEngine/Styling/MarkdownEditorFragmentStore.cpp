#include "MarkdownEngine/Styling/MarkdownEditorFragmentStore.h"

#include <algorithm>
#include <climits>
#include <iterator>
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
    hide(f);
    if (isDecoration(f.role))
        decorations.push_back(i);
    if (isHitTarget(f.role))
        hitTargets.push_back(i);
}

void MarkdownEditorFragmentStore::Data::hide(const MarkdownEditorFragment& f)
{
    // In location order, so a hidden range can only join the last.
    if (f.isHidden && f.range.length >= 1) {
        if (!hiddenRanges.empty() && f.range.location <= hiddenRanges.back().upperBound())
            hiddenRanges.back() = hiddenRanges.back().united(f.range);
        else
            hiddenRanges.push_back(f.range);
    }
}

void MarkdownEditorFragmentStore::Data::relist(size_t kept, int next)
{
    const auto from = [kept](std::vector<int>& list) {
        list.erase(std::lower_bound(list.begin(), list.end(), int(kept)), list.end());
    };
    from(decorations);
    from(hitTargets);
    // Every fragment after the kept ones starts at or after `bound`, in the old store and this
    // one; a hidden range ending before it holds kept fragments alone and can join nothing
    // new. The ranges after are made again from the kept fragments that reach them.
    const int bound = std::min(next, kept < fragments.size() ? fragments[kept].range.location : INT_MAX);
    const auto dropped = std::partition_point(hiddenRanges.begin(), hiddenRanges.end(),
                                              [bound](MarkdownSourceRange r) { return r.upperBound() < bound; });
    const int redoFrom = dropped == hiddenRanges.end() ? bound : std::min(dropped->location, bound);
    hiddenRanges.erase(dropped, hiddenRanges.end());
    const auto begin = fragments.begin(), end = fragments.begin() + std::ptrdiff_t(kept);
    for (auto f = std::lower_bound(begin, end, redoFrom,
                                   [](const MarkdownEditorFragment& f, int at) { return f.range.location < at; });
         f != end; ++f)
        hide(*f);
    for (size_t i = kept; i < fragments.size(); ++i)
        list(int(i));
}

MarkdownEditorFragmentStore MarkdownEditorFragmentStore::splice(MarkdownEditorFragmentStore&& old,
                                                                std::vector<Piece> pieces,
                                                                std::vector<MarkdownSourceRange> selection)
{
    const Data& before = old.data();
    const std::vector<int>& oldEnds = before.tileEnds;
    const auto tileStart = [&](size_t t) { return t == 0 ? 0 : oldEnds[t - 1]; };
    // Where each piece's fragments are in the old store and go in the new one.
    struct Span {
        size_t from = 0, to = 0, count = 0;
    };
    std::vector<Span> spans;
    size_t total = 0;
    for (const Piece& piece : pieces) {
        Span span;
        span.to = total;
        if (piece.isNew) {
            span.count = piece.fragments.size();
        } else {
            span.from = size_t(tileStart(piece.firstTile));
            span.count = size_t(tileStart(piece.endTile)) - span.from;
        }
        total += span.count;
        spans.push_back(span);
    }
    std::vector<int> tileEnds;
    tileEnds.reserve(oldEnds.size() + 16);
    for (size_t k = 0; k < pieces.size(); ++k) {
        if (pieces[k].isNew) {
            int end = int(spans[k].to);
            for (int size : pieces[k].tileSizes)
                tileEnds.push_back(end += size);
        } else {
            const int moved = int(spans[k].to) - int(spans[k].from);
            for (size_t t = pieces[k].firstTile; t < pieces[k].endTile; ++t)
                tileEnds.push_back(oldEnds[t] + moved);
        }
    }
    // A leading run that stays where it was keeps its lists.
    const size_t kept = !pieces.empty() && !pieces[0].isNew && pieces[0].shift == 0 && pieces[0].firstTile == 0
        ? spans[0].count
        : 0;
    const int next = kept < before.fragments.size() ? before.fragments[kept].range.location : INT_MAX;

    const bool unique = old.m_data && old.m_data.use_count() == 1;
    std::shared_ptr<Data> data;
    if (unique && total <= before.fragments.capacity()) {
        // Only one owner: the fragments are edited where they are.
        data = std::const_pointer_cast<Data>(std::move(old.m_data));
        std::vector<MarkdownEditorFragment>& v = data->fragments;
        const size_t oldSize = v.size();
        if (total > oldSize)
            v.resize(total);
        // Runs moving to the front go first, front to back, then those moving to the back,
        // back to front: no run is overwritten before it has moved. New fragments fill the
        // gaps last.
        for (size_t k = 0; k < pieces.size(); ++k) {
            const Span& s = spans[k];
            const int shift = pieces[k].shift;
            if (pieces[k].isNew || s.to > s.from || (s.to == s.from && shift == 0))
                continue;
            for (size_t i = 0; i < s.count; ++i) {
                MarkdownEditorFragment& f = v[s.to + i];
                if (s.to != s.from)
                    f = std::move(v[s.from + i]);
                f.range.location += shift;
            }
        }
        for (size_t k = pieces.size(); k-- > 0;) {
            const Span& s = spans[k];
            if (pieces[k].isNew || s.to <= s.from)
                continue;
            const int shift = pieces[k].shift;
            for (size_t i = s.count; i-- > 0;) {
                MarkdownEditorFragment& f = v[s.to + i];
                f = std::move(v[s.from + i]);
                f.range.location += shift;
            }
        }
        for (size_t k = 0; k < pieces.size(); ++k) {
            if (pieces[k].isNew)
                std::move(pieces[k].fragments.begin(), pieces[k].fragments.end(), v.begin() + std::ptrdiff_t(spans[k].to));
        }
        if (total < oldSize)
            v.erase(v.begin() + std::ptrdiff_t(total), v.end());
    } else {
        data = std::make_shared<Data>();
        std::vector<MarkdownEditorFragment>& v = data->fragments;
        // Room for the edits to come, which would otherwise move every fragment again.
        v.reserve(total + total / 16);
        std::vector<MarkdownEditorFragment>* source = unique ? &std::const_pointer_cast<Data>(old.m_data)->fragments
                                                             : nullptr;
        for (size_t k = 0; k < pieces.size(); ++k) {
            if (pieces[k].isNew) {
                std::move(pieces[k].fragments.begin(), pieces[k].fragments.end(), std::back_inserter(v));
                continue;
            }
            for (size_t i = spans[k].from; i < spans[k].from + spans[k].count; ++i) {
                v.push_back(source ? std::move((*source)[i]) : before.fragments[i]);
                v.back().range.location += pieces[k].shift;
            }
        }
        data->hiddenRanges = before.hiddenRanges;
        data->decorations = before.decorations;
        data->hitTargets = before.hitTargets;
        data->longest = before.longest;
    }
    data->relist(kept, next);
    data->tileEnds = std::move(tileEnds);
    data->selection = std::move(selection);
    MarkdownEditorFragmentStore store;
    if (!data->fragments.empty())
        store.m_data = std::move(data);
    return store;
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

void MarkdownEditorFragmentStore::Builder::endTile()
{
    m_data->tileEnds.push_back(int(m_data->fragments.size()));
}

void MarkdownEditorFragmentStore::Builder::setSelection(std::vector<MarkdownSourceRange> ranges)
{
    m_data->selection = std::move(ranges);
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
    // A store without fragments has no body, so it keeps no tiles: an empty note is styled whole.
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
