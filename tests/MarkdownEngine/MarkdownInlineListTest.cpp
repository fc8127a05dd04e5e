#include "MarkdownEngine/Core/MarkdownDocument.h"
#include "MarkdownEngine/Core/MarkdownInlineNode.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

using namespace velmo::markdown;

namespace {

// Every payload of the document's inlines, read through their lists, one per line.
std::string payloads(const MarkdownDocument& document)
{
    QString out;
    for (const MarkdownBlock& block : document.blocks) {
        for (const MarkdownInlineNode& node : MarkdownInlineNode::from(block.inlines, document.text)) {
            std::visit(
                [&out](const auto& kind) {
                    using Kind = std::decay_t<decltype(kind)>;
                    if constexpr (std::is_same_v<Kind, inline_node::Link>)
                        out += QStringLiteral("link ") + kind.destination.value_or(u"-"_qs) + u' ' + kind.title.value_or(u"-"_qs);
                    else if constexpr (std::is_same_v<Kind, inline_node::WikiLink>)
                        out += QStringLiteral("wiki ") + kind.target + u'|' + kind.display;
                    else if constexpr (std::is_same_v<Kind, inline_node::Image>)
                        out += QStringLiteral("image ") + kind.source + u'|' + kind.alt;
                    else if constexpr (std::is_same_v<Kind, inline_node::Code>)
                        out += QStringLiteral("code ") + kind.language.value_or(u"-"_qs);
                    else if constexpr (std::is_same_v<Kind, inline_node::Latex>)
                        out += QStringLiteral("math ") + kind.source;
                    else if constexpr (std::is_same_v<Kind, inline_node::FootnoteReference>)
                        out += QStringLiteral("note ") + kind.label;
                    else if constexpr (std::is_same_v<Kind, inline_node::Html>)
                        out += QStringLiteral("html ") + kind.source;
                    else
                        return;
                    out += u'\n';
                },
                node.kind);
        }
    }
    return out.toStdString();
}

const QString note = QStringLiteral("A [ref] and [t](/d \"T\") with ![*alt* text][ref] and ![](x.png).\n\n"
                                    "[[Target|shown]] ```js\nx``` $e^x$ [^n] <b> <https://a.b>\n\n"
                                    "[ref]: /from/definition\n[^n]: note\n");

const std::string expected = ("link /from/definition -\nlink /d T\nimage /from/definition|alt text\n"
                                        "image x.png|\nwiki Target|shown\ncode js\nmath e^x\nnote n\nhtml b\n"
                                        "link https://a.b -\n");

}

// Payload texts are ranges of the note or strings of the list: both must read the same after
// the document is copied and the original freed, and after a reparse has moved the blocks.
TEST(MarkdownInlineList, payloadsSurviveCopiesAndMoves)
{
    auto original = std::make_unique<MarkdownDocument>(MarkdownDocument::parse(note));
    ASSERT_EQ(payloads(*original), expected);
    const MarkdownDocument copy = *original;
    original.reset();
    EXPECT_EQ(payloads(copy), expected);

    // An edit before every block: each is moved, none parsed again.
    MarkdownDocumentChange change;
    const QString edited = QStringLiteral("Intro.\n\n") + note;
    const MarkdownDocument moved = MarkdownDocument::reparse(MarkdownDocument(copy), edited, change);
    EXPECT_LE(change.oldEnd, 1u); // at most the first block parsed again
    EXPECT_EQ(payloads(moved), expected);
    EXPECT_TRUE(moved.hasSameTree(MarkdownDocument::parse(edited)));
}
