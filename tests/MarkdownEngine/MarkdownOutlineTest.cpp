#include "MarkdownEngine/Core/MarkdownCallout.h"
#include "MarkdownEngine/Core/MarkdownOutline.h"
#include "MarkdownEngine/Core/MarkdownTextColor.h"

#include <QRegularExpression>
#include <gtest/gtest.h>

using namespace velmo::markdown;

TEST(MarkdownOutline, headingLevel)
{
    EXPECT_EQ(MarkdownOutline::headingLevel(u"###"), 3);
    EXPECT_EQ(MarkdownOutline::headingLevel(u"#\tx"), 1);
    EXPECT_FALSE(MarkdownOutline::headingLevel(u"#x"));
    EXPECT_FALSE(MarkdownOutline::headingLevel(u"####### x"));
}

TEST(MarkdownOutline, entriesSkipFencesAndStripSpans)
{
    const QString text = QStringLiteral("# One\r\n```\n# no\n~~~\n  ## <span style=\"color:red\">Two</span>  \n"
                                        "> # quoted\nSetext\n===\n###\n");
    const auto entries = MarkdownOutline::entries(text);
    ASSERT_EQ(entries.size(), 3u);
    EXPECT_EQ(entries[0].title, QStringLiteral("One"));
    EXPECT_EQ(entries[1].level, 2);
    EXPECT_EQ(entries[1].lineStart, 20);
    EXPECT_EQ(entries[1].contentStart, 22);
    EXPECT_EQ(entries[1].title, QStringLiteral("Two"));
    EXPECT_EQ(entries[2].title, QStringLiteral("Untitled"));

    EXPECT_EQ(MarkdownOutline::entry(u" two ", text)->lineStart, 20);
    EXPECT_EQ(MarkdownOutline::entry(u"ne", text)->lineStart, 0);
    EXPECT_FALSE(MarkdownOutline::entry(u"  ", text));
    EXPECT_EQ(MarkdownOutline::range(entries[0], text), (MarkdownSourceRange{0, 3}));
    EXPECT_EQ(MarkdownOutline::range({1, 0, 0, QStringLiteral("long title")}, u"# a"), (MarkdownSourceRange{0, 3}));
}

// Lines are told apart by every terminator, and a line's leading space may be any the trim
// takes: lines passed over without reading must be exactly those that cannot count.
TEST(MarkdownOutline, entriesAfterEveryKindOfLineStart)
{
    const QString text = QString::fromUtf16(u"x\u2028# A\rx\u0085\u3000# B\u2029\v\f# C\r\n\t~~~\n# no\n ~~~\n"
                                            u"\u00A0# D\nx # no\n#");
    QStringList titles;
    QList<int> starts;
    for (const OutlineEntry& entry : MarkdownOutline::entries(text)) {
        titles << entry.title;
        starts << entry.lineStart;
    }
    EXPECT_EQ(titles, (QStringList{u"A"_qs, u"B"_qs, u"C"_qs, u"D"_qs, u"Untitled"_qs}));
    EXPECT_EQ(starts, (QList<int>{2, 8, 13, 35, 47}));
}

TEST(MarkdownCallout, detect)
{
    EXPECT_EQ(MarkdownCallout::detect(u"> [!warning] Hot")->title(), QStringLiteral("Warning"));
    EXPECT_EQ(MarkdownCallout::detect(u"[! Tip ]")->symbolName(), QStringLiteral("lightbulb.fill"));
    EXPECT_FALSE(MarkdownCallout::detect(u"[!]"));
    EXPECT_FALSE(MarkdownCallout::detect(u"[NOTE]"));
    EXPECT_FALSE(MarkdownCallout::detect(u"[!other] [!note]"));
}

TEST(MarkdownTextColor, tagsAndValues)
{
    const MarkdownTextColor blue = MarkdownTextColor::blue;
    const QRegularExpression pattern(MarkdownTextColor::spanPattern());
    const auto match = pattern.match(blue.openTag() + QStringLiteral("sky</span>"));
    ASSERT_TRUE(match.hasMatch());
    EXPECT_EQ(match.captured(1), QStringLiteral("#0090FF"));
    EXPECT_EQ(match.captured(2), QStringLiteral("sky"));
    EXPECT_EQ(MarkdownTextColor::parse(u"Gray"), QColor(0x8B, 0x8D, 0x98));
    EXPECT_EQ(MarkdownTextColor::parse(u"#0a0B0c"), QColor(10, 11, 12));
    EXPECT_EQ(MarkdownTextColor::parse(u"rgb(1, 2, 3)"), QColor(1, 2, 3));
    EXPECT_FALSE(MarkdownTextColor::parse(u"rgb(1,2)"));
    EXPECT_FALSE(MarkdownTextColor::parse(u"#12345"));
    EXPECT_FALSE(MarkdownTextColor::parse(u"teal"));
}
