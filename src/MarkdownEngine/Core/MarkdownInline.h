#pragma once

#include "MarkdownEngine/Core/MarkdownInlineMarkers.h"
#include "MarkdownEngine/Core/MarkdownInlineText.h"
#include "MarkdownEngine/Core/MarkdownSourceRange.h"

#include <QVarLengthArray>
#include <optional>
#include <span>
#include <variant>

namespace velmo::markdown {

enum class MarkdownEmphasis : unsigned char { italic, bold, boldItalic };

// The kinds of inline, in the order of the tagged union. Payload texts are ranges of the note
// or strings of the node's list, which reads them: no node owns heap memory.
namespace inline_kind {
struct Escape { char16_t character = 0; bool operator==(const Escape&) const = default; };
struct Code {
    MarkdownInlineText language;
    bool hasLanguage = false;
    bool operator==(const Code&) const = default;
};
struct Emphasis {
    MarkdownEmphasis emphasis = MarkdownEmphasis::italic;
    bool operator==(const Emphasis&) const = default;
};
struct Link {
    MarkdownInlineText destination, title;
    bool hasDestination = false, hasTitle = false;
    bool operator==(const Link&) const = default;
};
struct WikiLink { MarkdownInlineText target, display; bool operator==(const WikiLink&) const = default; };
struct Image {
    MarkdownInlineText source, alt;
    bool isEmbed = false;
    bool operator==(const Image&) const = default;
};
struct Latex { MarkdownInlineText source; bool isBlock = false; bool operator==(const Latex&) const = default; };
struct FootnoteReference { MarkdownInlineText label; bool operator==(const FootnoteReference&) const = default; };
struct Html { MarkdownInlineText source; bool operator==(const Html&) const = default; };
struct ExtensionSpan { MarkdownInlineText name; bool operator==(const ExtensionSpan&) const = default; };
struct Text { bool operator==(const Text&) const = default; };
struct Strikethrough { bool operator==(const Strikethrough&) const = default; };
struct Highlight { bool operator==(const Highlight&) const = default; };
struct SoftBreak { bool operator==(const SoftBreak&) const = default; };
struct HardBreak { bool operator==(const HardBreak&) const = default; };
}

using MarkdownInlineKind = std::variant<inline_kind::Escape, inline_kind::Code, inline_kind::Emphasis,
                                        inline_kind::Link, inline_kind::WikiLink, inline_kind::Image,
                                        inline_kind::Latex, inline_kind::FootnoteReference, inline_kind::Html,
                                        inline_kind::ExtensionSpan, inline_kind::Text, inline_kind::Strikethrough,
                                        inline_kind::Highlight, inline_kind::SoftBreak, inline_kind::HardBreak>;


// A node of an inline tree. Nodes live in their block's `MarkdownInlineList`, children as a
// contiguous run of it: one allocation per block instead of one per node with children, and a
// block's tree is freed, copied and moved as one array. So a node is only ever seen in place;
// copying one out would part it from its children.
class MarkdownInline {
public:
    MarkdownInlineKind kind;
    MarkdownSourceRange range;
    MarkdownSourceRange contentRange; // equals `range` when the constructor is given none
    MarkdownInlineMarkers markerRanges;

    template<typename Kind>
    bool is() const { return std::holds_alternative<Kind>(kind); }
    template<typename Kind>
    const Kind* as() const { return std::get_if<Kind>(&kind); }

    MarkdownInline(MarkdownInlineKind kind, MarkdownSourceRange range,
                   std::optional<MarkdownSourceRange> contentRange = std::nullopt,
                   MarkdownInlineMarkers markerRanges = {})
        : kind(kind), range(range), contentRange(contentRange.value_or(range)), markerRanges(markerRanges)
    {
    }
    MarkdownInline(MarkdownInline&&) noexcept = default;
    MarkdownInline& operator=(MarkdownInline&&) noexcept = default;

    [[nodiscard]] std::span<const MarkdownInline> children() const
    {
        return {this + m_childOffset, size_t(m_childCount)};
    }
    [[nodiscard]] bool hasChildren() const { return m_childCount > 0; }

    // The node, then its children depth first. Emphasis nests tens of thousands deep, so the
    // walk keeps its own stack rather than the call stack.
    template<typename Visit>
    void forEach(Visit&& visit) const
    {
        QVarLengthArray<const MarkdownInline*, 32> stack;
        stack.append(this);
        while (!stack.isEmpty()) {
            const MarkdownInline* node = stack.last();
            stack.removeLast();
            visit(*node);
            const std::span<const MarkdownInline> children = node->children();
            for (auto child = children.rbegin(); child != children.rend(); ++child)
                stack.append(&*child);
        }
    }

private:
    friend class MarkdownInlineList;
    MarkdownInline(const MarkdownInline&) = default;
    MarkdownInline& operator=(const MarkdownInline&) = default;

    // From this node to its first child, in nodes, once the node is in its list; while a parse
    // still holds the node elsewhere, the first child's index in the list being built.
    int m_childOffset = 0;
    int m_childCount = 0;
};
}
