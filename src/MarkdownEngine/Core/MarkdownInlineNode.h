#pragma once

#include "MarkdownEngine/Core/MarkdownInlineList.h"

#include <QString>
#include <QStringView>
#include <optional>
#include <variant>
#include <vector>

namespace velmo::markdown {

// The payloads of the range-free form of an inline tree; strings are taken from the source.
namespace inline_node {
struct Text { QString text; bool operator==(const Text&) const = default; };
// `text` is the content after the language line, if any.
struct Code { std::optional<QString> language; QString text; bool operator==(const Code&) const = default; };
struct Emphasis { MarkdownEmphasis emphasis = MarkdownEmphasis::italic; bool operator==(const Emphasis&) const = default; };
struct Strikethrough { bool operator==(const Strikethrough&) const = default; };
struct Highlight { bool operator==(const Highlight&) const = default; };
struct Link { std::optional<QString> destination, title; bool operator==(const Link&) const = default; };
struct WikiLink { QString target, display; bool operator==(const WikiLink&) const = default; };
struct Image { QString source, alt; bool isEmbed = false; bool operator==(const Image&) const = default; };
struct Latex { QString source; bool isBlock = false; bool operator==(const Latex&) const = default; };
struct FootnoteReference { QString label; bool operator==(const FootnoteReference&) const = default; };
struct Html { QString source; bool operator==(const Html&) const = default; };
struct Escape { char16_t character = 0; bool operator==(const Escape&) const = default; };
struct ExtensionSpan { QString name; bool operator==(const ExtensionSpan&) const = default; };
struct SoftBreak { bool operator==(const SoftBreak&) const = default; };
struct HardBreak { bool operator==(const HardBreak&) const = default; };
}

using MarkdownInlineNodeKind =
    std::variant<inline_node::Text, inline_node::Code, inline_node::Emphasis, inline_node::Strikethrough,
                 inline_node::Highlight, inline_node::Link, inline_node::WikiLink, inline_node::Image,
                 inline_node::Latex, inline_node::FootnoteReference, inline_node::Html, inline_node::Escape,
                 inline_node::ExtensionSpan, inline_node::SoftBreak, inline_node::HardBreak>;

// An inline without ranges, for readers that want the structure and the words only.
// Emphasis, strikethrough, highlight, links and extension spans have children.
struct MarkdownInlineNode {
    MarkdownInlineNodeKind kind;
    std::vector<MarkdownInlineNode> children;

    MarkdownInlineNode() = default;
    MarkdownInlineNode(MarkdownInlineNodeKind kind, std::vector<MarkdownInlineNode> children = {})
        : kind(std::move(kind)), children(std::move(children))
    {
    }
    // Trees may nest tens of thousands deep: copied and torn down from heap worklists, so
    // that depth costs heap, not stack.
    MarkdownInlineNode(const MarkdownInlineNode& other);
    MarkdownInlineNode(MarkdownInlineNode&&) noexcept = default;
    MarkdownInlineNode& operator=(const MarkdownInlineNode& other);
    MarkdownInlineNode& operator=(MarkdownInlineNode&&) noexcept = default;
    ~MarkdownInlineNode();

    template<typename Kind>
    bool is() const { return std::holds_alternative<Kind>(kind); }
    template<typename Kind>
    const Kind* as() const { return std::get_if<Kind>(&kind); }

    // Compares whole trees, without recursion.
    friend bool operator==(const MarkdownInlineNode& a, const MarkdownInlineNode& b);

    // The range-free form of `inlines`, whose ranges index `text`.
    [[nodiscard]] static std::vector<MarkdownInlineNode> from(const MarkdownInlineList& inlines,
                                                              QStringView text);
};

}
