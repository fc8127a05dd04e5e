#include "EditingNotation.h"

#include "MarkdownEngine/Editing/MarkdownEditingCommands.h"

#include <gtest/gtest.h>
#include <functional>

using namespace velmo::markdown;
using namespace velmo::markdown::test;
using Commands = MarkdownEditingCommands;
using Edit = Commands::Edit;

namespace {

using Command = EditCommand;


}

TEST(MarkdownEditingCommandsBlocks, returnInLists)
{
    check(&Commands::newline, {
        {u"- a‸", u"- a\n- ‸"},
        {u"- ‸", u"‸"},
        {u"x\n- ‸\ny", u"x\n‸\ny"},
        {u"  - ‸", u"- ‸"},
        {u"\t- ‸", u"- ‸"},
        {u"      - ‸", u"  - ‸"},
        {u"1. a‸", u"1. a\n2. ‸"},
        {u"9) a‸", u"9) a\n10) ‸"},
        {u"- [x] a‸", u"- [x] a\n- [ ] ‸"},
        {u"- [ ] ‸", u"‸"},
        {u"- a‸b", u"- a\n- ‸b"},
        {u"* a‸", u"* a\n- ‸"},
        {u"  + a‸", u"  + a\n  - ‸"},
        {u"- 漢字‸", u"- 漢字\n- ‸"},
        {u"- a‸\r\nb", u"- a\n- ‸\r\nb"},
        {u"a‸", u"none"},
        {u"-‸", u"none"},
        {u"- - -‸", u"none"},
        {u"«- a»", u"none"},
    });
}

TEST(MarkdownEditingCommandsBlocks, returnRenumbersTheItemsAfter)
{
    check(&Commands::newline, {
        {u"1. a‸\n2. b\n3. c", u"1. a\n2. ‸\n3. b\n4. c"},
        {u"1. a‸\n  - x\n2. b", u"1. a\n2. ‸\n  - x\n3. b"},
        {u"1. a‸\n5. b", u"1. a\n2. ‸\n5. b"},
        {u"1. a‸\n2. b\n\n2. c", u"1. a\n2. ‸\n3. b\n\n2. c"},
    });
}

TEST(MarkdownEditingCommandsBlocks, returnInQuotesAndFences)
{
    check(&Commands::newline, {
        {u"> a‸", u"> a\n> ‸"},
        {u"> ‸", u"‸"},
        {u"> > ‸", u"> ‸"},
        {u"> - a‸", u"> - a\n> - ‸"},
        {u"> - ‸", u"> ‸"},
        {u"> [!NOTE]‸", u"> [!NOTE]\n> ‸"},
        {u">‸ a", u"none"},
        {u"```js‸", u"```js\n‸\n```"},
        {u"```j‸s", u"```js\n‸\n```"},
        {u"```‸\nx\n```", u"none"},
        {u"```\nx\n```‸", u"none"},
        {u"~~~‸", u"none"},
    });
}

TEST(MarkdownEditingCommandsBlocks, pairing)
{
    auto typing = [](QChar c, bool closePairs = true) {
        return [=](const QString& t, MarkdownSourceRange s) { return Commands::pair(t, c, s, closePairs); };
    };
    check(typing(u'*'), {{u"«a»", u"*«a»*"}, {u"*«a»*", u"«a»"}, {u"‸", u"none"}});
    check(typing(u'('), {{u"«a»", u"(«a»)"}});
    check(typing(u'['), {{u"x«漢»", u"x[«漢»]"}});
    check(typing(u'~'), {{u"«a»", u"~~«a»~~"}});
    check(typing(u'='), {{u"«a»", u"==«a»=="}});
    check(typing(u'"'), {{u"«a»", u"\"«a»\""}});
    check(typing(u'x'), {{u"«a»", u"none"}});
    check(typing(u'*', false), {{u"«a»", u"none"}});
}

TEST(MarkdownEditingCommandsBlocks, indentationOfLines)
{
    struct Row {
        const char16_t* line;
        const char16_t* indentation;
        const char16_t* content;
    };
    const Row rows[] = {
        {u"a", u"", u""},
        {u"  \tb", u"  \t", u"  \t"},
        {u"- a", u"", u"  "},
        {u"  10. a", u"  ", u"      "},
        {u"> - [ ] a", u"", u">       "},
        {u"> > a", u"", u"> > "},
        {u"[x] a", u"", u""},
    };
    for (const Row& row : rows) {
        const QString line = QString::fromUtf16(row.line);
        EXPECT_EQ(Commands::indentation(line, 1), QString::fromUtf16(row.indentation)) << line.toStdString();
        EXPECT_EQ(Commands::contentIndentation(line, 1), QString::fromUtf16(row.content)) << line.toStdString();
    }
    EXPECT_EQ(Commands::indentation(QString(), 5), QString());
    EXPECT_EQ(Commands::reindent(QStringLiteral("a\n\nb"), QStringLiteral("  "), QStringLiteral("- ")),
              QStringLiteral("- a\n\n  b"));
    EXPECT_EQ(Commands::reindent(QStringLiteral("a\nb"), {}, {}), QStringLiteral("a\nb"));
}

TEST(MarkdownEditingCommandsBlocks, tableInsertion)
{
    auto table = [](int rows, int columns) {
        return [=](const QString& t, MarkdownSourceRange s) { return Commands::table(t, s, rows, columns); };
    };
    check(table(2, 2), {{u"‸", u"| ‸    |     |\n| --- | --- |\n|     |     |\n"}});
    check(table(1, 1), {
        {u"a‸", u"a\n\n| ‸    |\n| --- |\n"},
        {u"a\n‸\nb", u"a\n\n| ‸    |\n| --- |\n\nb"},
        {u"a\n\n‸\n\nb", u"a\n\n| ‸    |\n| --- |\n\nb"},
        {u"‸b", u"| ‸    |\n| --- |\n\nb"},
        {u"| a |\n| - |\n| ‸ |", u"none"},
    });
    check(table(0, 0), {{u"‸", u"| ‸    |\n| --- |\n"}});
}

TEST(MarkdownEditingCommandsBlocks, frontMatter)
{
    auto fields = [](const char* f) {
        return [=](const QString& t, MarkdownSourceRange s) { return Commands::frontMatter(t, s, QString::fromUtf8(f)); };
    };
    check(fields("title: x\ndate: 2026-01-02"), {
        {u"‸a", u"---\ntitle: x\ndate: 2026-01-02\n---\n\n‸a"},
        {u"‸\na", u"---\ntitle: x\ndate: 2026-01-02\n---\n‸\na"},
        {u"---\ntitle: a\n---\nb‸", u"---\ntitle: a\ndate: 2026-01-02\n---\nb‸"},
        {u"---\ntitle: a\ndate: b\n...\n‸", u"none"},
    });
    // "---" with no closer is a thematic break, not front matter.
    check(fields("tags: t"), {{u"---\n‸a", u"---\ntags: t\n---\n\n---\n‸a"}});
}

TEST(MarkdownEditingCommandsBlocks, footnotes)
{
    check([](const QString& t, MarkdownSourceRange s) { return Commands::footnote(t, s); }, {
        {u"a [^1] b [^3] c [^note]‸", u"a [^1] b [^3] c [^note][^4]\n\n[^4]: ‸"},
        {u"a‸ b", u"a[^1] b\n\n[^1]: ‸"},
        {u"a‸\n", u"a[^1]\n\n[^1]: ‸"},
        {u"«x»", u"x[^1]\n\n[^1]: ‸"},
        {u"[^99999999999999999999] ‸", u"[^99999999999999999999] [^1]\n\n[^1]: ‸"},
    });
    check(&Commands::renumberFootnotes, {
        {u"x[^b] y[^a]‸\n\n[^a]: A\n[^b]: B", u"x[^1] y[^2]‸\n\n[^2]: A\n[^1]: B"},
        {u"[^z]: Z\n[^y]: Y‸", u"[^1]: Z\n[^2]: Y‸"},
        {u"a«[^x]»b [^x]", u"a«[^1]»b [^1]"},
        {u"[^1] [^2]\n[^1]: a‸", u"none"},
        {u"no notes [^] here‸", u"none"},
    });
}

TEST(MarkdownEditingCommandsBlocks, callouts)
{
    auto callout = [](MarkdownCallout kind) {
        return [=](const QString& t, MarkdownSourceRange s) { return Commands::callout(t, s, kind); };
    };
    check(callout(MarkdownCallout::note), {
        {u"‸", u"> [!NOTE]\n> ‸"},
        {u"a‸", u"a\n\n> [!NOTE]\n> ‸"},
        {u"a‸\nb", u"a\n\n> [!NOTE]\n> ‸\n\nb"},
    });
    check(callout(MarkdownCallout::warning), {{u"«a\nb»", u"> [!WARNING]\n> a\n> b‸"}});
    check(callout(MarkdownCallout::tip), {{u"x\n«> a\n>b»\ny", u"x\n> [!TIP]\n> a\n> b‸\ny"}});
}

TEST(MarkdownEditingCommandsBlocks, movingLines)
{
    auto move = [](int offset) {
        return [=](const QString& t, MarkdownSourceRange s) { return Commands::moveLines(t, s, offset); };
    };
    check(move(-1), {
        {u"a\nb‸", u"b‸\na"},
        {u"a\n«b\nc»\nd", u"«b\nc»\na\nd"},
        {u"a\r\nb‸", u"b‸\r\na"},
        {u"a‸\nb", u"none"},
        {u"‸", u"none"},
        {u"a\n‸", u"‸\na"},
    });
    check(move(1), {
        {u"a‸\nb", u"b\na‸"},
        {u"a‸\nb\n", u"b\na‸\n"},
        {u"x\n«😀»\ny\nz", u"x\ny\n«😀»\nz"},
        {u"a\nb‸", u"none"},
    });
}
