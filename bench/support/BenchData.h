#pragma once

#include "MarkdownEngine/Core/ParseHeap.h"

#include <QString>
#include <QStringList>
#include <benchmark/benchmark.h>

namespace velmo::bench {

// Benchmark data comes from the shared vault generator, made once per argument set and kept
// under build/bench-data (or VELMO_BENCH_DATA). The generator is deterministic, so every run
// measures the same bytes.
QString vaultDir(const QStringList& generatorArguments);

// The 1 MB note of `--big-note 1`.
QString bigNoteText();
// Every note of a `--notes N` vault, concatenated in path order.
QString concatenatedNotes(int notes);

}

// main() of a benchmark program: the program's heap policy first, so that the figures are
// the program's, then the benchmarks.
#define VELMO_BENCHMARK_MAIN()                                      \
    int main(int argc, char** argv)                                 \
    {                                                               \
        velmo::markdown::ParseHeap::keepWarm();                     \
        benchmark::Initialize(&argc, argv);                         \
        if (benchmark::ReportUnrecognizedArguments(argc, argv))     \
            return 1;                                               \
        benchmark::RunSpecifiedBenchmarks();                        \
        benchmark::Shutdown();                                      \
        return 0;                                                   \
    }
