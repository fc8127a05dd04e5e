#include "MarkdownEngine/Core/TextCharacters.h"

#include <gtest/gtest.h>

using namespace velmo::markdown;

TEST(TextCharacters, classes)
{
    EXPECT_TRUE(chars::isWhitespace(u'\t'));
    EXPECT_TRUE(chars::isWhitespace(0x3000));
    EXPECT_FALSE(chars::isWhitespace(u'\n'));
    EXPECT_TRUE(chars::isWhitespaceOrNewline(0x2028));
    EXPECT_TRUE(chars::isAlphanumeric(0x0301)); // combining acute: a mark
    EXPECT_TRUE(chars::isAlphanumeric(0x4E2D));
    EXPECT_FALSE(chars::isAlphanumeric(u'_'));
    EXPECT_TRUE(chars::isPunctuation(u'_'));
    EXPECT_TRUE(chars::isSymbol(u'+'));
    EXPECT_TRUE(chars::isDecimalDigit(0x0663));
    EXPECT_FALSE(chars::isDecimalDigit(0x00B2)); // superscript two is No, not Nd
}

TEST(TextCharacters, linesEndAtEveryTerminatorAndCrlfCountsOnce)
{
    const QString text = QStringLiteral("a\r\nbb\rc\u2028d\n");
    struct Case { qsizetype at, start, contentsEnd, end; };
    const Case cases[] = {{0, 0, 1, 3}, {1, 0, 1, 3}, {2, 0, 1, 3}, {3, 3, 5, 6},
                          {6, 6, 7, 8}, {8, 8, 9, 10}, {10, 10, 10, 10}};
    for (const Case& c : cases) {
        const auto line = chars::lineAt(text, c.at);
        EXPECT_EQ(line.start, c.start) << c.at;
        EXPECT_EQ(line.contentsEnd, c.contentsEnd) << c.at;
        EXPECT_EQ(line.end, c.end) << c.at;
    }
}

TEST(TextCharacters, scalarsAndLoneSurrogates)
{
    const QString text = QString::fromUtf16(u"\U0001F600\xD800x");
    int length = 0;
    EXPECT_EQ(chars::scalarAt(text, 0, &length), U'\U0001F600');
    EXPECT_EQ(length, 2);
    EXPECT_EQ(chars::scalarAt(text, 2, &length), 0xD800u);
    EXPECT_EQ(length, 1);
}
