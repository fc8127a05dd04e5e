#include "MarkdownEngine/Core/MarkdownDocument.h"
#include "MarkdownEngine/Parser/BlockTokenizer.h"

#include <gtest/gtest.h>

using namespace velmo::markdown;

namespace {

QString range(MarkdownSourceRange r)
{
    return QStringLiteral("%1+%2").arg(r.location).arg(r.length);
}

QString payload(const MarkdownBlockKind& kind)
{
    return std::visit(
        [](const auto& k) -> QString {
            using K = std::decay_t<decltype(k)>;
            if constexpr (std::is_same_v<K, block_kind::Heading>)
                return QStringLiteral("(%1%2)").arg(k.level).arg(k.setext ? "s" : "");
            else if constexpr (std::is_same_v<K, block_kind::ThematicBreak>)
                return QStringLiteral("(%1)").arg(QChar(k.character));
            else if constexpr (std::is_same_v<K, block_kind::Fence>)
                return QStringLiteral("(%1,%2,%3)")
                    .arg(k.language.value_or(QStringLiteral("-")), k.info, k.closed ? "closed" : "open");
            else if constexpr (std::is_same_v<K, block_kind::Directive>)
                return QStringLiteral("(%1,%2)").arg(k.name, k.hasBody ? "body" : "leaf");
            else if constexpr (std::is_same_v<K, block_kind::FootnoteDefinition>)
                return QStringLiteral("(%1)").arg(k.label);
            else if constexpr (std::is_same_v<K, block_kind::ListItem>)
                return std::visit(
                    [](const auto& m) -> QString {
                        if constexpr (std::is_same_v<std::decay_t<decltype(m)>, list_kind::Bullet>)
                            return QStringLiteral("(%1)").arg(QChar(m.character));
                        else
                            return QStringLiteral("(%1%2)").arg(m.number).arg(QChar(m.delimiter));
                    },
                    k.marker.kind);
            else
                return {};
        },
        kind);
}

// One block a line: kind(payload) range content [markers] q<depth> l<depth>.
QString dump(const MarkdownDocument& document)
{
    QStringList lines;
    for (const MarkdownBlock& block : document.blocks) {
        QStringList markers;
        for (const MarkdownSourceRange& marker : block.markerRanges)
            markers << range(marker);
        QString line = QStringLiteral("%1%2 %3 %4 [%5]")
                           .arg(blockKindName(block.kind), payload(block.kind), range(block.range),
                                range(block.contentRange), markers.join(u' '));
        if (block.quoteDepth)
            line += QStringLiteral(" q%1").arg(block.quoteDepth);
        if (block.listDepth)
            line += QStringLiteral(" l%1").arg(block.listDepth);
        lines << line;
    }
    return lines.join(u'\n');
}

struct Case {
    const char* name;
    const char16_t* text;
    const char* expected;
};

void runCases(std::initializer_list<Case> cases, const MarkdownParseOptions& options = {})
{
    for (const Case& c : cases) {
        const MarkdownDocument document = MarkdownDocument::parse(QString::fromUtf16(c.text), options);
        EXPECT_EQ(dump(document).toStdString(), std::string(c.expected)) << c.name;
    }
}

}

TEST(BlockTokenizer, splitsAtLineFeedOnly)
{
    const QString text = QStringLiteral("> > a\r\nb\rc\n>  > d\n");
    const auto lines = BlockTokenizer::split(text);
    ASSERT_EQ(lines.size(), 4u);
    EXPECT_EQ(lines[0].fullRange, (MarkdownSourceRange{0, 7}));
    EXPECT_EQ(lines[0].contentRange, (MarkdownSourceRange{4, 1}));
    EXPECT_EQ(lines[0].quoteDepth, 2);
    EXPECT_EQ(lines[0].quoteMarkers[1], (MarkdownSourceRange{2, 2}));
    EXPECT_EQ(lines[1].text, u"b\rc"); // a lone CR stays inside the line
    EXPECT_EQ(lines[2].quoteDepth, 1);
    EXPECT_EQ(lines[2].text, u" > d");
    EXPECT_EQ(lines[2].indent, 1);
    EXPECT_EQ(lines[3].fullRange, (MarkdownSourceRange{int(text.size()), 0}));
    EXPECT_EQ(BlockTokenizer::split(u"").size(), 1u);
    EXPECT_EQ(BlockTokenizer::split(u"a").size(), 1u);
    EXPECT_TRUE(BlockTokenizer::split(u">\t\n")[0].isBlank);
}

TEST(BlockTokenizer, leafBlocks)
{
    runCases({
        {"empty", u"", ""},
        {"trailing LF", u"a\n", "paragraph 0+2 0+1 []"},
        {"atx", u"## a ##\n", "heading(2) 0+8 3+1 [0+3 4+3]"},
        {"atx closing run without space", u"# a#", "heading(1) 0+4 2+1 [0+2 3+1]"},
        {"atx all hashes keeps them", u"# ##", "heading(1) 0+4 2+2 [0+2]"},
        {"atx trailing spaces are a closing marker", u"# a  ", "heading(1) 0+5 2+1 [0+2 3+2]"},
        {"atx tab is content", u"#\ta", "heading(1) 0+3 1+2 [0+1]"},
        {"atx indented", u"    # a", "heading(1) 0+7 6+1 [4+2]"},
        {"seven hashes", u"####### a", "paragraph 0+9 0+9 []"},
        {"setext", u"a\n==\n", "heading(1s) 0+5 0+1 [2+2]"},
        {"setext needs two", u"a\n=", "paragraph 0+3 0+3 []"},
        {"setext only after one line", u"a\nb\n===", "paragraph 0+7 0+7 []"},
        {"setext not under a list item", u"- a\n--", "listItem(-) 0+4 2+1 [0+2]\nparagraph 4+2 4+2 []"},
        {"thematic break", u" * * *\n", "thematicBreak(*) 0+7 0+6 [0+6]"},
        {"thematic break indented by a tab", u"\t---", "paragraph 0+4 0+4 []"},
        {"front matter", u"---\nx: 1\n...\nb", "frontMatter 0+13 4+5 [0+3 9+3]\nparagraph 13+1 13+1 []"},
        {"front matter unclosed is a break", u"---\na", "thematicBreak(-) 0+4 0+3 [0+3]\nparagraph 4+1 4+1 []"},
        {"front matter only first", u"\n---\na\n---", "thematicBreak(-) 1+4 1+3 [1+3]\nheading(2s) 5+5 5+1 [7+3]"},
        {"link definition adds no block", u"[x]: <a b> \"t\"\n", ""},
        {"html off by default", u"<div>\n</div>", "paragraph 0+12 0+12 []"},
    });
}

TEST(BlockTokenizer, fencesLatexAndDirectives)
{
    runCases({
        {"fence", u"```swift x\ncode\n```\n", "fence(swift,swift x,closed) 0+20 11+5 [0+10 16+3]"},
        {"fence unclosed", u"~~~\na", "fence(-,,open) 0+5 4+1 [0+3]"},
        {"fence closer needs length", u"````\n```\n````", "fence(-,,closed) 0+13 5+4 [0+4 9+4]"},
        {"backtick info with backtick", u"``` a`b", "paragraph 0+7 0+7 []"},
        {"fence in a quote stays open", u"> ```\n```\n> ```", "fence(-,,closed) 0+15 6+4 [0+2 2+3 10+2 12+3] q1"},
        {"latex", u"$$\nx\n$$", "latexBlock 0+7 3+2 [0+2 5+2]"},
        {"latex bracket", u"\\[ a\nx \\]", "latexBlock 0+9 5+0 [0+4 5+4]"},
        {"latex unclosed", u"$$\nx", "paragraph 0+4 0+4 []"},
        {"leaf directive", u"::note a=1\n", "directive(note,leaf) 0+11 0+10 [0+2]"},
        {"container", u"::: note\nbody\nfoo:::\nb", "directive(note,body) 0+21 9+5 [0+3 14+6]\nparagraph 21+1 21+1 []"},
        {"container unclosed", u":::x\na\nb", "directive(x,body) 0+8 5+2 [0+3]"},
        {"four colons", u"::::x", "paragraph 0+5 0+5 []"},
        {"quoted directive marker equal to a quote marker", u"> ::x", "directive(x,leaf) 0+5 2+3 [0+2] q1"},
    });
}

TEST(BlockTokenizer, listsTablesFootnotesParagraphs)
{
    runCases({
        {"list continuation", u"- a\n  b", "listItem(-) 0+7 2+5 [0+2]"},
        {"list lazy line is a paragraph", u"- a\nb", "listItem(-) 0+4 2+1 [0+2]\nparagraph 4+1 4+1 []"},
        {"list blank ends item", u"- a\n\n  b", "listItem(-) 0+4 2+1 [0+2]\nparagraph 5+3 5+3 []"},
        {"ordered empty", u"1)", "listItem(1)) 0+2 2+0 [0+2]"},
        {"ordered huge number", u"99999999999999999999. a", "listItem(1.) 0+23 22+1 [0+21]"},
        {"nested depth", u"- a\n    - b", "listItem(-) 0+4 2+1 [0+2]\nlistItem(-) 4+7 10+1 [8+2] l2"},
        {"quoted continuation", u"- a\n> b", "listItem(-) 0+7 2+5 [0+2 4+2]"},
        {"list interrupts paragraph", u"a\n2. b", "paragraph 0+2 0+1 []\nlistItem(2.) 2+4 5+1 [2+2]"},
        {"quote depth splits paragraph", u"> a\nb", "paragraph 0+4 2+1 [0+2] q1\nparagraph 4+1 4+1 []"},
        {"leading space is no quote", u" > a", "paragraph 0+4 0+4 []"},
        {"setext underline under two lines", u"a\nb\n---", "paragraph 0+4 0+3 []\nthematicBreak(-) 4+3 4+3 [4+3]"},
        {"footnote", u"[^a]: x\n  y\nz", "footnoteDefinition(a) 0+12 6+5 [0+5]\nparagraph 12+1 12+1 []"},
        {"table", u"a|b\n-|:-:\n|1|2|3\nx", "table 0+17 0+17 [0+3 4+5 10+6]\nparagraph 17+1 17+1 []"},
        {"table needs delimiter row", u"| a |", "paragraph 0+5 0+5 []"},
        {"table interrupts paragraph", u"p\na|b\n-|-", "paragraph 0+2 0+1 []\ntable 2+7 2+7 [2+3 6+3]"},
        {"dollar line interrupts", u"a\n$$", "paragraph 0+2 0+1 []\nparagraph 2+2 2+2 []"},
        {"bracket line does not interrupt", u"a\n\\[", "paragraph 0+4 0+4 []"},
    });
}

TEST(BlockTokenizer, tableCells)
{
    const MarkdownDocument document = MarkdownDocument::parse(QStringLiteral(" a | b \n-|-|-\n|1|2|3|4\nx\\|y|\\"));
    const auto* table = document.blocks.at(0).as<block_kind::Table>();
    ASSERT_TRUE(table);
    const auto& rows = table->table.rows;
    ASSERT_EQ(rows.size(), 3u);
    QStringList cells;
    for (const auto& row : rows) {
        QStringList texts;
        for (const MarkdownTableCell& cell : row)
            texts << document.text.mid(cell.range.location, cell.range.length);
        cells << texts.join(u',');
    }
    // Leading space: the first `|` is not at the range start, so no cell is skipped; surplus
    // cells go; a final piece after a backslash is dropped; missing cells are empty.
    EXPECT_EQ(cells.join(u';'), QStringLiteral("a,b,;1,2,3;x\\|y,,"));
    EXPECT_EQ(rows[0][2].range, (MarkdownSourceRange{7, 0}));
    EXPECT_EQ(table->table.rowRanges.size(), 4u);
    EXPECT_EQ(BlockTokenizer::tableAlignments(u"|:-|-:|:-:|-|", 4).value(),
              (std::vector{MarkdownTableAlignment::left, MarkdownTableAlignment::right,
                           MarkdownTableAlignment::center, MarkdownTableAlignment::none}));
    EXPECT_FALSE(BlockTokenizer::tableAlignments(u"-|-|-", 2));
    EXPECT_TRUE(BlockTokenizer::tableAlignments(u"-|-", 2));
    EXPECT_FALSE(BlockTokenizer::tableAlignments(u"-|x", 2));
    EXPECT_FALSE(BlockTokenizer::tableAlignments(u"-||-", 4));
}

TEST(BlockTokenizer, definitions)
{
    const MarkdownDocument document = MarkdownDocument::parse(
        QStringLiteral("[X]: <a b> \"t\"\n[x]: c\n[]: \n[^N]: one\n  two\n[^n]: three\n[^no]:x"));
    EXPECT_EQ(document.linkDefinitions.value(QStringLiteral("x")), QStringLiteral("c"));
    EXPECT_TRUE(document.linkDefinitions.contains(QString()));
    EXPECT_EQ(document.footnoteDefinitions.value(QStringLiteral("n")), QStringLiteral("three"));
    EXPECT_EQ(document.footnoteDefinitions.value(QStringLiteral("no")), QStringLiteral("x"));
    EXPECT_EQ(MarkdownDocument::parse(QStringLiteral("[x]: <a b> \"t\"")).linkDefinitions.value(QStringLiteral("x")),
              QStringLiteral("<a b>"));
}

TEST(BlockTokenizer, optionsSwitchConstructsOff)
{
    MarkdownParseOptions options;
    options.frontMatter = options.tables = options.latex = options.directives = options.footnotes = false;
    options.blockHtml = true;
    runCases(
        {
            {"no front matter", u"---\na\n---", "thematicBreak(-) 0+4 0+3 [0+3]\nheading(2s) 4+5 4+1 [6+3]"},
            {"no table", u"a|b\n-|-", "paragraph 0+7 0+7 []"},
            {"no latex: a dollar line still interrupts", u"$$\na\n$$", "paragraph 0+5 0+4 []\nparagraph 5+2 5+2 []"},
            {"no directive", u"::x", "paragraph 0+3 0+3 []"},
            {"no footnote", u"[^a]: b", "paragraph 0+7 0+7 []"},
            {"html block", u"<DIV a>\nx\n</div>\ny", "htmlBlock 0+17 0+7 []\nparagraph 17+1 17+1 []"},
            {"html unclosed", u"<details>\nx", "htmlBlock 0+11 0+9 []"},
        },
        options);
}

TEST(BlockTokenizer, predicates)
{
    EXPECT_EQ(BlockTokenizer::setextLevel(u"=="), 1);
    EXPECT_FALSE(BlockTokenizer::setextLevel(u"-=-"));
    EXPECT_EQ(BlockTokenizer::thematicBreakCharacter(u"_ _ _"), u'_');
    EXPECT_FALSE(BlockTokenizer::thematicBreakCharacter(u"    ---"));
    EXPECT_FALSE(BlockTokenizer::listMarker(u"-a"));
    EXPECT_EQ(BlockTokenizer::listMarker(u"\t+ x")->indent, 4);
    const auto opener = BlockTokenizer::directiveOpener(u"::: note x=1");
    ASSERT_TRUE(opener);
    // The name is counted from just after the colons, so the leading space shifts the
    // argument text by one: "e x=1" is a positional value and a labeled one.
    EXPECT_EQ(opener->arguments.diagnostics.size(), 2);
    EXPECT_EQ(opener->markerRange, (MarkdownSourceRange{0, 3}));
    EXPECT_EQ(opener->contentRange, (MarkdownSourceRange{3, 9}));
    const auto footnote = BlockTokenizer::footnoteDefinition(u"[^e\u0301]: x");
    ASSERT_TRUE(footnote);
    EXPECT_EQ(footnote->contentOffset, 6); // grapheme clusters, not units
}
