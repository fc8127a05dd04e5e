#pragma once

#include "MarkdownEngine/Core/MarkdownInline.h"

#include <QString>
#include <QStringView>
#include <algorithm>
#include <memory>
#include <span>
#include <type_traits>
#include <vector>

namespace velmo::markdown {

static_assert(std::is_trivially_copyable_v<MarkdownInline>, "a block's nodes are copied and freed as bytes");

// The inline trees of one block, all nodes in one array: each node's children are a run of
// it, and the top level is its last run. Reads like the top level's list of nodes. Payload
// texts that are no slice of the note are kept here too.
class MarkdownInlineList {
public:
    class Builder;

    MarkdownInlineList() = default;
    MarkdownInlineList(const MarkdownInlineList& other);
    MarkdownInlineList& operator=(const MarkdownInlineList& other);
    MarkdownInlineList(MarkdownInlineList&&) noexcept = default;
    MarkdownInlineList& operator=(MarkdownInlineList&&) noexcept = default;

    [[nodiscard]] std::span<const MarkdownInline> top() const
    {
        return std::span<const MarkdownInline>(m_nodes).last(m_topCount);
    }
    [[nodiscard]] const MarkdownInline* begin() const { return top().data(); }
    [[nodiscard]] const MarkdownInline* end() const { return top().data() + m_topCount; }
    [[nodiscard]] size_t size() const { return m_topCount; }
    [[nodiscard]] bool empty() const { return m_topCount == 0; }
    const MarkdownInline& operator[](size_t i) const { return top()[i]; }
    const MarkdownInline& front() const { return top().front(); }
    const MarkdownInline& back() const { return top().back(); }

    // Whether any node of any tree is of this kind.
    template<typename Kind>
    [[nodiscard]] bool contains() const
    {
        return std::any_of(m_nodes.begin(), m_nodes.end(), [](const MarkdownInline& node) { return node.is<Kind>(); });
    }
    // A payload's text, given the note the list was parsed from.
    [[nodiscard]] QStringView text(QStringView note, MarkdownInlineText payload) const;
    [[nodiscard]] QString string(QStringView note, MarkdownInlineText payload) const
    {
        return payload.isOwned() ? (*m_strings)[size_t(payload.ownedIndex())] : text(note, payload).toString();
    }
    // Moves every range, payloads' included, by `delta` units.
    void shift(int delta);

private:
    std::vector<MarkdownInline> m_nodes;
    size_t m_topCount = 0;
    // Few blocks have any, and every block carries a list: a pointer, not a vector.
    std::unique_ptr<std::vector<QString>> m_strings;
};

// Builds a list bottom up: children go into the array before the node that holds them, so a
// node still held elsewhere knows where its children are. Reusable: its arrays keep their
// capacity from list to list.
class MarkdownInlineList::Builder {
public:
    // Moves `nodes` from `from` on into the array as `parent`'s children, leaving them out of
    // `nodes`.
    void adopt(MarkdownInline& parent, std::vector<MarkdownInline>& nodes, size_t from = 0);
    void adopt(MarkdownInline& parent, MarkdownInline&& child);
    // A payload text that is no slice of the note.
    [[nodiscard]] MarkdownInlineText own(QString text);
    [[nodiscard]] const QString& owned(MarkdownInlineText text) const { return m_strings[size_t(text.ownedIndex())]; }
    // Top-level nodes are appended here, in order.
    [[nodiscard]] std::vector<MarkdownInline>& top() { return m_top; }
    // The list of everything adopted and appended since the last call; the builder is left
    // empty.
    [[nodiscard]] MarkdownInlineList take();

private:
    void place(MarkdownInline&& node, std::vector<MarkdownInline>& into);

    std::vector<MarkdownInline> m_nodes;
    std::vector<MarkdownInline> m_top;
    std::vector<QString> m_strings;
};

}
