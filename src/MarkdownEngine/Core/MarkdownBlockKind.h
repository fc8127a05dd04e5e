#pragma once

#include "MarkdownEngine/Core/MarkdownListMarker.h"
#include "MarkdownEngine/Core/MarkdownTable.h"
#include "MarkdownEngine/Directives/DirectiveArguments.h"

#include <QString>
#include <optional>
#include <variant>

namespace velmo::markdown {

// The kinds of block, in the order of the tagged union.
namespace block_kind {
struct Heading {
    int level = 1;
    bool setext = false;
    bool operator==(const Heading&) const = default;
};
struct ThematicBreak { char16_t character = u'-'; bool operator==(const ThematicBreak&) const = default; };
// Never built by the tokenizer (quoting is `quoteDepth`); kept for consumers.
struct Blockquote { int depth = 1; bool operator==(const Blockquote&) const = default; };
struct ListItem { MarkdownListMarker marker; bool operator==(const ListItem&) const = default; };
struct Fence {
    std::optional<QString> language;
    QString info;
    bool closed = false;
    bool operator==(const Fence&) const = default;
};
struct Table { MarkdownTable table; bool operator==(const Table&) const = default; };
struct Directive {
    QString name; // lower-cased
    DirectiveArguments arguments;
    bool hasBody = false;
    bool operator==(const Directive&) const = default;
};
struct FootnoteDefinition { QString label; bool operator==(const FootnoteDefinition&) const = default; };
struct FrontMatter { bool operator==(const FrontMatter&) const = default; };
struct Paragraph { bool operator==(const Paragraph&) const = default; };
struct LatexBlock { bool operator==(const LatexBlock&) const = default; };
struct HtmlBlock { bool operator==(const HtmlBlock&) const = default; };
}

using MarkdownBlockKind = std::variant<block_kind::Heading, block_kind::ThematicBreak, block_kind::Blockquote,
                                       block_kind::ListItem, block_kind::Fence, block_kind::Table,
                                       block_kind::Directive, block_kind::FootnoteDefinition,
                                       block_kind::FrontMatter, block_kind::Paragraph, block_kind::LatexBlock,
                                       block_kind::HtmlBlock>;

// The case name of a kind: "heading", "listItem", ...
[[nodiscard]] const char* blockKindName(const MarkdownBlockKind& kind);

}
