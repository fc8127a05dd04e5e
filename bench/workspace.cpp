// Opening and scanning a folder of notes, and filtering the sidebar.
//
// The peak resident size is printed for each scan size; `rg --files` over the same folder is
// the reference to print beside these figures (it is not run from here).
#include "Editor/Model/Workspace.h"
#include "Editor/Model/WorkspaceTree.h"
#include "support/BenchData.h"

#include <QCoreApplication>
#include <benchmark/benchmark.h>

#include <sys/resource.h>

using velmo::editor::Workspace;
using velmo::editor::WorkspaceTree;

static QString vaultOf(int notes)
{
    return velmo::bench::vaultDir({"--notes", QString::number(notes)});
}

static void reportPeakMemory(benchmark::State& state)
{
    rusage usage {};
    getrusage(RUSAGE_SELF, &usage);
    state.counters["peakRSS_MB"] = double(usage.ru_maxrss) / 1024.0;
}

// open reads the order and scans; the rescan after it is the watcher's repeat scan.
static void BM_WorkspaceOpenAndRescan(benchmark::State& state)
{
    const QUrl root = QUrl::fromLocalFile(vaultOf(int(state.range(0))));
    size_t notes = 0;
    for (auto _ : state) {
        Workspace workspace;
        workspace.open(root);
        workspace.rescan();
        notes = workspace.notes().size();
        benchmark::DoNotOptimize(notes);
    }
    state.counters["notes"] = double(notes);
    reportPeakMemory(state);
}
BENCHMARK(BM_WorkspaceOpenAndRescan)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);

static void BM_TreeBuild(benchmark::State& state)
{
    const QUrl root = QUrl::fromLocalFile(vaultOf(int(state.range(0))));
    for (auto _ : state)
        benchmark::DoNotOptimize(WorkspaceTree::build(root));
}
BENCHMARK(BM_TreeBuild)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);

static void BM_FilteredTree(benchmark::State& state)
{
    Workspace workspace;
    workspace.open(QUrl::fromLocalFile(vaultOf(10000)));
    const QString filter = state.range(0) == 1 ? QStringLiteral("e") : QStringLiteral("meeting");
    workspace.setFilter(filter);
    int kept = 0;
    for (auto _ : state) {
        const auto tree = workspace.filteredTree();
        kept = tree ? tree->fileCount() : 0;
        benchmark::DoNotOptimize(kept);
    }
    state.counters["kept"] = kept;
}
BENCHMARK(BM_FilteredTree)->Arg(1)->Arg(7)->Unit(benchmark::kMillisecond);

int main(int argc, char** argv)
{
    velmo::markdown::ParseHeap::keepWarm();
    QCoreApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
