#include "Highlighter/SyntaxHighlighter.h"

#include <cmath>
#include <gtest/gtest.h>

namespace velmo::highlighter {
namespace {

TEST(SyntaxHighlighter, TabsWidenToTheNextStop)
{
    const struct {
        const char16_t* code;
        int width;
        const char16_t* expected;
    } cases[] = {
        {u"\tx", 4, u"    x"},
        {u"ab\tc", 4, u"ab  c"},
        {u"abcd\te", 4, u"abcd    e"},
        {u"a\n\tb", 2, u"a\n  b"},
        {u"a\r\n\t\tb", 3, u"a\r\n      b"},
        {u"\t", 0, u" "},
        {u"none", 4, u"none"},
    };
    for (const auto& item : cases) {
        EXPECT_EQ(SyntaxHighlighter::expanded(QString::fromUtf16(item.code), item.width),
                  QString::fromUtf16(item.expected));
    }
}

TEST(SyntaxHighlighter, RunsLandOnTheWidenedText)
{
    SyntaxHighlighter highlighter;
    highlighter.tabWidth = 4;
    const auto styled = highlighter.attributedCode(u"\tif x:\n\t\treturn 1", u"py");
    EXPECT_EQ(styled.text, u"    if x:\n        return 1");
    ASSERT_EQ(styled.runs.size(), 3u);
    const auto textOf = [&](const SyntaxHighlighter::Run& run) {
        return styled.text.sliced(run.range.location, run.range.length);
    };
    EXPECT_EQ(textOf(styled.runs[0]), u"if");
    EXPECT_EQ(textOf(styled.runs[1]), u"return");
    EXPECT_EQ(textOf(styled.runs[2]), u"1");
    EXPECT_EQ(styled.runs[1].color, highlighter.palette.keyword);
    EXPECT_EQ(styled.runs[2].color, highlighter.palette.number);
    EXPECT_EQ(styled.plainColor, highlighter.palette.plain);
    EXPECT_EQ(SyntaxHighlighter::displayName(u"c++"), u"C++");
    EXPECT_EQ(SyntaxHighlighter::displayName(u"whatever"), u"Plain Text");
}

double luminance(SyntaxColor color)
{
    const auto channel = [](int value) {
        const double c = value / 255.0;
        return c <= 0.03928 ? c / 12.92 : std::pow((c + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * channel(color.red()) + 0.7152 * channel(color.green())
        + 0.0722 * channel(color.blue());
}

double contrast(SyntaxColor a, SyntaxColor b)
{
    const double la = luminance(a), lb = luminance(b);
    return (std::max(la, lb) + 0.05) / (std::min(la, lb) + 0.05);
}

TEST(SyntaxPalette, EveryColourIsLegibleOnCodeBackgrounds)
{
    // The lightest and darkest code backgrounds of the editor themes, each way.
    const struct {
        SyntaxPalette::Appearance appearance;
        SyntaxColor backgrounds[2];
    } cases[] = {
        {SyntaxPalette::Appearance::light, {{0xffffffff}, {0xeef0f3ff}}},
        {SyntaxPalette::Appearance::dark, {{0x161618ff}, {0x2d2d30ff}}},
    };
    for (const auto& item : cases) {
        const SyntaxPalette palette = SyntaxPalette::forAppearance(item.appearance);
        for (SyntaxColor background : item.backgrounds) {
            EXPECT_GE(contrast(palette.plain, background), 4.5);
            for (int kind = 0; kind < syntaxTokenKindCount; ++kind) {
                const SyntaxColor colour = palette.color(SyntaxTokenKind(kind));
                SCOPED_TRACE(syntaxTokenKindName(SyntaxTokenKind(kind)).data());
                EXPECT_GE(contrast(colour, background), 4.5);
                EXPECT_EQ(colour.alpha(), 255);
            }
        }
    }
    EXPECT_NE(SyntaxPalette::forAppearance(SyntaxPalette::Appearance::light).keyword,
              SyntaxPalette::forAppearance(SyntaxPalette::Appearance::dark).keyword);
}

}
}
