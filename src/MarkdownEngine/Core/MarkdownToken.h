#pragma once

#include "MarkdownEngine/Core/MarkdownInline.h"
#include "MarkdownEngine/Core/MarkdownSourceRange.h"

#include <QString>
#include <optional>
#include <variant>

namespace velmo::markdown {

// A flat token for callers that want one kind and one range; the parser builds none itself.
namespace token_kind {
struct ExtensionSpan { QString name; };
struct ExtensionBlock { QString name; };
struct Italic {};
struct BoldItalic {};
struct Bold {};
struct Link {};
struct WikiLink {};
struct Heading {};
struct Blockquote {};
struct CodeBlock {};
struct InlineCode {};
struct BlockLatex {};
struct InlineLatex {};
struct ImageEmbed {};
struct ImageLink {};
struct Table {};
struct BackslashEscape {};
}

using MarkdownTokenKind =
    std::variant<token_kind::ExtensionSpan, token_kind::ExtensionBlock, token_kind::Italic, token_kind::BoldItalic,
                 token_kind::Bold, token_kind::Link, token_kind::WikiLink, token_kind::Heading, token_kind::Blockquote,
                 token_kind::CodeBlock, token_kind::InlineCode, token_kind::BlockLatex, token_kind::InlineLatex,
                 token_kind::ImageEmbed, token_kind::ImageLink, token_kind::Table, token_kind::BackslashEscape>;

struct MarkdownToken {
    MarkdownTokenKind kind;
    MarkdownSourceRange range;
    MarkdownSourceRange contentRange;
    MarkdownMarkerRanges markerRanges;

    // A block-like token that fills its paragraph alone, with no markers of its own.
    [[nodiscard]] bool isStandaloneParagraph() const
    {
        const bool blockLike = std::holds_alternative<token_kind::ExtensionBlock>(kind)
            || std::holds_alternative<token_kind::CodeBlock>(kind) || std::holds_alternative<token_kind::BlockLatex>(kind)
            || std::holds_alternative<token_kind::ImageEmbed>(kind) || std::holds_alternative<token_kind::Table>(kind);
        return blockLike && range == contentRange && markerRanges.isEmpty();
    }
    [[nodiscard]] std::optional<MarkdownSourceRange> standaloneParagraphRange() const
    {
        return isStandaloneParagraph() ? std::optional(range) : std::nullopt;
    }
};

}
