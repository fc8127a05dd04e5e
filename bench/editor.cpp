// The live editor's costs on large notes: a keystroke (parse, style, copy of the dirty lines,
// then the layout of the changed lines), a caret move between lines, and opening a note.
#include "MarkdownEngine/Layout/MarkdownEditorCoordinator.h"
#include "MarkdownEngine/Layout/MarkdownHeadlessTextView.h"
#include "support/BenchData.h"

#include <QElapsedTimer>
#include <QFile>
#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <QTextBlock>
#include <benchmark/benchmark.h>
#include <cstdio>
#include <memory>
#include <optional>

using namespace velmo::markdown;

namespace {

struct Editor {
    MarkdownHeadlessTextView view;
    MarkdownEditorCoordinator coordinator{view, MarkdownEditorConfiguration{}};

    explicit Editor(const QString& text)
    {
        view.setCoordinator(&coordinator);
        coordinator.setText(text, int(text.size() / 2));
    }
};

// The note cut at a line end near `size` UTF-16 units.
QString noteOfSize(qsizetype size)
{
    const QString big = velmo::bench::bigNoteText();
    if (size >= big.size())
        return big;
    const qsizetype end = big.indexOf(u'\n', size);
    return big.left(end < 0 ? size : end + 1);
}

// What a screen shows around the caret: drawing lays out the lines that changed.
void paintAroundCaret(Editor& e, QImage& canvas)
{
    const QRectF caret = e.view.layout().caretRect(e.coordinator.selectedRange().location);
    QPainter painter(&canvas);
    painter.translate(0, -caret.top() + 300);
    QAbstractTextDocumentLayout::PaintContext context;
    context.clip = QRectF(0, caret.top() - 300, canvas.width(), canvas.height());
    e.view.layout().draw(&painter, context);
}

void keystroke(benchmark::State& state, qsizetype size, bool withLayout)
{
    Editor e(noteOfSize(size));
    QImage canvas(900, 800, QImage::Format_ARGB32_Premultiplied);
    paintAroundCaret(e, canvas);
    bool typeLetter = true;
    for (auto _ : state) {
        // Type a letter, then take it back: the note stays the same size over the run.
        if (typeLetter)
            e.view.insert(QStringLiteral("a"));
        else
            e.view.textStorage().replace({e.coordinator.selectedRange().location - 1, 1}, QString());
        typeLetter = !typeLetter;
        e.coordinator.restyleNow();
        if (withLayout)
            paintAroundCaret(e, canvas);
        // After the frame the event loop runs what the pass left for later (the release of
        // the replaced tree and store): not part of what a keystroke waits for.
        state.PauseTiming();
        QCoreApplication::sendPostedEvents();
        state.ResumeTiming();
    }
    state.counters["applied"] = e.coordinator.lastAppliedRange.length;
}

void BM_Keystroke1MB(benchmark::State& state) { keystroke(state, 1 << 20, false); }
void BM_Keystroke1MBWithLayout(benchmark::State& state) { keystroke(state, 1 << 20, true); }
void BM_Keystroke100KB(benchmark::State& state) { keystroke(state, 100 * 1024, false); }
void BM_Keystroke100KBWithLayout(benchmark::State& state) { keystroke(state, 100 * 1024, true); }
BENCHMARK(BM_Keystroke1MB)->Unit(benchmark::kMillisecond)->MeasureProcessCPUTime();
BENCHMARK(BM_Keystroke1MBWithLayout)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Keystroke100KB)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Keystroke100KBWithLayout)->Unit(benchmark::kMillisecond);

void BM_CaretMoveBetweenLines1MB(benchmark::State& state)
{
    const QString text = noteOfSize(1 << 20);
    Editor e(text);
    // Two prose lines past the middle: a line of a table costs a styling of the whole note,
    // since its columns are kerned from all its rows (BM_CaretMoveInTable1MB).
    const auto proseLine = [&](int from) {
        for (int start = int(text.indexOf(u'\n', from)) + 1; start > 0 && start < text.size();
             start = int(text.indexOf(u'\n', start)) + 1) {
            const QChar c = text.at(start);
            if (c.isLetter())
                return start;
        }
        return 0;
    };
    const int lineA = proseLine(int(text.size() / 2));
    const int lineB = proseLine(lineA);
    bool toA = true;
    for (auto _ : state) {
        e.view.setSelection({toA ? lineA : lineB, 0});
        e.coordinator.restyleNow();
        toA = !toA;
    }
    state.counters["selectionPasses"] = e.coordinator.selectionStylePassCount;
}
BENCHMARK(BM_CaretMoveBetweenLines1MB)->Unit(benchmark::kMicrosecond);

void BM_CaretMoveInTable1MB(benchmark::State& state)
{
    const QString text = noteOfSize(1 << 20);
    Editor e(text);
    const int row = int(text.indexOf(QStringLiteral("\n| "), text.size() / 2)) + 1;
    const int next = int(text.indexOf(u'\n', row)) + 1;
    bool toA = true;
    for (auto _ : state) {
        e.view.setSelection({toA ? row : next, 0});
        e.coordinator.restyleNow();
        toA = !toA;
    }
}
BENCHMARK(BM_CaretMoveInTable1MB)->Unit(benchmark::kMillisecond);

void BM_Open1MB(benchmark::State& state)
{
    const QString text = noteOfSize(1 << 20);
    QImage canvas(900, 800, QImage::Format_ARGB32_Premultiplied);
    std::optional<Editor> e;
    for (auto _ : state) {
        e.emplace(text);
        QPainter painter(&canvas);
        QAbstractTextDocumentLayout::PaintContext context;
        context.clip = QRectF(0, 0, canvas.width(), canvas.height());
        e->view.layout().draw(&painter, context);
        painter.end();
        // Closing the note is not part of opening it.
        state.PauseTiming();
        e.reset();
        QCoreApplication::sendPostedEvents();
        state.ResumeTiming();
    }
}
BENCHMARK(BM_Open1MB)->Unit(benchmark::kMillisecond);

long peakResidentKilobytes()
{
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly))
        return -1;
    for (const QByteArray& line : status.readAll().split('\n')) {
        if (line.startsWith("VmHWM:"))
            return line.mid(6).trimmed().split(' ').first().toLong();
    }
    return -1;
}

}

int main(int argc, char** argv)
{
    velmo::markdown::ParseHeap::keepWarm();
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    {
        // One note open from cold, then the process's peak memory with it open.
        const QString text = noteOfSize(1 << 20);
        QElapsedTimer timer;
        timer.start();
        Editor e(text);
        QImage canvas(900, 800, QImage::Format_ARGB32_Premultiplied);
        QPainter painter(&canvas);
        QAbstractTextDocumentLayout::PaintContext context;
        context.clip = QRectF(0, 0, canvas.width(), canvas.height());
        e.view.layout().draw(&painter, context);
        std::printf("first open of the 1 MB note (style and first paint): %.1f ms\n", timer.nsecsElapsed() / 1e6);
        std::printf("peak resident memory with the 1 MB note open: %.1f MB\n", peakResidentKilobytes() / 1024.0);
    }
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
