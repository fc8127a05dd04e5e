#include "MarkdownEngine/Core/MarkdownInlineNode.h"

#include <utility>

namespace velmo::markdown {

namespace {

QString source(QStringView text, MarkdownSourceRange range)
{
    const MarkdownSourceRange clipped = range.intersection({0, int(text.size())});
    return text.mid(clipped.location, clipped.length).toString();
}

MarkdownInlineNodeKind converted(const MarkdownInline& node, const MarkdownInlineList& list, QStringView text)
{
    const QString content = source(text, node.contentRange);
    const auto string = [&](MarkdownInlineText payload) { return list.string(text, payload); };
    return std::visit(
        [&](const auto& kind) -> MarkdownInlineNodeKind {
            using Kind = std::decay_t<decltype(kind)>;
            if constexpr (std::is_same_v<Kind, inline_kind::Escape>)
                return inline_node::Escape{kind.character};
            else if constexpr (std::is_same_v<Kind, inline_kind::Code>)
                return inline_node::Code{kind.hasLanguage ? std::optional(string(kind.language)) : std::nullopt, content};
            else if constexpr (std::is_same_v<Kind, inline_kind::Emphasis>)
                return inline_node::Emphasis{kind.emphasis};
            else if constexpr (std::is_same_v<Kind, inline_kind::Link>)
                return inline_node::Link{kind.hasDestination ? std::optional(string(kind.destination)) : std::nullopt,
                                         kind.hasTitle ? std::optional(string(kind.title)) : std::nullopt};
            else if constexpr (std::is_same_v<Kind, inline_kind::WikiLink>)
                return inline_node::WikiLink{string(kind.target), string(kind.display)};
            else if constexpr (std::is_same_v<Kind, inline_kind::Image>)
                return inline_node::Image{string(kind.source), string(kind.alt), kind.isEmbed};
            else if constexpr (std::is_same_v<Kind, inline_kind::Latex>)
                return inline_node::Latex{string(kind.source), kind.isBlock};
            else if constexpr (std::is_same_v<Kind, inline_kind::FootnoteReference>)
                return inline_node::FootnoteReference{string(kind.label)};
            else if constexpr (std::is_same_v<Kind, inline_kind::Html>)
                return inline_node::Html{string(kind.source)};
            else if constexpr (std::is_same_v<Kind, inline_kind::ExtensionSpan>)
                return inline_node::ExtensionSpan{string(kind.name)};
            else if constexpr (std::is_same_v<Kind, inline_kind::Text>)
                return inline_node::Text{source(text, node.range)};
            else if constexpr (std::is_same_v<Kind, inline_kind::Strikethrough>)
                return inline_node::Strikethrough{};
            else if constexpr (std::is_same_v<Kind, inline_kind::Highlight>)
                return inline_node::Highlight{};
            else if constexpr (std::is_same_v<Kind, inline_kind::SoftBreak>)
                return inline_node::SoftBreak{};
            else
                return inline_node::HardBreak{};
        },
        node.kind);
}

}

MarkdownInlineNode::MarkdownInlineNode(const MarkdownInlineNode& other) : kind(other.kind)
{
    std::vector<std::pair<MarkdownInlineNode*, const MarkdownInlineNode*>> pending{{this, &other}};
    while (!pending.empty()) {
        const auto [to, from] = pending.back();
        pending.pop_back();
        // Reserved first, so the addresses taken below stay valid.
        to->children.reserve(from->children.size());
        for (const MarkdownInlineNode& child : from->children) {
            MarkdownInlineNode& copy = to->children.emplace_back(child.kind);
            if (!child.children.empty())
                pending.emplace_back(&copy, &child);
        }
    }
}

MarkdownInlineNode& MarkdownInlineNode::operator=(const MarkdownInlineNode& other)
{
    if (this != &other) {
        MarkdownInlineNode copy(other);
        *this = std::move(copy);
    }
    return *this;
}

MarkdownInlineNode::~MarkdownInlineNode()
{
    if (children.empty())
        return;
    std::vector<MarkdownInlineNode> pending = std::move(children);
    while (!pending.empty()) {
        MarkdownInlineNode last = std::move(pending.back());
        pending.pop_back();
        for (MarkdownInlineNode& child : last.children)
            pending.push_back(std::move(child));
        last.children.clear(); // moved-from shells: nothing below them
    }
}

bool operator==(const MarkdownInlineNode& a, const MarkdownInlineNode& b)
{
    std::vector<std::pair<const MarkdownInlineNode*, const MarkdownInlineNode*>> pending{{&a, &b}};
    while (!pending.empty()) {
        const auto [left, right] = pending.back();
        pending.pop_back();
        if (left->kind != right->kind || left->children.size() != right->children.size())
            return false;
        for (size_t i = 0; i < left->children.size(); ++i)
            pending.emplace_back(&left->children[i], &right->children[i]);
    }
    return true;
}

std::vector<MarkdownInlineNode> MarkdownInlineNode::from(const MarkdownInlineList& inlines, QStringView text)
{
    std::vector<MarkdownInlineNode> result;
    // Each destination vector is sized before pointers into it are taken, so they stay valid.
    std::vector<std::pair<std::span<const MarkdownInline>, std::vector<MarkdownInlineNode>*>> pending{
        {inlines.top(), &result}};
    while (!pending.empty()) {
        const auto [from, into] = pending.back();
        pending.pop_back();
        into->reserve(from.size());
        for (const MarkdownInline& node : from)
            into->emplace_back(converted(node, inlines, text));
        for (size_t i = 0; i < from.size(); ++i) {
            // A wiki link's text child is its display, already in the payload.
            if (from[i].hasChildren() && !from[i].is<inline_kind::WikiLink>())
                pending.emplace_back(from[i].children(), &(*into)[i].children);
        }
    }
    return result;
}

}
