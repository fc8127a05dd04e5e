#pragma once

#include <QString>
#include <optional>

namespace velmo::app::DefaultFolder {

// The folder a first launch opens: "Velmo" in the user's documents folder, seeded with the
// sample workspace. Remembered in the settings store under "VelmoDefaultFolder".
std::optional<QString> stored();
// With nothing stored: makes the folder (copying the sample notes only when it does not exist
// yet, so nothing of the user's is ever overwritten) and remembers it.
void seedIfNeeded();
// Copies the bundled sample workspace into `folder`; false on any failure.
bool copySample(const QString& folder);

}
