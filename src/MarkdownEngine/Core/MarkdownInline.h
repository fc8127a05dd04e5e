#pragma once

#include "MarkdownEngine/Core/MarkdownMarkerRanges.h"
#include "MarkdownEngine/Core/MarkdownSourceRange.h"

#include <QString>
#include <QVarLengthArray>
#include <optional>
#include <variant>
#include <vector>

namespace velmo::markdown {

enum class MarkdownEmphasis : unsigned char { italic, bold, boldItalic };

// The kinds of inline, in the order of the tagged union. Payload strings are owned copies:
// only links, images, wiki links, code, math, footnotes and HTML carry one, and they are few.
namespace inline_kind {
struct Escape { char16_t character = 0; bool operator==(const Escape&) const = default; };
struct Code { QString language; bool hasLanguage = false; bool operator==(const Code&) const = default; };
struct Emphasis {
    MarkdownEmphasis emphasis = MarkdownEmphasis::italic;
    bool operator==(const Emphasis&) const = default;
};
struct Link {
    QString destination, title;
    bool hasDestination = false, hasTitle = false;
    bool operator==(const Link&) const = default;
};
struct WikiLink { QString target, display; bool operator==(const WikiLink&) const = default; };
struct Image { QString source, alt; bool isEmbed = false; bool operator==(const Image&) const = default; };
struct Latex { QString source; bool isBlock = false; bool operator==(const Latex&) const = default; };
struct FootnoteReference { QString label; bool operator==(const FootnoteReference&) const = default; };
struct Html { QString source; bool operator==(const Html&) const = default; };
struct ExtensionSpan { QString name; bool operator==(const ExtensionSpan&) const = default; };
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


struct MarkdownInline {
    MarkdownInlineKind kind;
    MarkdownSourceRange range;
    MarkdownSourceRange contentRange; // equals `range` when the constructor is given none
    MarkdownMarkerRanges markerRanges;
    std::vector<MarkdownInline> children;

    template<typename Kind>
    bool is() const { return std::holds_alternative<Kind>(kind); }
    template<typename Kind>
    const Kind* as() const { return std::get_if<Kind>(&kind); }

    MarkdownInline() = default;
    MarkdownInline(MarkdownInlineKind kind, MarkdownSourceRange range,
                   std::optional<MarkdownSourceRange> contentRange = std::nullopt,
                   MarkdownMarkerRanges markerRanges = {}, std::vector<MarkdownInline> children = {})
        : kind(std::move(kind)), range(range), contentRange(contentRange.value_or(range)),
          markerRanges(std::move(markerRanges)), children(std::move(children))
    {
    }
    // Copies are deep, built level by level with a worklist so that depth costs heap, not stack.
    MarkdownInline(const MarkdownInline& other)
        : kind(other.kind), range(other.range), contentRange(other.contentRange), markerRanges(other.markerRanges)
    {
        copyChildren(*this, other);
    }
    MarkdownInline(MarkdownInline&&) noexcept = default;
    MarkdownInline& operator=(const MarkdownInline& other)
    {
        if (this != &other) {
            MarkdownInline copy(other);
            *this = std::move(copy);
        }
        return *this;
    }
    MarkdownInline& operator=(MarkdownInline&&) noexcept = default;
    // Emphasis can nest tens of thousands deep: tear the subtree down with a heap worklist,
    // not with one stack frame per level.
    ~MarkdownInline()
    {
        // Leaves below are destroyed by the vector itself; only grandchildren need the worklist.
        for (const MarkdownInline& child : children) {
            if (!child.children.empty()) {
                dismantle(children);
                break;
            }
        }
    }

    // The node, then its children depth first. Iterative for the same reason.
    template<typename Visit>
    void forEach(Visit&& visit) const
    {
        QVarLengthArray<const MarkdownInline*, 32> stack;
        stack.append(this);
        while (!stack.isEmpty()) {
            const MarkdownInline* node = stack.last();
            stack.removeLast();
            visit(*node);
            for (auto child = node->children.rbegin(); child != node->children.rend(); ++child)
                stack.append(&*child);
        }
    }

private:
    static void copyChildren(MarkdownInline& target, const MarkdownInline& source)
    {
        std::vector<std::pair<MarkdownInline*, const MarkdownInline*>> pending{{&target, &source}};
        while (!pending.empty()) {
            auto [to, from] = pending.back();
            pending.pop_back();
            // Reserved first, so the addresses taken below stay valid.
            to->children.reserve(from->children.size());
            for (const MarkdownInline& child : from->children) {
                MarkdownInline& copy = to->children.emplace_back(child.kind, child.range, child.contentRange,
                                                                 child.markerRanges);
                if (!child.children.empty())
                    pending.emplace_back(&copy, &child);
            }
        }
    }

    static void dismantle(std::vector<MarkdownInline>& nodes) noexcept
    {
        std::vector<MarkdownInline> pending = std::move(nodes);
        while (!pending.empty()) {
            MarkdownInline last = std::move(pending.back());
            pending.pop_back();
            for (MarkdownInline& child : last.children)
                pending.push_back(std::move(child));
            last.children.clear(); // moved-from shells: nothing below them
        }
    }
};

}
