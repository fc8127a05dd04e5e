#include "MarkdownEngine/Core/MarkdownTextStatistics.h"

#include <gtest/gtest.h>

using namespace velmo::markdown;

TEST(MarkdownTextStatistics, counts)
{
    struct Case {
        const char16_t* text;
        int words, characters, cjk;
    };
    const Case cases[] = {
        {u"", 0, 0, 0},
        {u"don't stop well-known", 3, 21, 0},
        {u"rock 'n' roll", 3, 13, 0},     // a joiner needs a word scalar before it
        {u"a--b a-", 3, 7, 0},            // two joiners in a row split
        {u"it\u2019s", 1, 4, 0},
        {u"\u4E2D\u6587 text\u3002", 1, 8, 2}, // the ideographic full stop is punctuation
        {u"\U0001F600 x", 1, 3, 0},        // a surrogate pair is one scalar
        {u"e\u0301", 1, 2, 0},             // a combining sequence is two
        {u"\U00020000", 0, 1, 1},
        {u"a\u4E2Db", 2, 3, 1},
        {u"12 3.5", 3, 6, 0},
    };
    for (const Case& c : cases) {
        const QString text = QString::fromUtf16(c.text);
        const auto stats = MarkdownTextStatistics::measure(text, {0, int(text.size())});
        EXPECT_EQ(stats.words, c.words) << text.toStdString();
        EXPECT_EQ(stats.characters, c.characters) << text.toStdString();
        EXPECT_EQ(stats.cjkCharacters, c.cjk) << text.toStdString();
    }
}

TEST(MarkdownTextStatistics, rangesAndReadingTime)
{
    const QString text = QStringLiteral("one two three");
    EXPECT_EQ(MarkdownTextStatistics::measure(text, {4, 3}, true).words, 1);
    EXPECT_TRUE(MarkdownTextStatistics::measure(text, {4, 3}, true).isSelection);
    const auto outside = MarkdownTextStatistics::measure(text, {40, 3}, true);
    EXPECT_EQ(outside.characters, 0);
    EXPECT_TRUE(outside.isSelection);
    EXPECT_EQ(MarkdownTextStatistics::measure(text, {-5, 9}).characters, 4);

    struct Minutes { int words, cjk, minutes; };
    for (const Minutes& m : {Minutes{0, 0, 0}, Minutes{1, 0, 1}, Minutes{200, 0, 1}, Minutes{201, 0, 2},
                             Minutes{100, 200, 1}, Minutes{100, 201, 2}, Minutes{0, 1, 1}}) {
        MarkdownTextStatistics stats;
        stats.words = m.words;
        stats.cjkCharacters = m.cjk;
        EXPECT_EQ(stats.readingMinutes(), m.minutes) << m.words << " " << m.cjk;
        EXPECT_EQ(stats.totalWords(), m.words + m.cjk);
    }
}
