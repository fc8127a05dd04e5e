#pragma once

#include <QString>
#include <QStringList>

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
