// Hostile inputs of about 1 MB each: every one must parse in near-linear time (target under
// 50 ms) and nest as deep as it likes without exhausting the stack.
#include "MarkdownEngine/Core/MarkdownDocument.h"

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

}

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

BENCHMARK_MAIN();
