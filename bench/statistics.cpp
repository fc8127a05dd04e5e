// Word counting over the 1 MB note, in MB/s of the UTF-8 source.
#include "MarkdownEngine/Core/MarkdownTextStatistics.h"
#include "support/BenchData.h"

#include <benchmark/benchmark.h>

using namespace velmo::markdown;

static void measureBigNote(benchmark::State& state)
{
    const QString text = velmo::bench::bigNoteText();
    const int64_t bytes = text.toUtf8().size();
    for (auto _ : state)
        benchmark::DoNotOptimize(MarkdownTextStatistics::measure(text, {0, int(text.size())}));
    state.SetBytesProcessed(int64_t(state.iterations()) * bytes);
}
BENCHMARK(measureBigNote)->Unit(benchmark::kMillisecond);

VELMO_BENCHMARK_MAIN()
