#include "MarkdownEngine/Core/MarkdownDocument.h"
#include "MarkdownEngine/Core/MarkdownSourceEditorState.h"

#include <QThread>
#include <gtest/gtest.h>
#include <memory>

using namespace velmo::markdown;

TEST(MarkdownDocument, blockAt)
{
    const MarkdownDocument document = MarkdownDocument::parse(QStringLiteral("a\n\nb\n"));
    ASSERT_EQ(document.blocks.size(), 2u);
    struct Case { int at; int block; };
    for (const Case& c : {Case{0, 0}, Case{1, 0}, Case{2, -1}, Case{3, 1}, Case{4, 1}, Case{5, -1}}) {
        const MarkdownBlock* found = document.block(c.at);
        EXPECT_EQ(found ? int(found - document.blocks.data()) : -1, c.block) << c.at;
    }
    // An empty range matches its own location.
    MarkdownDocument empty;
    empty.blocks.emplace_back(block_kind::Paragraph{}, MarkdownSourceRange{3, 0});
    EXPECT_TRUE(empty.block(3));
    EXPECT_FALSE(empty.block(4));
}

TEST(MarkdownDocument, inlinesAndTokens)
{
    const MarkdownDocument document = MarkdownDocument::parse(QStringLiteral("**[a](b)**\n\nx|y\n-|-\n[[p]]|z"));
    const auto all = document.inlines();
    EXPECT_TRUE(std::is_sorted(all.begin(), all.end(), [](auto a, auto b) {
        return a->range.location < b->range.location;
    }));
    const MarkdownInline* token = document.token(3);
    ASSERT_TRUE(token);
    EXPECT_TRUE(token->is<inline_kind::Text>());
    EXPECT_EQ(token->range, (MarkdownSourceRange{3, 1}));
    EXPECT_FALSE(document.token(10));
    // Table cells contribute their inlines, wiki links included.
    const auto links = document.wikiLinks();
    ASSERT_EQ(links.size(), 1u);
    EXPECT_EQ(links[0].target, QStringLiteral("p"));
    EXPECT_EQ(links[0].range, (MarkdownSourceRange{20, 5}));
}

TEST(MarkdownDocument, footnoteReferencesKeepRepeats)
{
    const MarkdownDocument document = MarkdownDocument::parse(QStringLiteral("a[^1] b[^X] c[^1]\n\n[^1]: n"));
    EXPECT_EQ(document.footnoteReferences(), (QStringList{"1", "X", "1"}));
}

TEST(MarkdownDocument, outlineUsesPlainTitles)
{
    const MarkdownDocument document =
        MarkdownDocument::parse(QStringLiteral("# *Big* [[x|y]]\n#\n## \\*\nSetext\n---\n"));
    const auto outline = document.outline();
    ASSERT_EQ(outline.size(), 4u);
    EXPECT_EQ(outline[0].title, QStringLiteral("Big x|y"));
    EXPECT_EQ(outline[0].id, document.blocks[0].id);
    EXPECT_EQ(outline[1].title, QStringLiteral("Untitled"));
    EXPECT_EQ(outline[2].title, QStringLiteral("\\*")); // an escape alone: the input comes back
    EXPECT_EQ(outline[3].level, 2);
    EXPECT_LT(document.blocks[0].id, document.blocks[1].id);
}

TEST(MarkdownDocument, plainText)
{
    struct Case { const char16_t* in; const char16_t* out; };
    const Case cases[] = {
        {u"a *b* `c`", u"a b c"},
        {u"**a *b* c**", u"a *b* c"}, // nested markers stay: content is taken as it stands
        {u"a\\*b", u"ab"},
        {u"![i](s)", u"![i](s)"},
        {u"line\nnext", u"line next"},
    };
    for (const Case& c : cases)
        EXPECT_EQ(MarkdownDocument::plainText(QString::fromUtf16(c.in)), QString::fromUtf16(c.out))
            << QString::fromUtf16(c.in).toStdString();
}

TEST(MarkdownSourceEditorState, selectionQueries)
{
    const auto caret = MarkdownSourceEditorState::caret(5);
    EXPECT_EQ(caret.caretLocation(), 5);
    EXPECT_TRUE(caret.intersects({5, 3}));  // touching the start
    EXPECT_TRUE(caret.intersects({2, 3}));  // touching the end
    EXPECT_FALSE(caret.intersects({6, 1}));
    EXPECT_TRUE(caret.caretInside({2, 3}));
    EXPECT_FALSE(caret.contains({5, 0})); // a caret holds nothing, not even an empty range
    const MarkdownSourceEditorState selection{{{2, 4}}, {}};
    EXPECT_FALSE(selection.caretLocation());
    EXPECT_TRUE(selection.contains({3, 3}));
    EXPECT_FALSE(selection.contains({3, 4}));
    EXPECT_FALSE(selection.caretInside({0, 10}));
    EXPECT_TRUE(MarkdownSourceEditorState::none().isEmpty());
}

TEST(MarkdownDocument, deepTreesBuildCopyAndWalkWithoutRecursion)
{
    // A 100,000-deep chain on a 512 KB worker stack: recursion per level could not survive it.
    int visited = 0;
    size_t copiedChildren = 0;
    std::unique_ptr<QThread> worker(QThread::create([&] {
        MarkdownInlineList::Builder builder;
        std::vector<MarkdownInline> level;
        level.emplace_back(inline_kind::Emphasis{}, MarkdownSourceRange{0, 1});
        for (int depth = 0; depth < 100'000; ++depth) {
            MarkdownInline parent(inline_kind::Emphasis{}, {0, 1});
            builder.adopt(parent, level);
            level.push_back(std::move(parent));
        }
        builder.top().push_back(std::move(level.front()));
        const MarkdownInlineList list = builder.take();
        MarkdownInlineList copy = list;
        copy = list;
        copy[0].forEach([&visited](const MarkdownInline&) { ++visited; });
        copiedChildren = copy[0].children().size();
    }));
    worker->setStackSize(512 * 1024);
    worker->start();
    worker->wait();
    EXPECT_EQ(visited, 100'001);
    EXPECT_EQ(copiedChildren, 1u);
}
