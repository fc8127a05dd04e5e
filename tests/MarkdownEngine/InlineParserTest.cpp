#include "MarkdownEngine/Core/MarkdownInlineNode.h"
#include "MarkdownEngine/Parser/InlineParser.h"

#include <gtest/gtest.h>

#include <QStringList>
#include <QThread>
#include <memory>

#if defined(__has_feature)
#if __has_feature(address_sanitizer)
#define VELMO_TEST_SANITIZED
#endif
#endif
#ifdef __SANITIZE_ADDRESS__
#define VELMO_TEST_SANITIZED
#endif

using namespace velmo::markdown;

void PrintTo(const QString& text, std::ostream* out)
{
    *out << '"' << text.toStdString() << '"';
}

namespace {

QString sourceOf(const QString& text, MarkdownSourceRange range)
{
    return text.mid(range.location, range.length);
}

QString dump(const MarkdownInlineList& list, std::span<const MarkdownInline> inlines, const QString& text);

QString dumpOne(const MarkdownInlineList& list, const MarkdownInline& node, const QString& text)
{
    const QString children = node.hasChildren() ? QStringLiteral("{%1}").arg(dump(list, node.children(), text)) : QString();
    const auto str = [&](MarkdownInlineText payload) { return list.string(text, payload); };
    if (node.is<inline_kind::Text>())
        return QLatin1Char('"') + sourceOf(text, node.range) + QLatin1Char('"');
    if (const auto* escape = node.as<inline_kind::Escape>())
        return QStringLiteral("\\") + QChar(escape->character);
    if (const auto* code = node.as<inline_kind::Code>())
        return QStringLiteral("code(%1)\"%2\"").arg(code->hasLanguage ? str(code->language) : QStringLiteral("-"),
                                                   sourceOf(text, node.contentRange));
    if (const auto* emphasis = node.as<inline_kind::Emphasis>()) {
        const char* names[] = {"em", "strong", "strongem"};
        return QLatin1String(names[int(emphasis->emphasis)]) + children;
    }
    if (const auto* link = node.as<inline_kind::Link>())
        return QStringLiteral("link(%1%2)").arg(str(link->destination), link->hasTitle ? "|" + str(link->title) : QString())
            + children;
    if (const auto* wiki = node.as<inline_kind::WikiLink>())
        return QStringLiteral("wiki(%1|%2)").arg(str(wiki->target), str(wiki->display));
    if (const auto* image = node.as<inline_kind::Image>())
        return QStringLiteral("img(%1|%2%3)").arg(str(image->source), str(image->alt), image->isEmbed ? "|embed" : "");
    if (const auto* latex = node.as<inline_kind::Latex>())
        return QStringLiteral("%1\"%2\"").arg(latex->isBlock ? "Math" : "math", str(latex->source));
    if (const auto* footnote = node.as<inline_kind::FootnoteReference>())
        return QStringLiteral("fn(%1)").arg(str(footnote->label));
    if (const auto* html = node.as<inline_kind::Html>())
        return QStringLiteral("html\"%1\"").arg(str(html->source));
    if (node.is<inline_kind::Strikethrough>())
        return QStringLiteral("del") + children;
    if (node.is<inline_kind::Highlight>())
        return QStringLiteral("mark") + children;
    return QStringLiteral("?");
}

QString dump(const MarkdownInlineList& list, std::span<const MarkdownInline> inlines, const QString& text)
{
    QStringList parts;
    for (const MarkdownInline& node : inlines)
        parts << dumpOne(list, node, text);
    return parts.join(QLatin1Char(' '));
}

QString dump(const MarkdownInlineList& list, const QString& text)
{
    return dump(list, list.top(), text);
}

// The invariants every parse keeps: inlines partition the range they came from, children
// partition their parent's content, and every range stays inside its parent.
void expectPartition(std::span<const MarkdownInline> inlines, MarkdownSourceRange range, const QString& context)
{
    int cursor = range.location;
    for (const MarkdownInline& node : inlines) {
        ASSERT_EQ(node.range.location, cursor) << context.toStdString();
        ASSERT_GT(node.range.length, 0) << context.toStdString();
        cursor = node.range.upperBound();
        ASSERT_GE(node.contentRange.location, node.range.location) << context.toStdString();
        ASSERT_LE(node.contentRange.upperBound(), node.range.upperBound()) << context.toStdString();
        for (const MarkdownSourceRange marker : node.markerRanges) {
            EXPECT_GE(marker.location, node.range.location) << context.toStdString();
            EXPECT_LE(marker.upperBound(), node.range.upperBound()) << context.toStdString();
        }
        if (node.is<inline_kind::Text>()) {
            EXPECT_EQ(node.contentRange, node.range) << context.toStdString();
        }
        if (node.hasChildren() || node.is<inline_kind::Emphasis>()) {
            expectPartition(node.children(), node.contentRange, context);
        }
    }
    ASSERT_EQ(cursor, range.upperBound()) << context.toStdString();
}

struct Case {
    const char16_t* input;
    const char16_t* expected;
};

MarkdownLinkDefinitions definitions()
{
    return {{QStringLiteral("a"), QStringLiteral("/a")}, {QStringLiteral("label"), QStringLiteral("/label")},
            {QStringLiteral("ü"), QStringLiteral("/u")}};
}

QString parsed(const QString& text, const MarkdownParseOptions& options = {})
{
    const MarkdownLinkDefinitions links = definitions();
    const QSet<QString> labels;
    const InlineParser::Context context(text, links, labels, options);
    const MarkdownSourceRange range{0, int(text.size())};
    const MarkdownInlineList inlines = InlineParser::parse(range, context);
    expectPartition(inlines, range, text);
    return dump(inlines, text);
}

void runCases(std::initializer_list<Case> cases, const MarkdownParseOptions& options = {})
{
    for (const Case& c : cases) {
        const QString input = QString::fromUtf16(c.input);
        EXPECT_EQ(parsed(input, options), QString::fromUtf16(c.expected)) << input.toStdString();
    }
}

}

TEST(InlineParser, codeSpans)
{
    runCases({
        {u"`a`", u"code(-)\"a\""},
        {u"` a `", u"code(-)\" a \""},                  // spaces kept
        {u"`a``", u"\"`a``\""},                         // single opener, double closer
        {u"``a`", u"\"`\" code(-)\"a\""},               // unmatched run retried one unit later
        {u"``a``b`", u"code(-)\"a\" \"b`\""},
        {u"```foo```", u"code(foo)\"\""},              // three backticks: the inner text is the language
        {u"```js\nx = 1```", u"code(js)\"\nx = 1\""},
        {u"```js\r\nx```", u"code(js)\"\r\nx\""},
        {u"```  ```", u"code(-)\"  \""},
        {u"`a`` ``b`", u"code(-)\"a`` ``b\""},          // runs of other lengths skipped whole
        {u"`*a*`", u"code(-)\"*a*\""},
        {u"``", u"\"``\""},
    });
}

TEST(InlineParser, escapes)
{
    runCases({
        {u"\\*a*", u"\\* \"a*\""},
        {u"\\a", u"\"\\a\""},
        {u"\\\\", u"\\\\"},
        {u"a\\\nb", u"\"a\\\nb\""},                      // no hard break from a backslash
        {u"\\\u00BF", u"\\\u00BF"},                       // non-ASCII punctuation
        {u"\\\u00A9", u"\"\\\u00A9\""},                   // a symbol is not punctuation
        {u"\\\U0001F600", u"\"\\\U0001F600\""},          // never a surrogate
        {u"\\", u"\"\\\""},
        {u"\\(x\\)", u"\\( \"x\" \\)"},                  // escape wins over math
    });
}

TEST(InlineParser, latex)
{
    runCases({
        {u"$x$", u"math\"x\""},
        {u"$5 and $6", u"\"$5 and $6\""},
        {u"$ x$", u"\"$ x$\""},
        {u"$a$b", u"math\"a\" \"b\""},
        {u"$$", u"\"$$\""},
        {u"$$x$$", u"Math\"x\""},
        {u"$$$x$$", u"Math\"$x\""},
        {u"$$$$", u"\"$$$$\""},
        {u"$a\\$b$", u"math\"a\\\" \"b$\""},           // escapes are not looked at
        {u"$\U0001D7CE$", u"math\"\U0001D7CE\""},        // a surrogate is no digit
        {u"$x", u"\"$x\""},
    });
    MarkdownParseOptions off;
    off.latex = false;
    runCases({{u"$x$", u"\"$x$\""}}, off);
}

TEST(InlineParser, linksInlineAndByReference)
{
    runCases({
        {u"[a](b)", u"link(b){\"a\"}"},
        {u"[a](b \"t\")", u"link(b|t){\"a\"}"},
        {u"[a](b\"t\")", u"link(b|t){\"a\"}"},
        {u"[a](b 't')", u"link(b|t){\"a\"}"},
        {u"[a](<b c> \"t\")", u"link(b c|t){\"a\"}"},
        {u"[a](b (t))", u"link(b|t){\"a\"}"},
        {u"[a](b 't' \"u\")", u"link(b 't'|u){\"a\"}"}, // a double quote wins over an earlier single one
        {u"[a](b(c) 'd')", u"link(b(c)|d){\"a\"}"},    // a quote wins over an earlier parenthesis
        {u"[a]()", u"link(){\"a\"}"},
        {u"[a](b", u"\"[a](b\""},                        // no fallback to the reference a
        {u"[a]", u"link(/a){\"a\"}"},
        {u"[A]", u"link(/a){\"A\"}"},
        {u"[\u00DC]", u"link(/u){\"\u00DC\"}"},
        {u"[x]", u"\"[x]\""},
        {u"[x][label]", u"link(/label){\"x\"}"},
        {u"[a][]", u"link(/a){\"a\"}"},
        {u"[x][y]", u"\"[x][y]\""},
        {u"[a\nb](c)", u"\"[a\nb](c)\""},               // LF at depth 1
        {u"[a [b\n] c](d)", u"link(d){\"a [b\n] c\"}"}, // deeper LF passes
        {u"[a](b\nc)", u"\"[a](b\nc)\""},
        {u"[a\\]](b)", u"link(b){\"a\" \\]}"},
        {u"[a](b\\))", u"link(b\\)){\"a\"}"},
        {u"[[x]](y)", u"wiki(x|x) \"(y)\""},
        {u"[a [b](c)](d)", u"link(d){\"a \" link(c){\"b\"}}"},
        {u"**[a](b)**", u"strong{link(b){\"a\"}}"},
    });
    MarkdownParseOptions noWiki;
    noWiki.wikiLinks = false;
    runCases({{u"[[a]](y)", u"link(y){link(/a){\"a\"}}"}}, noWiki);
}

TEST(InlineParser, imagesAndEmbeds)
{
    runCases({
        {u"![a](b)", u"img(b|a|embed)"},
        {u"![a]()", u"img(|a)"},
        {u"![a]", u"img(/a|a|embed)"},
        {u"![*a* `b`](c)", u"img(c|a b|embed)"},
        {u"![[a]]", u"\"!\" wiki(a|a)"},
        {u"![^a]", u"\"!\" fn(a)"},
        {u"![x]", u"\"![x]\""},
        {u"![a ![b](c)](d)", u"img(d|a |embed)"},
    });
}

TEST(InlineParser, imageMarkers)
{
    const QString text = QStringLiteral("![a](b)");
    const InlineParser::Context context(text);
    const auto inlines = InlineParser::parse({0, 7}, context);
    ASSERT_EQ(inlines.size(), 1u);
    const MarkdownInlineMarkers expected{{0, 2}, {1, 1}, {3, 1}, {4, 3}};
    EXPECT_EQ(inlines[0].markerRanges, expected);
    EXPECT_EQ(inlines[0].contentRange, (MarkdownSourceRange{2, 1}));
    EXPECT_FALSE(inlines[0].hasChildren());
}

TEST(InlineParser, wikiLinksAndFootnotes)
{
    runCases({
        {u"[[a]]", u"wiki(a|a)"},
        {u"[[a|b|c]]", u"wiki(a|b|c)"},
        {u"[[ a | b ]]", u"wiki(a|b)"},
        {u"[[]]", u"\"[[]]\""},
        {u"[[ | x]]", u"\"[[ | x]]\""},
        {u"[[a]b", u"wiki(a|a)"},                        // the unit after the closer is marker
        {u"[[x]", u"\"[[x]\""},                           // ... but it has to be there
        {u"[[a#h^b]]", u"wiki(a#h^b|a#h^b)"},
        {u"[[a [b\n] c]]", u"\"[[a [b\n] c]]\""},
        {u"[^x]", u"fn(x)"},
        {u"[^X y]", u"fn(X y)"},
        {u"[^]", u"\"[^]\""},
        {u"[^a\nb]", u"\"[^a\nb]\""},
    });
    MarkdownParseOptions noWiki;
    noWiki.wikiLinks = false;
    runCases({{u"[[a]]", u"\"[\" link(/a){\"a\"} \"]\""}}, noWiki);
}

TEST(InlineParser, autolinksAndHtml)
{
    runCases({
        {u"<https://x.org>", u"link(https://x.org){\"https://x.org\"}"},
        {u"<mailto:x>", u"link(x){\"mailto:x\"}"},
        {u"<a b=\"c\">", u"html\"a b=\"c\"\""},
        {u"</a>", u"html\"/a\""},
        {u"<x@y.org>", u"html\"x@y.org\""},
        {u"<\u00E9t\u00E9>", u"html\"\u00E9t\u00E9\""},
        {u"<1>", u"\"<1>\""},
        {u"< a>", u"\"< a>\""},
        {u"<>", u"\"<>\""},
        {u"<a\nb>", u"\"<a\nb>\""},
        {u"<a <b>", u"\"<a \" html\"b\""},
        {u"<a", u"\"<a\""},
    });
}

TEST(InlineParser, emphasisPairing)
{
    runCases({
        {u"*a* and _b_", u"em{\"a\"} \" and \" em{\"b\"}"},
        {u"*a_", u"em{\"a\"}"},
        {u"snake_case_name", u"\"snake_case_name\""},
        {u"**a**", u"strong{\"a\"}"},
        {u"***a***", u"\"*\" strongem{\"a\"} \"*\""},
        {u"**a*", u"\"*\" em{\"a\"}"},                  // the marker is the unit next to the content
        {u"*a **b** c*", u"em{\"a \" strong{\"b\"} \" c\"}"},
        {u"a * b *", u"\"a * b *\""},
        {u"a*b*c", u"\"a\" em{\"b\"} \"c\""},
        {u"_a_b", u"\"_a_b\""},
        {u"(_a_)", u"\"(\" em{\"a\"} \")\""},
        {u"*a `*` b*", u"em{\"a \" code(-)\"*\" \" b\"}"},
        {u"*[a](b)*", u"em{link(b){\"a\"}}"},
        {u"[*a](b)*", u"link(b){\"*a\"} \"*\""},       // a delimiter never pairs across a link
        {u"*\u00BFa*", u"em{\"\u00BFa\"}"},
        {u"\u3000*a*", u"\"\u3000\" em{\"a\"}"},
        {u"\U0001F600*a*\U0001F600", u"\"\U0001F600\" em{\"a\"} \"\U0001F600\""}, // surrogates are neither
        {u"a\r*b*", u"\"a\r\" em{\"b\"}"},
    });
}

TEST(InlineParser, emphasisFlankingUsesTheTextOutsideTheRange)
{
    // The unit before a run comes from the whole text; the unit after stops at the range.
    const QString text = QStringLiteral("x*a*y");
    const InlineParser::Context context(text);
    const auto inlines = InlineParser::parse({1, 3}, context);
    expectPartition(inlines, {1, 3}, text);
    EXPECT_EQ(dump(inlines, text), QStringLiteral("em{\"a\"}"));
    const QString snake = QStringLiteral("a_b_");
    const auto none = InlineParser::parse({1, 3}, InlineParser::Context(snake));
    EXPECT_EQ(dump(none, snake), QStringLiteral("\"_b_\""));
}

TEST(InlineParser, strikethroughAndHighlight)
{
    runCases({
        {u"~~a~~", u"del{\"a\"}"},
        {u"~~ a ~~", u"del{\" a \"}"},
        {u"~~~~", u"\"~~~~\""},
        {u"~a~", u"\"~a~\""},
        {u"==a==", u"mark{\"a\"}"},
        {u"~~*a*~~", u"del{em{\"a\"}}"},
        {u"*~~a*~~", u"\"*\" del{\"a*\"}"},
        {u"~~a ==b~~ c==", u"del{\"a ==b\"} \" c==\""},
    });
    MarkdownParseOptions off;
    off.strikethrough = false;
    off.highlight = false;
    runCases({{u"~~a~~ ==b==", u"\"~~a~~ ==b==\""}}, off);
}

TEST(InlineParser, linesStayInsideText)
{
    runCases({
        {u"a\nb", u"\"a\nb\""},
        {u"a  \nb", u"\"a  \nb\""},
        {u"*a\nb*", u"em{\"a\nb\"}"},
        {u"&amp;", u"\"&amp;\""},
        {u"\t*a*", u"\"\t\" em{\"a\"}"},
        {u"*a\n> b*", u"em{\"a\n> b\"}"},           // a quote prefix inside the range is text
        {u"[a\rb](c)", u"link(c){\"a\rb\"}"},         // only LF stops a link text
        {u"[a\r\nb](c)", u"\"[a\r\nb](c)\""},
    });
}

TEST(InlineParser, rangesAreClippedAndConfined)
{
    const QString text = QStringLiteral("`a` [b](c)");
    const InlineParser::Context context(text);
    EXPECT_TRUE(InlineParser::parse({20, 5}, context).empty());
    EXPECT_TRUE(InlineParser::parse({3, 0}, context).empty());
    const auto clipped = InlineParser::parse({4, 100}, context);
    expectPartition(clipped, {4, 6}, text);
    EXPECT_EQ(dump(clipped, text), QStringLiteral("link(c){\"b\"}"));
    // A closer beyond the range does not count.
    const auto confined = InlineParser::parse({0, 2}, context);
    EXPECT_EQ(dump(confined, text), QStringLiteral("\"`a\""));
}

TEST(InlineParser, nodesCarryTheSourceText)
{
    const QString text = QStringLiteral("a *b* [[c|d]] ```js\nx``` [e](f)");
    const InlineParser::Context context(text);
    const std::vector<MarkdownInlineNode> nodes = InlineParser::nodes({0, int(text.size())}, context);
    using namespace inline_node;
    const std::vector<MarkdownInlineNode> expected{
        {Text{"a "}},
        {Emphasis{MarkdownEmphasis::italic}, {{Text{"b"}}}},
        {Text{" "}},
        {WikiLink{"c", "d"}},
        {Text{" "}},
        {Code{QStringLiteral("js"), "\nx"}},
        {Text{" "}},
        {Link{QStringLiteral("f"), std::nullopt}, {{Text{"e"}}}},
    };
    EXPECT_EQ(nodes, expected);
}

TEST(InlineParser, deepNestingFitsAWorkerThreadStack)
{
    // Emphasis, links and highlight inside links, 30,000 deep each: parsing, walking,
    // converting and tearing down must all run on a 512 KB stack. The sanitizer build's
    // frames are several times larger but its allocator is slow on big trees: a tenth will do.
#ifdef VELMO_TEST_SANITIZED
    constexpr int levels = 3'000;
#else
    constexpr int levels = 30'000;
#endif
    struct Nest {
        const char* open;
        const char* close;
        int expectedDepth;
    };
    const Nest nests[] = {{"*a ", " a*", levels}, {"[a ", "](u)", levels}, {"[==a== ", "](u)", levels},
                          {"![a ", "](u)", 1}};
    for (const Nest& nest : nests) {
        const QString text = QString::fromLatin1(nest.open).repeated(levels) + QStringLiteral("x")
            + QString::fromLatin1(nest.close).repeated(levels);
        int depth = 0;
        size_t nodeCount = 0;
        std::unique_ptr<QThread> thread(QThread::create([&] {
            const InlineParser::Context context(text);
            MarkdownInlineList inlines = InlineParser::parse({0, int(text.size())}, context);
            for (const MarkdownInline& top : inlines) {
                top.forEach([&](const MarkdownInline&) { ++nodeCount; });
                // Follow the last child that has children of its own.
                int level = 1;
                for (const MarkdownInline* node = &top;; ++level) {
                    const std::span<const MarkdownInline> children = node->children();
                    const auto next = std::find_if(children.rbegin(), children.rend(),
                                                   [](const MarkdownInline& child) { return child.hasChildren(); });
                    if (next == children.rend())
                        break;
                    node = &*next;
                }
                depth = std::max(depth, level);
            }
            const std::vector<MarkdownInlineNode> nodes = MarkdownInlineNode::from(inlines, text);
            EXPECT_EQ(nodes.size(), inlines.size());
            const std::vector<MarkdownInlineNode> copies = nodes;
            EXPECT_EQ(copies, nodes);
        }));
        thread->setStackSize(512 * 1024);
        thread->start();
        ASSERT_TRUE(thread->wait(QDeadlineTimer(60'000))) << nest.open;
        EXPECT_GE(depth, nest.expectedDepth) << nest.open;
        EXPECT_GT(nodeCount, 0u);
    }
}
