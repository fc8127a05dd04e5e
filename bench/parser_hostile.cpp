// Hostile inputs of about 1 MB each: every one must parse in near-linear time (target under
// 50 ms) and nest as deep as it likes without exhausting the stack.
#include "MarkdownEngine/Core/MarkdownDocument.h"

#include "support/BenchData.h"

#include <benchmark/benchmark.h>

#include <QString>
#include <functional>

using namespace velmo::markdown;

namespace {

constexpr int megabyte = 1'000'000;

QString repeated(const QString& unit, int total = megabyte)
{
    QString text;
    text.reserve(total + unit.size());
    while (text.size() < total)
        text += unit;
    return text;
}

void parseHostile(benchmark::State& state, const std::function<QString()>& make)
{
    const QString text = make();
    for (auto _ : state) {
        MarkdownDocument document = MarkdownDocument::parse(text);
        benchmark::DoNotOptimize(document.blocks.data());
    }
    state.SetBytesProcessed(int64_t(state.iterations()) * text.toUtf8().size());
}

// Inline half: closers that are never found, retried from every opener.
QString unclosedBrackets() { return repeated(QStringLiteral("[abcdefgh ")); }
QString backtickRunsWithoutPartners()
{
    // Every length once, then a long tail: each retry of a shorter run would rescan the tail.
    QString text;
    for (int length = 1; length <= 50; ++length)
        text += QString(length, u'`') + QStringLiteral(" a ");
    return text + repeated(QStringLiteral("plain words without any backtick "));
}
QString alternatingDelimiters() { return repeated(QStringLiteral("*a_b")); }
QString dollarBeforeEveryWord() { return repeated(QStringLiteral("$word ")); }
QString dollarDigitBeforeEveryWord() { return repeated(QStringLiteral("$5 word ")); }
QString angleBeforeEveryWord() { return repeated(QStringLiteral("<word ")); }
QString doubleBrackets() { return repeated(QStringLiteral("[[")); }
QString doubleBracketsWithWords() { return repeated(QStringLiteral("[[a ")); }
QString paragraphWithLinkAtEnd()
{
    return repeated(QStringLiteral("a long paragraph of words [with brackets] and *stars* ")) + QStringLiteral("[link](url)");
}
QString nested(const QString& open, const QString& close, int depth = 30'000)
{
    return open.repeated(depth) + QStringLiteral("x") + close.repeated(depth);
}
QString nestedEmphasis() { return nested(QStringLiteral("*a "), QStringLiteral(" a*")); }
QString nestedUnresolvedBrackets() { return nested(QStringLiteral("[a "), QStringLiteral(" a]")); }
QString nestedLinks() { return nested(QStringLiteral("[a "), QStringLiteral("](u)")); }
QString nestedImages() { return nested(QStringLiteral("![a "), QStringLiteral("](u)")); }
QString nestedStrikeAndLinks() { return nested(QStringLiteral("[~~a "), QStringLiteral("~~](u)")); }
QString unclosedParentheses() { return repeated(QStringLiteral("[a](b ")); }
QString unclosedTildes() { return repeated(QStringLiteral("~~a ==b ")); }

// Block half: openers whose closer search could rescan the rest of the text each time.
QString linesWithFiller(const QString& opener)
{
    return repeated(opener + QStringLiteral(" filler words to make the line about a hundred bytes long, no closer ")
                    + QStringLiteral("here at all\n"));
}
QString dollarLines() { return repeated(QStringLiteral("$$\n")); }
QString dollarLinesWithText() { return linesWithFiller(QStringLiteral("$$\n")); }
QString bracketMathLines() { return linesWithFiller(QStringLiteral("\\[")); }
QString containerLines() { return linesWithFiller(QStringLiteral("::: x")); }
QString containerOpenersAlone() { return repeated(QStringLiteral("::: x\n")); }
QString quoteMarkers() { return QString(100'000, u'>') + QStringLiteral(" a"); }
QString quoteMarkerLines() { return repeated(QString(100'000, u'>') + QStringLiteral(" a\n")); }
QString pipeParagraph() { return repeated(QStringLiteral("a | b\n")); }
QString deepListIndent() { return repeated(QStringLiteral("- a\n") + QString(200, u' ') + QStringLiteral("- b\n")); }
QString unclosedFences() { return repeated(QStringLiteral("> ```\n")); }

void parseHostileHtml(benchmark::State& state, QString (*make)())
{
    const QString text = make();
    MarkdownParseOptions options;
    options.blockHtml = true;
    for (auto _ : state) {
        MarkdownDocument document = MarkdownDocument::parse(text, options);
        benchmark::DoNotOptimize(document.blocks.data());
    }
    state.SetBytesProcessed(int64_t(state.iterations()) * text.toUtf8().size());
}
QString unclosedDivLines() { return repeated(QStringLiteral("<div class=x>\n")); }

}

BENCHMARK_CAPTURE(parseHostileHtml, unclosedDivLines, unclosedDivLines)->Unit(benchmark::kMillisecond)->MinTime(0.2);

#define VELMO_HOSTILE(name) \
    BENCHMARK_CAPTURE(parseHostile, name, name)->Unit(benchmark::kMillisecond)->MinTime(0.2)

VELMO_HOSTILE(unclosedBrackets);
VELMO_HOSTILE(backtickRunsWithoutPartners);
VELMO_HOSTILE(alternatingDelimiters);
VELMO_HOSTILE(dollarBeforeEveryWord);
VELMO_HOSTILE(dollarDigitBeforeEveryWord);
VELMO_HOSTILE(angleBeforeEveryWord);
VELMO_HOSTILE(doubleBrackets);
VELMO_HOSTILE(doubleBracketsWithWords);
VELMO_HOSTILE(paragraphWithLinkAtEnd);
VELMO_HOSTILE(nestedEmphasis);
VELMO_HOSTILE(nestedUnresolvedBrackets);
VELMO_HOSTILE(nestedLinks);
VELMO_HOSTILE(nestedImages);
VELMO_HOSTILE(nestedStrikeAndLinks);
VELMO_HOSTILE(unclosedParentheses);
VELMO_HOSTILE(unclosedTildes);
VELMO_HOSTILE(dollarLines);
VELMO_HOSTILE(dollarLinesWithText);
VELMO_HOSTILE(bracketMathLines);
VELMO_HOSTILE(containerLines);
VELMO_HOSTILE(containerOpenersAlone);
VELMO_HOSTILE(quoteMarkers);
VELMO_HOSTILE(quoteMarkerLines);
VELMO_HOSTILE(pipeParagraph);
VELMO_HOSTILE(deepListIndent);
VELMO_HOSTILE(unclosedFences);

VELMO_BENCHMARK_MAIN()
