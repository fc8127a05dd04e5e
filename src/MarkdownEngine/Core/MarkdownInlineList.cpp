#include "MarkdownEngine/Core/MarkdownInlineList.h"

namespace velmo::markdown {

MarkdownInlineList::MarkdownInlineList(const MarkdownInlineList& other)
    : m_topCount(other.m_topCount),
      m_strings(other.m_strings ? std::make_unique<std::vector<QString>>(*other.m_strings) : nullptr)
{
    // Offsets are relative, so a node-for-node copy keeps every tree.
    m_nodes.reserve(other.m_nodes.size());
    for (const MarkdownInline& node : other.m_nodes)
        m_nodes.push_back(MarkdownInline(node));
}

MarkdownInlineList& MarkdownInlineList::operator=(const MarkdownInlineList& other)
{
    if (this != &other)
        *this = MarkdownInlineList(other);
    return *this;
}

QStringView MarkdownInlineList::text(QStringView note, MarkdownInlineText payload) const
{
    if (payload.isOwned())
        return (*m_strings)[size_t(payload.ownedIndex())];
    return note.mid(payload.location, payload.length);
}

namespace {

void shiftPayload(MarkdownInlineKind& kind, int delta)
{
    const auto move = [delta](MarkdownInlineText& text) { text.shift(delta); };
    std::visit(
        [&](auto& payload) {
            using Kind = std::decay_t<decltype(payload)>;
            if constexpr (std::is_same_v<Kind, inline_kind::Code>) {
                move(payload.language);
            } else if constexpr (std::is_same_v<Kind, inline_kind::Link>) {
                move(payload.destination);
                move(payload.title);
            } else if constexpr (std::is_same_v<Kind, inline_kind::WikiLink>) {
                move(payload.target);
                move(payload.display);
            } else if constexpr (std::is_same_v<Kind, inline_kind::Image>) {
                move(payload.source);
                move(payload.alt);
            } else if constexpr (std::is_same_v<Kind, inline_kind::Latex> || std::is_same_v<Kind, inline_kind::Html>) {
                move(payload.source);
            } else if constexpr (std::is_same_v<Kind, inline_kind::FootnoteReference>) {
                move(payload.label);
            } else if constexpr (std::is_same_v<Kind, inline_kind::ExtensionSpan>) {
                move(payload.name);
            }
        },
        kind);
}

}

void MarkdownInlineList::shift(int delta)
{
    for (MarkdownInline& node : m_nodes) {
        node.range.location += delta;
        node.contentRange.location += delta;
        for (MarkdownSourceRange& marker : node.markerRanges)
            marker.location += delta;
        shiftPayload(node.kind, delta);
    }
}

void MarkdownInlineList::Builder::place(MarkdownInline&& node, std::vector<MarkdownInline>& into)
{
    MarkdownInline& placed = into.emplace_back(std::move(node));
    if (placed.m_childCount > 0)
        placed.m_childOffset -= int(into.size() - 1);
}

void MarkdownInlineList::Builder::adopt(MarkdownInline& parent, std::vector<MarkdownInline>& nodes, size_t from)
{
    parent.m_childOffset = int(m_nodes.size());
    parent.m_childCount = int(nodes.size() - from);
    for (auto node = nodes.begin() + qsizetype(from); node != nodes.end(); ++node)
        place(std::move(*node), m_nodes);
    nodes.erase(nodes.begin() + qsizetype(from), nodes.end());
}

MarkdownInlineText MarkdownInlineList::Builder::own(QString text)
{
    m_strings.push_back(std::move(text));
    return MarkdownInlineText::owned(int(m_strings.size() - 1));
}

void MarkdownInlineList::Builder::adopt(MarkdownInline& parent, MarkdownInline&& child)
{
    parent.m_childOffset = int(m_nodes.size());
    parent.m_childCount = 1;
    place(std::move(child), m_nodes);
}

MarkdownInlineList MarkdownInlineList::Builder::take()
{
    MarkdownInlineList list;
    // One allocation of the exact size: the block keeps no slack, and the builder keeps its
    // capacity for the next block.
    list.m_nodes.reserve(m_nodes.size() + m_top.size());
    std::move(m_nodes.begin(), m_nodes.end(), std::back_inserter(list.m_nodes));
    // Placed nodes hold offsets relative to themselves, which the move keeps; the top level's
    // are still indexes into `m_nodes`, which now start at 0 in the list too.
    for (MarkdownInline& node : m_top)
        place(std::move(node), list.m_nodes);
    list.m_topCount = m_top.size();
    if (!m_strings.empty()) {
        list.m_strings = std::make_unique<std::vector<QString>>(std::move(m_strings));
        m_strings.clear();
    }
    m_nodes.clear();
    m_top.clear();
    return list;
}

}
