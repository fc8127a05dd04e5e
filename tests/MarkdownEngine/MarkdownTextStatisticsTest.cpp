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

// An edit's counts from the previous ones must match counting the new text afresh: edits that
// join or split words, lines and surrogate pairs, at either end and with no line break at all.
TEST(MarkdownTextStatistics, remeasuredAfterAnEdit)
{
    struct Edit {
        const char16_t* before;
        int at, removed;
        const char16_t* inserted;
    };
    const Edit edits[] = {
        {u"one two\nthree four\nfive", 12, 0, u"x"},
        {u"one two\nthree four\nfive", 7, 1, u""},        // joins two lines into one word
        {u"one two\nthree four\nfive", 3, 0, u"\n"},
        {u"don't\nwell known", 10, 1, u"-"},             // a joiner makes one word of two
        {u"it's\n", 2, 1, u""},
        {u"abc", 0, 0, u"x y "},
        {u"abc\n", 4, 0, u"d e"},
        {u"x \U0001F600\ny", 2, 1, u""},                 // half a surrogate pair removed
        {u"\u4E2D\u6587\n\u4E2D", 1, 0, u"ab"},
        {u"one\r\ntwo\r\nthree", 5, 3, u"2"},
        {u"a\n\nb", 2, 0, u"c"},
    };
    for (const Edit& e : edits) {
        const QString before = QString::fromUtf16(e.before);
        const QString after = QString(before).replace(e.at, e.removed, QString::fromUtf16(e.inserted));
        // The changed stretch as the common start and end bound it.
        qsizetype prefix = 0;
        while (prefix < std::min(before.size(), after.size()) && before[prefix] == after[prefix])
            ++prefix;
        qsizetype suffix = 0;
        while (suffix < std::min(before.size(), after.size()) - prefix
               && before[before.size() - 1 - suffix] == after[after.size() - 1 - suffix])
            ++suffix;
        const auto previous = MarkdownTextStatistics::measure(before, {0, int(before.size())});
        const auto remeasured = MarkdownTextStatistics::remeasured(
            previous, before, after, MarkdownSourceRange::fromBounds(int(prefix), int(after.size() - suffix)));
        EXPECT_EQ(remeasured, MarkdownTextStatistics::measure(after, {0, int(after.size())})) << after.toStdString();
    }
}
