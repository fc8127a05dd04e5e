#include "EditingNotation.h"

#include "MarkdownEngine/Editing/MarkdownEditingCommands.h"
#include "MarkdownEngine/Editing/MarkdownTableSource.h"

#include <gtest/gtest.h>

using namespace velmo::markdown;
using namespace velmo::markdown::test;
using Commands = MarkdownEditingCommands;
using Kind = MarkdownTableCommand::Kind;

namespace {

struct Case {
    MarkdownTableCommand command;
    const char16_t* before;
    const char16_t* after; // u"none" when the command gives nothing
};

MarkdownTableCommand of(Kind kind)
{
    return {kind, MarkdownTableAlignment::none};
}

}

TEST(MarkdownTableCommand, structuralEdits)
{
    const Case cases[] = {
        {of(Kind::insertRowBelow), u"| a | b |\n| --- | --- |\n| 1‸ | 2 |",
         u"|  a  |  b  |\n| --- | --- |\n|  1  |  2  |\n| ‸    |     |"},
        // From the header a new row goes directly under the delimiter row.
        {of(Kind::insertRowAbove), u"| a‸ | b |\n| --- | --- |\n| 1 | 2 |",
         u"|  a  |  b  |\n| --- | --- |\n| ‸    |     |\n|  1  |  2  |"},
        {of(Kind::insertRowAbove), u"| a | b |\n| --- | --- |\n| 1 | 2‸ |",
         u"|  a  |  b  |\n| --- | --- |\n|     | ‸    |\n|  1  |  2  |"},
        {of(Kind::deleteRow), u"| a | b |\n| --- | --- |\n| 1‸ | 2 |", u"| ‸ a  |  b  |\n| --- | --- |"},
        {of(Kind::deleteRow), u"| a‸ | b |\n| --- | --- |\n| 1 | 2 |", u"none"},
        {of(Kind::deleteRow), u"| a | b |\n| --- | --- |\n| 1 | 2 |\n| 3‸ | 4 |",
         u"|  a  |  b  |\n| --- | --- |\n| ‸ 1  |  2  |"},
        {of(Kind::insertColumnBefore), u"| a | b‸ |\n| --- | --- |\n| 1 | 2 |",
         u"|  a  | ‸    |  b  |\n| --- | --- | --- |\n|  1  |     |  2  |"},
        {of(Kind::insertColumnAfter), u"| a | b‸ |\n| :-- | --: |\n| 1 | 2 |",
         u"|  a  |  b  | ‸    |\n| :-- | --: | --- |\n|  1  |  2  |     |"},
        {of(Kind::deleteColumn), u"| a | b‸ |\n| --- | --: |\n| 1 | 2 |", u"| ‸ a  |\n| --- |\n|  1  |"},
        {of(Kind::deleteColumn), u"| a‸ |\n| --- |\n| 1 |", u"‸"},
        {of(Kind::deleteColumn), u"x\n\n| a‸ |\n| --- |\n\ny", u"x\n\n‸\ny"},
        {of(Kind::moveRowUp), u"| a | b |\n| --- | --- |\n| 1 | 2 |\n| 3‸ | 4 |",
         u"|  a  |  b  |\n| --- | --- |\n| ‸ 3  |  4  |\n|  1  |  2  |"},
        {of(Kind::moveRowUp), u"| a | b |\n| --- | --- |\n| 1‸ | 2 |", u"none"},
        {of(Kind::moveRowDown), u"| a | b |\n| --- | --- |\n| 1 | 2‸ |\n| 3 | 4 |",
         u"|  a  |  b  |\n| --- | --- |\n|  3  |  4  |\n|  1  | ‸ 2  |"},
        {of(Kind::moveRowDown), u"| a‸ | b |\n| --- | --- |\n| 1 | 2 |", u"none"},
        {of(Kind::moveColumnLeft), u"| a | b‸ |\n| :-: | --- |\n| 1 | 2 |", u"| ‸ b  |  a  |\n| --- | :-: |\n|  2  |  1  |"},
        {of(Kind::moveColumnLeft), u"| a‸ | b |\n| --- | --- |", u"none"},
        {of(Kind::moveColumnRight), u"| a | b‸ |\n| --- | --- |", u"none"},
        {MarkdownTableCommand::alignColumn(MarkdownTableAlignment::center), u"| a | b‸ |\n| --- | --- |",
         u"|  a  | ‸ b  |\n| --- | :-: |"},
        {MarkdownTableCommand::alignColumn(MarkdownTableAlignment::right), u"| a‸ | b |\n| :-- | --- |",
         u"| ‸ a  |  b  |\n| --: | --- |"},
        {of(Kind::insertRowBelow), u"no table‸", u"none"},
        {of(Kind::insertRowBelow), u"| a |\nnot a delimiter‸ |", u"none"},
    };
    for (const Case& c : cases) {
        const Marked before = marked(QString::fromUtf16(c.before));
        EXPECT_EQ(outcome(before, Commands::tableEdit(before.text, before.selection, c.command)),
                  QString::fromUtf16(c.after))
            << c.command.name().toStdString() << " on " << QString::fromUtf16(c.before).toStdString();
    }
}

TEST(MarkdownTableCommand, tidying)
{
    const Case cases[] = {
        // A one-character column widens to three; a ragged row gets its missing cells.
        {{}, u"|a|\n|-|\n|1‸|", u"|  a  |\n| --- |\n| ‸ 1  |"},
        {{}, u"| a | b |\n| --- | --- |\n| 1‸ |", u"|  a  |  b  |\n| --- | --- |\n| ‸ 1  |     |"},
        // Text is centred in the source; the column is as wide as its widest cell.
        {{}, u"| long cell | x |\n|:-|-:|\n| ab‸ | y |",
         u"| long cell |  x  |\n| :-------- | --: |\n| ‸   ab     |  y  |"},
        // Width counts characters: a CJK cell of two is padded like any other two.
        {{}, u"| 漢字 |\n| --- |\n| 😀‸ |", u"| 漢字  |\n| --- |\n| ‸ 😀  |"},
        // An escaped pipe stays inside its cell and keeps its backslash.
        {{}, u"| a \\| b | c‸ |\n| - | - |", u"| a \\| b | ‸ c  |\n| ------ | --- |"},
        // Table commands need a pipe at one end of every line.
        {{}, u"a | b‸\n--- | ---", u"none"},
        {{}, u"a | b |‸\n--- | --- |", u"|  a  | ‸ b  |\n| --- | --- |"},
        // CRLF lines keep their terminator.
        {{}, u"| a‸ |\r\n| - |\r\n| 1 |\r\n", u"| ‸ a  |\r\n| --- |\r\n|  1  |\r\n"},
    };
    for (const Case& c : cases) {
        const Marked before = marked(QString::fromUtf16(c.before));
        EXPECT_EQ(outcome(before, Commands::tidyTable(before.text, before.selection)), QString::fromUtf16(c.after))
            << QString::fromUtf16(c.before).toStdString();
    }
}

TEST(MarkdownTableCommand, caretCellAndShape)
{
    struct Row {
        int at;
        int row, column;
    };
    const QString text = QStringLiteral("| a | b |\n| --- | --- |\n| 1 | 2 |\n| 3 | 4 |");
    const Row rows[] = {{0, 0, 0}, {2, 0, 0}, {5, 0, 1}, {9, 0, 2}, {12, 0, 0}, {26, 1, 0}, {30, 1, 1},
                        {int(text.size()), 2, 2}};
    const auto shape = MarkdownTableSource::tableShape(text, {0, 0});
    ASSERT_TRUE(shape.has_value());
    EXPECT_EQ(shape->range, (MarkdownSourceRange{0, int(text.size())}));
    for (const Row& r : rows) {
        const auto source = MarkdownTableSource::make(text, *shape, r.at);
        ASSERT_TRUE(source.has_value());
        EXPECT_EQ(source->row, r.row) << r.at;
        EXPECT_EQ(source->column, r.column) << r.at;
    }
    // The shape is found from any line of the table, and stops at the lines around it.
    const QString embedded = QStringLiteral("intro\n| a |\n| - |\n| 1 |\nafter");
    const auto inner = MarkdownTableSource::tableShape(embedded, {int(embedded.indexOf(u'1')), 0});
    ASSERT_TRUE(inner.has_value());
    EXPECT_EQ(inner->range, (MarkdownSourceRange{6, 17}));
    EXPECT_EQ(inner->alignments.size(), 1u);
}

TEST(MarkdownTableCommand, clipboardRenderings)
{
    const QString text = QStringLiteral("| a \\| b | \"q\", r |\n| --- | --- |\n| <1> & | 2 |\n| x\\y |");
    const MarkdownSourceRange caret{0, 0};
    EXPECT_EQ(Commands::tableTSV(text, caret), QStringLiteral("a | b\t\"q\", r\n<1> &\t2\nx\\y"));
    EXPECT_EQ(Commands::tableClipboard(text, caret, MarkdownTableCopyFormat::csv),
              QStringLiteral("a | b,\"\"\"q\"\", r\"\n<1> &,2\nx\\y,"));
    EXPECT_EQ(Commands::tableClipboard(text, caret, MarkdownTableCopyFormat::html),
              QStringLiteral("<table>\n  <thead>\n    <tr><th>a | b</th><th>\"q\", r</th></tr>\n  </thead>\n"
                             "  <tbody>\n    <tr><td>&lt;1&gt; &amp;</td><td>2</td></tr>\n"
                             "    <tr><td>x\\y</td><td></td></tr>\n  </tbody>\n</table>"));
    EXPECT_EQ(Commands::tableClipboard(QStringLiteral("| h |\n| - |"), caret, MarkdownTableCopyFormat::html),
              QStringLiteral("<table>\n  <thead>\n    <tr><th>h</th></tr>\n  </thead>\n</table>"));
    EXPECT_FALSE(Commands::tableTSV(QStringLiteral("plain"), caret).has_value());
    EXPECT_EQ(MarkdownTableSource::unescaped(u"a\\|b\\c\\"), QStringLiteral("a|b\\c\\"));
}

TEST(MarkdownTableCommand, names)
{
    for (const MarkdownTableCommand& command : MarkdownTableCommand::all())
        EXPECT_EQ(MarkdownTableCommand::fromName(command.name()), command) << command.name().toStdString();
    EXPECT_EQ(MarkdownTableCommand::alignColumn(MarkdownTableAlignment::center).name(), QStringLiteral("alignColumn:center"));
    EXPECT_FALSE(MarkdownTableCommand::fromName(u"alignColumn").has_value());
}
