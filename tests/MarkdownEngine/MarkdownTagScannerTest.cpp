#include "MarkdownEngine/Parser/MarkdownTagScanner.h"

#include <gtest/gtest.h>

#include <QStringList>

using namespace velmo::markdown;

void PrintTo(const QString& text, std::ostream* out);

namespace {

// name@location+length, source marked with "fm:" for front matter.
QString dump(const std::vector<MarkdownTag>& tags)
{
    QStringList parts;
    for (const MarkdownTag& tag : tags)
        parts << QStringLiteral("%1%2@%3+%4")
                     .arg(tag.source == MarkdownTag::Source::frontMatter ? "fm:" : "", tag.name)
                     .arg(tag.range.location)
                     .arg(tag.range.length);
    return parts.join(QLatin1Char(' '));
}

struct Case {
    const char16_t* input;
    const char16_t* expected;
};

}

TEST(MarkdownTagScanner, bodyTags)
{
    const Case cases[] = {
        {u"#a", u"a@0+2"},
        {u"a#b", u""},
        {u"(#b)", u"b@1+2"},
        {u"#a#b", u"a@0+2"},
        {u"##a", u""},
        {u"&#123;", u""},
        {u"#a/", u"a@0+2"},
        {u"#/a", u""},
        {u"#a//b", u""},
        {u"#a-", u"a@0+2"},
        {u"#a/b_c-d", u"a/b_c-d@0+8"},
        {u"# heading", u""},
        {u"# heading #tag", u"tag@10+4"},
        {u"#123", u""},
        {u"#c0ffee #fff #abcd #decade", u""},
        {u"#c0ffe", u"c0ffe@0+6"},
        {u"#caf\u00E9 #\u65E5\u672C", u"caf\u00E9@0+5 \u65E5\u672C@6+3"},
        {u"#a\U0001F600b", u"a@0+2"},          // a surrogate ends the name
        {u"`#x` #y", u"y@5+2"},
        {u"```\n#x\n```\n#y", u"y@11+2"},
        {u"$$\n#x\n$$", u""},
        {u"[a](b#c) [d](/#e) <x #y>", u"y@21+2"}, // `/` is a tag character too
        {u"#a\r\n#b", u"a@0+2 b@4+2"},
    };
    for (const Case& c : cases) {
        const QString input = QString::fromUtf16(c.input);
        EXPECT_EQ(dump(MarkdownTagScanner::bodyTags(input)), QString::fromUtf16(c.expected)) << input.toStdString();
    }
}

// Excluded stretches come in any order and may overlap or touch; a name stops where one starts.
TEST(MarkdownTagScanner, bodyTagsSkipExcludedStretches)
{
    struct Excluded {
        std::vector<MarkdownSourceRange> excluding;
        const char16_t* expected;
    };
    const QString text = QStringLiteral("#a #bc #d #e-f");
    const Excluded cases[] = {
        {{}, u"a@0+2 bc@3+3 d@7+2 e-f@10+4"},
        {{{7, 2}, {3, 1}}, u"a@0+2 e-f@10+4"},
        {{{5, 1}}, u"a@0+2 b@3+2 d@7+2 e-f@10+4"},           // cut inside the name
        {{{12, 5}, {0, 1}, {0, 0}}, u"bc@3+3 d@7+2 e@10+2"}, // an empty stretch counts for nothing
        {{{1, 3}, {4, 2}, {2, 1}}, u"d@7+2 e-f@10+4"},       // overlapping and touching
        {{{-4, 5}, {14, 3}}, u"bc@3+3 d@7+2 e-f@10+4"},      // reaching outside the text
    };
    for (const Excluded& c : cases) {
        EXPECT_EQ(dump(MarkdownTagScanner::bodyTags(QStringView(text), c.excluding)), QString::fromUtf16(c.expected))
            << c.excluding.size();
    }
}

TEST(MarkdownTagScanner, frontMatterTags)
{
    const Case cases[] = {
        {u"---\ntags:\n- a\n- b\n---\n", u"fm:a@12+1 fm:b@16+1"},
        {u"---\ntags: a, b\n---\n", u"fm:a@10+1 fm:b@13+1"},
        {u"---\ntags: [a, \"#b/\", 'c, d']\n---\n", u"fm:a@11+1 fm:b@15+3"},
        {u"---\ntags: [\"a b\"]\n---\n", u""},
        {u"---\ntags: [2024, fff]\n---\n", u"fm:2024@11+4 fm:fff@17+3"},
        {u"---\ntags:\n  - a\n  -   \n  - b\nother: c\n  - d\n---\n", u"fm:a@14+1 fm:b@27+1"},
        {u"---\ntags:\n- a\nx: 1\n- b\n---\n", u"fm:a@12+1"},
        {u"---\ntitle: x\n---\n", u""},
        {u"tags: a\n", u""},
        {u"---\r\ntags: [a]\r\n---\r\n", u"fm:a@12+1"},
        {u"---\ntags: [/a]\n---\n", u""},
    };
    for (const Case& c : cases) {
        const QString input = QString::fromUtf16(c.input);
        EXPECT_EQ(dump(MarkdownTagScanner::frontMatterTags(input)), QString::fromUtf16(c.expected))
            << input.toStdString();
    }
}

TEST(MarkdownTagScanner, tagsListBodyFirstAndNamesOnce)
{
    const QString text = QStringLiteral("---\ntags: [b, a]\n---\n#a text #c/d #a\n");
    EXPECT_EQ(dump(MarkdownTagScanner::tags(text)), QStringLiteral("a@21+2 c/d@29+4 a@34+2 fm:b@11+1 fm:a@14+1"));
    EXPECT_EQ(MarkdownTagScanner::names(text), (QStringList{"a", "c/d", "b"}));
    const MarkdownTag nested{"a/b/c", {}, MarkdownTag::Source::body};
    EXPECT_EQ(nested.components(), (QStringList{"a", "b", "c"}));
    EXPECT_EQ(nested.parentName(), QStringLiteral("a/b"));
    EXPECT_FALSE((MarkdownTag{"a", {}, MarkdownTag::Source::body}).parentName());
}
