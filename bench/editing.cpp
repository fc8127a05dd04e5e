// Editing commands on the 1 MB note: a keystroke-sized command must stay far below a frame,
// whatever the note's length.

#include "support/BenchData.h"

#include "MarkdownEngine/Editing/MarkdownEditingCommands.h"
#include "MarkdownEngine/Editing/MarkdownEditorKeys.h"

#include <benchmark/benchmark.h>

using namespace velmo::markdown;
using Commands = MarkdownEditingCommands;

namespace {

const QString& note()
{
    static const QString text = velmo::bench::bigNoteText();
    return text;
}

MarkdownSourceRange middle()
{
    return {int(note().size() / 2), 0};
}

void bench(benchmark::State& state, const MarkdownEditorCommand& command, MarkdownSourceRange selection)
{
    const QString& text = note();
    for (auto _ : state)
        benchmark::DoNotOptimize(Commands::edit(command, text, selection));
    state.SetBytesProcessed(state.iterations() * text.size() * 2);
}

void BM_boldAtCaret(benchmark::State& state)
{
    bench(state, editor_command::Simple::bold, middle());
}

void BM_bulletListWholeNote(benchmark::State& state)
{
    bench(state, editor_command::Simple::bulletList, {0, int(note().size())});
}

void BM_indentWholeNote(benchmark::State& state)
{
    bench(state, editor_command::Simple::indent, {0, int(note().size())});
}

void BM_moveLineDown(benchmark::State& state)
{
    bench(state, editor_command::Simple::moveLinesDown, middle());
}

void BM_renumberFootnotes(benchmark::State& state)
{
    bench(state, editor_command::Simple::renumberFootnotes, middle());
}

// Parses the whole note to know whether the caret is in a table.
void BM_insertTable(benchmark::State& state)
{
    bench(state, editor_command::Table{3, 3}, middle());
}

// A structural key, as the editor handles it, at the end of each of the note's first 1000 lines.
void BM_keyAtEveryLine(benchmark::State& state, MarkdownEditorKeys::Key key)
{
    const QString& text = note();
    std::vector<int> ends;
    for (qsizetype i = text.indexOf(u'\n'); i >= 0 && ends.size() < 1000; i = text.indexOf(u'\n', i + 1))
        ends.push_back(int(i));
    for (auto _ : state) {
        for (int end : ends)
            benchmark::DoNotOptimize(MarkdownEditorKeys::edit(key, text, {end, 0}, {}));
    }
    state.SetItemsProcessed(state.iterations() * qsizetype(ends.size()));
}

void BM_tidyTableAtATable(benchmark::State& state)
{
    const QString& text = note();
    const qsizetype at = text.indexOf(QStringLiteral("\n|"));
    if (at < 0) {
        state.SkipWithError("the note holds no table");
        return;
    }
    for (auto _ : state)
        benchmark::DoNotOptimize(Commands::tidyTable(text, {int(at + 2), 0}));
}

}

BENCHMARK(BM_boldAtCaret);
BENCHMARK(BM_bulletListWholeNote)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_indentWholeNote)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_moveLineDown);
BENCHMARK(BM_renumberFootnotes)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_insertTable)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_keyAtEveryLine, newline, MarkdownEditorKeys::Key::newline)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(BM_keyAtEveryLine, tab, MarkdownEditorKeys::Key::tab)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(BM_keyAtEveryLine, backspace, MarkdownEditorKeys::Key::backspace)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_tidyTableAtATable)->Unit(benchmark::kMicrosecond);
VELMO_BENCHMARK_MAIN()
