#include "MarkdownEngine/Core/MarkdownInlineNode.h"

#include <utility>

namespace velmo::markdown {

namespace {

QString source(QStringView text, MarkdownSourceRange range)
{
    const MarkdownSourceRange clipped = range.intersection({0, int(text.size())});
    return text.mid(clipped.location, clipped.length).toString();
}

MarkdownInlineNodeKind converted(const MarkdownInline& node, QStringView text)
{
    const QString content = source(text, node.contentRange);
    return std::visit(
        [&](const auto& kind) -> MarkdownInlineNodeKind {
            using Kind = std::decay_t<decltype(kind)>;
            if constexpr (std::is_same_v<Kind, inline_kind::Escape>)
                return inline_node::Escape{kind.character};
            else if constexpr (std::is_same_v<Kind, inline_kind::Code>)
                return inline_node::Code{kind.hasLanguage ? std::optional(kind.language) : std::nullopt, content};
            else if constexpr (std::is_same_v<Kind, inline_kind::Emphasis>)
                return inline_node::Emphasis{kind.emphasis};
            else if constexpr (std::is_same_v<Kind, inline_kind::Link>)
                return inline_node::Link{kind.hasDestination ? std::optional(kind.destination) : std::nullopt,
                                         kind.hasTitle ? std::optional(kind.title) : std::nullopt};
            else if constexpr (std::is_same_v<Kind, inline_kind::WikiLink>)
                return inline_node::WikiLink{kind.target, kind.display};
            else if constexpr (std::is_same_v<Kind, inline_kind::Image>)
                return inline_node::Image{kind.source, kind.alt, kind.isEmbed};
            else if constexpr (std::is_same_v<Kind, inline_kind::Latex>)
                return inline_node::Latex{kind.source, kind.isBlock};
            else if constexpr (std::is_same_v<Kind, inline_kind::FootnoteReference>)
                return inline_node::FootnoteReference{kind.label};
            else if constexpr (std::is_same_v<Kind, inline_kind::Html>)
                return inline_node::Html{kind.source};
            else if constexpr (std::is_same_v<Kind, inline_kind::ExtensionSpan>)
                return inline_node::ExtensionSpan{kind.name};
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

std::vector<MarkdownInlineNode> MarkdownInlineNode::from(const std::vector<MarkdownInline>& inlines, QStringView text)
{
    std::vector<MarkdownInlineNode> result;
    // Each destination vector is sized before pointers into it are taken, so they stay valid.
    std::vector<std::pair<const std::vector<MarkdownInline>*, std::vector<MarkdownInlineNode>*>> pending{
        {&inlines, &result}};
    while (!pending.empty()) {
        const auto [from, into] = pending.back();
        pending.pop_back();
        into->reserve(from->size());
        for (const MarkdownInline& node : *from)
            into->emplace_back(converted(node, text));
        for (size_t i = 0; i < from->size(); ++i) {
            // A wiki link's text child is its display, already in the payload.
            if (!(*from)[i].children.empty() && !(*from)[i].is<inline_kind::WikiLink>())
                pending.emplace_back(&(*from)[i].children, &(*into)[i].children);
        }
    }
    return result;
}

}
