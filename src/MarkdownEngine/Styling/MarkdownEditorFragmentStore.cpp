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
        return OrderKey::of(a).precedes(OrderKey::of(b));
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
        data->list(ordered[size_t(i)], i);
    m_data = std::move(data);
}

void MarkdownEditorFragmentStore::Data::list(const MarkdownEditorFragment& f, int i)
{
    longest = std::max(longest, f.range.length);
    if (f.isHidden)
        hide(f.range);
    if (isDecoration(f.role))
        decorations.push_back(i);
    if (isHitTarget(f.role))
        hitTargets.push_back(i);
}

void MarkdownEditorFragmentStore::Data::hide(MarkdownSourceRange r)
{
    // In location order, so a hidden range can only join the last.
    if (r.length < 1)
        return;
    if (!hiddenRanges.empty() && r.location <= hiddenRanges.back().upperBound())
        hiddenRanges.back() = hiddenRanges.back().united(r);
    else
        hiddenRanges.push_back(r);
}

void MarkdownEditorFragmentStore::Data::listMoved(const Data& old, size_t first, size_t last, size_t to, int shift)
{
    if (first == last)
        return;
    const int moved = int(to) - int(first);
    for (auto [from, into] : {std::pair{&old.decorations, &decorations}, std::pair{&old.hitTargets, &hitTargets}}) {
        const auto begin = std::lower_bound(from->begin(), from->end(), int(first));
        const auto end = std::lower_bound(begin, from->end(), int(last));
        for (auto i = begin; i != end; ++i)
            into->push_back(*i + moved);
    }
    // A hidden range of the old store that starts after the run's first fragment and ends
    // before the next run's is made of the run's fragments alone and moves whole. One that
    // reaches further may hold other runs' fragments too: it is made again from the run's.
    const std::vector<MarkdownEditorFragment>& all = old.fragments;
    const int runStart = all[first].range.location;
    const int runEnd = last < all.size() ? all[last].range.location : INT_MAX;
    const auto& hidden = old.hiddenRanges;
    const auto before = [](const MarkdownEditorFragment& f, int at) { return f.range.location < at; };
    const auto end = all.begin() + std::ptrdiff_t(last);
    for (auto e = std::partition_point(hidden.begin(), hidden.end(),
                                       [runStart](MarkdownSourceRange r) { return r.upperBound() <= runStart; });
         e != hidden.end() && e->location <= runEnd; ++e) {
        if (e->location > runStart && e->upperBound() < runEnd) {
            hide({e->location + shift, e->length});
            continue;
        }
        for (auto f = std::lower_bound(all.begin() + std::ptrdiff_t(first), end, e->location, before);
             f != end && f->range.location < e->upperBound(); ++f) {
            if (f->isHidden)
                hide({f->range.location + shift, f->range.length});
        }
    }
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

    // The lists, made before any fragment moves: those of the old runs moved along, those of
    // the new fragments made.
    Data lists;
    lists.longest = before.longest;
    lists.decorations.reserve(before.decorations.size() + 16);
    lists.hitTargets.reserve(before.hitTargets.size() + 16);
    lists.hiddenRanges.reserve(before.hiddenRanges.size() + 16);
    lists.tileEnds.reserve(oldEnds.size() + 16);
    for (size_t k = 0; k < pieces.size(); ++k) {
        const Span& s = spans[k];
        if (!pieces[k].isNew) {
            lists.listMoved(before, s.from, s.from + s.count, s.to, pieces[k].shift);
            for (size_t t = pieces[k].firstTile; t < pieces[k].endTile; ++t)
                lists.tileEnds.push_back(oldEnds[t] + int(s.to) - int(s.from));
            continue;
        }
        for (size_t j = 0; j < s.count; ++j)
            lists.list(pieces[k].fragments[j], int(s.to + j));
        int end = int(s.to);
        for (int size : pieces[k].tileSizes)
            lists.tileEnds.push_back(end += size);
    }

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
    }
    data->hiddenRanges = std::move(lists.hiddenRanges);
    data->decorations = std::move(lists.decorations);
    data->hitTargets = std::move(lists.hitTargets);
    data->longest = lists.longest;
    data->tileEnds = std::move(lists.tileEnds);
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
    m_data->fragments.push_back(std::move(fragment));
    takeIn();
}

void MarkdownEditorFragmentStore::Builder::takeIn()
{
    const std::vector<MarkdownEditorFragment>& fragments = m_data->fragments;
    for (; m_taken < fragments.size(); ++m_taken) {
        const MarkdownEditorFragment& f = fragments[m_taken];
        if (m_inOrder && m_taken > 0 && OrderKey::of(f).precedes(OrderKey::of(fragments[m_taken - 1])))
            m_inOrder = false;
        if (m_inOrder)
            m_data->list(f, int(m_taken));
    }
}

void MarkdownEditorFragmentStore::Builder::endTile()
{
    takeIn();
    m_data->tileEnds.push_back(int(m_data->fragments.size()));
}

void MarkdownEditorFragmentStore::Builder::setSelection(std::vector<MarkdownSourceRange> ranges)
{
    m_data->selection = std::move(ranges);
}

MarkdownEditorFragmentStore MarkdownEditorFragmentStore::Builder::finish() &&
{
    takeIn();
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
        // Velmo.role and Velmo.hidden go on after each fragment's own attributes.
        for (const Key& key : keys) {
            const MarkdownEditorFragment& f = fragments[size_t(key.index)];
            additions.push_back({{f.range.location - offset, f.range.length}, &f.attributes, nullptr, true, f.isHidden,
                                 f.role});
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
