// Parse plus layout of the formulas the vault notes hold, with a warm font cache; the first
// formula with a cold one; and drawing an inline formula at 2x.

#include "support/BenchData.h"

#include "VelmoMath/TeXLayoutEngine.h"
#include "VelmoMath/TeXParser.h"
#include "VelmoMath/TeXRenderer.h"

#include <QElapsedTimer>
#include <QGuiApplication>
#include <QRegularExpression>
#include <benchmark/benchmark.h>
#include <cstdio>

using namespace velmo::math;

namespace {

// Every formula of a 200-note vault, display ones included, in the order they occur.
const QStringList& vaultFormulas()
{
    static const QStringList formulas = [] {
        QString text = velmo::bench::concatenatedNotes(200);
        QStringList list;
        static const QRegularExpression display(QStringLiteral("\\$\\$\\n(.+?)\\n\\$\\$"),
                                                QRegularExpression::DotMatchesEverythingOption);
        for (const auto& match : display.globalMatch(text))
            list << match.captured(1);
        text.remove(display);
        static const QRegularExpression inlineMath(QStringLiteral("\\$([^$\\n]+?)\\$"));
        for (const auto& match : inlineMath.globalMatch(text))
            list << match.captured(1);
        return list;
    }();
    return formulas;
}

void BM_ParseAndLayoutVaultFormulas(benchmark::State& state)
{
    const QStringList& formulas = vaultFormulas();
    TeXFontResolver resolver;
    const TeXLayoutEngine engine(resolver, 16);
    for (const QString& formula : formulas) // warm the caches
        benchmark::DoNotOptimize(engine.layout(formula, TeXStyle::text));
    qsizetype i = 0;
    for (auto _ : state) {
        const QString& formula = formulas[i];
        i = (i + 1) % formulas.size();
        TeXBox box = engine.layout(TeXParser::parse(formula, TeXStyle::text), TeXStyle::text);
        benchmark::DoNotOptimize(box);
    }
    state.counters["formulas"] = double(formulas.size());
}
BENCHMARK(BM_ParseAndLayoutVaultFormulas);

void BM_ParseOnly(benchmark::State& state)
{
    const QStringList& formulas = vaultFormulas();
    qsizetype i = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(TeXParser::parse(formulas[i], TeXStyle::text));
        i = (i + 1) % formulas.size();
    }
}
BENCHMARK(BM_ParseOnly);

// A new resolver each time: faces are loaded and sized again (Qt's own font database stays warm).
void BM_FirstFormulaColdResolver(benchmark::State& state)
{
    for (auto _ : state) {
        TeXFontResolver resolver;
        const TeXLayoutEngine engine(resolver, 16);
        benchmark::DoNotOptimize(engine.layout(QStringLiteral("x^2 + y^2 = z^2"), TeXStyle::text));
    }
}
BENCHMARK(BM_FirstFormulaColdResolver);

void BM_DrawInlineFormulaAt2x(benchmark::State& state)
{
    TeXFontResolver resolver;
    const TeXLayoutEngine engine(resolver, 16);
    const TeXBox box = engine.layout(QStringLiteral("e^{i\\pi} + 1 = 0"), TeXStyle::text);
    for (auto _ : state)
        benchmark::DoNotOptimize(TeXRenderer::picture(box, 2, Qt::black));
}
BENCHMARK(BM_DrawInlineFormulaAt2x);

}

int main(int argc, char** argv)
{
    velmo::markdown::ParseHeap::keepWarm();
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    // The very first formula of the process: font database, faces and glyphs all cold.
    {
        QElapsedTimer timer;
        timer.start();
        TeXFontResolver resolver;
        const TeXLayoutEngine engine(resolver, 16);
        benchmark::DoNotOptimize(engine.layout(QStringLiteral("x^2 + y^2 = z^2"), TeXStyle::text));
        std::printf("first formula of the process: %.1f ms\n", timer.nsecsElapsed() / 1e6);
    }
    std::printf("vault formulas: %lld\n", (long long)vaultFormulas().size());
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
