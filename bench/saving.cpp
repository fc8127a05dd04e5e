// What saving costs the main thread, how soon the watcher hears an outside write, and what a
// sweep of cached note texts costs.
#include "support/BenchData.h"

#include "Editor/Model/DirectoryWatcher.h"
#include "Editor/Model/NoteTextCache.h"
#include "Velmo/AppState.h"

#include <QCoreApplication>
#include <QDirIterator>
#include <QFile>
#include <QTemporaryDir>
#include <QThread>
#include <atomic>
#include <benchmark/benchmark.h>
#include <chrono>
#include <ctime>

using namespace velmo;
using Clock = std::chrono::steady_clock;

static double threadCpuSeconds()
{
    timespec now {};
    ::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return double(now.tv_sec) + double(now.tv_nsec) * 1e-9;
}

// The main thread's part of an autosave of the 1 MB note: preparing the write and handing it
// over. The write itself runs on the writer's thread and is waited for outside the timing.
static void BM_SaveInBackgroundMainThread(benchmark::State& state)
{
    QTemporaryDir dir;
    const QString path = dir.filePath("Big Note.md");
    // bench::bigNoteText() asks the generator for "--notes 0", which it cannot make; the same
    // 1 MB note comes with a few ordinary ones.
    const QString bigPath = bench::vaultDir({"--notes", "10", "--big-note", "1"}) + "/Big Note.md";
    const QString big = *editor::NoteTextCache().text(QUrl::fromLocalFile(bigPath));
    editor::MarkdownFile::atPath(path).write(big);
    app::AppState appState(std::make_unique<editor::EditorSettings>(), false);
    app::OpenDocument* document = appState.open(QUrl::fromLocalFile(path), true);
    int round = 0;
    double wall = 0;
    for (auto _ : state) {
        document->setText(big + QString::number(++round));
        const auto start = Clock::now();
        const double cpuStart = threadCpuSeconds();
        const bool handed = appState.saveInBackground(document, false);
        const double cpu = threadCpuSeconds() - cpuStart;
        wall += std::chrono::duration<double>(Clock::now() - start).count();
        benchmark::DoNotOptimize(handed);
        appState.writer().waitForDisk();
        QCoreApplication::processEvents();
        // The main thread's own time: on a busy machine the wall clock also counts the moments
        // the writer's thread, just woken, holds the only free core.
        state.SetIterationTime(cpu);
    }
    state.counters["wall_us"] = wall / double(state.iterations()) * 1e6;
    state.counters["dirty_after"] = document->isDirty();
}
BENCHMARK(BM_SaveInBackgroundMainThread)->UseManualTime()->Unit(benchmark::kMicrosecond)->Iterations(40);

// From an outside write in a 10,000-note folder to the watcher's handler, after a quiet spell
// (the first event of a burst is delivered at once; the rest wait for the 0.2 s latency).
static void BM_WatcherOutsideWriteToHandler(benchmark::State& state)
{
    const QString vault = bench::vaultDir({"--notes", "10000"});
    std::atomic<int> calls{0};
    const auto setupStart = Clock::now();
    editor::DirectoryWatcher watcher(QUrl::fromLocalFile(vault), [&] { ++calls; }, [](const QString&) { return false; });
    watcher.start();
    while (!watcher.isWatching())
        QThread::usleep(200);
    const double setupMs = std::chrono::duration<double, std::milli>(Clock::now() - setupStart).count();
    const QString probe = vault + "/velmo-watch-probe.md";
    int round = 0;
    for (auto _ : state) {
        QThread::msleep(300);
        const int before = calls;
        const auto start = Clock::now();
        QFile file(probe);
        file.open(QIODevice::WriteOnly | QIODevice::Truncate);
        file.write(QByteArray::number(++round));
        file.close();
        while (calls == before)
            QThread::usleep(50);
        state.SetIterationTime(std::chrono::duration<double>(Clock::now() - start).count());
    }
    watcher.stop();
    QFile::remove(probe);
    state.counters["watches"] = watcher.watchCount();
    state.counters["setup_ms"] = setupMs;
}
BENCHMARK(BM_WatcherOutsideWriteToHandler)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(5);

// `text(of:)` over 10,000 unchanged notes, every one a hit.
static void BM_NoteTextCacheAllHits(benchmark::State& state)
{
    const QString vault = bench::vaultDir({"--notes", "10000"});
    QList<QUrl> notes;
    QDirIterator it(vault, {"*.md"}, QDir::Files, QDirIterator::Subdirectories);
    while (it.hasNext())
        notes << QUrl::fromLocalFile(it.next());
    editor::NoteTextCache cache;
    for (const QUrl& note : notes)
        benchmark::DoNotOptimize(cache.text(note));
    for (auto _ : state) {
        qsizetype characters = 0;
        for (const QUrl& note : notes)
            characters += cache.text(note)->size();
        benchmark::DoNotOptimize(characters);
    }
    state.counters["notes"] = double(notes.size());
}
BENCHMARK(BM_NoteTextCacheAllHits)->Unit(benchmark::kMillisecond);

int main(int argc, char** argv)
{
    velmo::markdown::ParseHeap::keepWarm();
    QCoreApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
