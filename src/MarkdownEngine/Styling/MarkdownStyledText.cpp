#include "MarkdownEngine/Styling/MarkdownStyledText.h"

#include <algorithm>

namespace velmo::markdown {

MarkdownStyledText::MarkdownStyledText(QString text, const MarkdownTextAttributes& attributes)
    : m_text(std::move(text))
{
    setAttributes(attributes);
}

void MarkdownStyledText::setAttributes(const MarkdownTextAttributes& attributes)
{
    m_runs.clear();
    if (!m_text.isEmpty())
        m_runs.push_back({{0, length()}, attributes});
}

const MarkdownStyledText::Run* MarkdownStyledText::runAt(int i) const
{
    if (i < 0 || i >= length())
        return nullptr;
    auto it = std::upper_bound(m_runs.begin(), m_runs.end(), i,
                               [](int at, const Run& run) { return at < run.range.location; });
    return &*(it - 1);
}

void MarkdownStyledText::add(MarkdownSourceRange range, const MarkdownTextAttributes& attributes)
{
    const Addition one{range, &attributes, nullptr};
    add(std::span(&one, 1));
}

void MarkdownStyledText::add(std::span<const Addition> additions)
{
    const int n = length();
    if (n == 0 || additions.empty())
        return;
    // 1. Mark every boundary in a bitmap of the text: linear, where sorting them is not.
    std::vector<bool> boundary(size_t(n) + 1, false);
    for (const Run& run : m_runs)
        boundary[size_t(run.range.location)] = true;
    bool any = false;
    for (const Addition& a : additions) {
        const int start = std::clamp(a.range.location, 0, n);
        const int end = std::clamp(a.range.location + std::max(a.range.length, 0), 0, n);
        if (end > start) {
            boundary[size_t(start)] = boundary[size_t(end)] = true;
            any = true;
        }
    }
    if (!any)
        return;
    boundary[size_t(n)] = true;

    // 2. Cut the runs at every boundary.
    std::vector<Run> segments;
    segments.reserve(m_runs.size() * 2);
    std::vector<int> starts;
    for (const Run& run : m_runs) {
        int start = run.range.location;
        const int end = run.range.upperBound();
        for (int i = start + 1; i <= end; ++i) {
            if (boundary[size_t(i)]) {
                starts.push_back(start);
                segments.push_back({MarkdownSourceRange::fromBounds(start, i), run.attributes});
                start = i;
            }
        }
    }

    // 3. Lay each addition over the segments it covers.
    for (const Addition& a : additions) {
        const int start = std::clamp(a.range.location, 0, n);
        const int end = std::clamp(a.range.location + std::max(a.range.length, 0), 0, n);
        if (end <= start)
            continue;
        size_t s = size_t(std::lower_bound(starts.begin(), starts.end(), start) - starts.begin());
        for (; s < segments.size() && segments[s].range.location < end; ++s) {
            segments[s].attributes.merge(*a.attributes);
            if (a.also)
                segments[s].attributes.merge(*a.also);
        }
    }

    // 4. Join neighbours that ended up alike.
    m_runs.clear();
    for (Run& segment : segments) {
        if (!m_runs.empty() && m_runs.back().attributes == segment.attributes)
            m_runs.back().range.length += segment.range.length;
        else
            m_runs.push_back(std::move(segment));
    }
}

}
