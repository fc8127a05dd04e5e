#pragma once

#include <QProcessEnvironment>
#include <QString>
#include <optional>

namespace velmo::app {

// The scripted driver's environment variables, read once at launch.
struct UIDriverEnvironment {
    std::optional<QString> dumpPath;     // VELMO_UI_DUMP: without it nothing of the driver runs
    QString script;                      // VELMO_UI_SCRIPT
    double dumpDelay = 2.0;              // VELMO_UI_DUMP_DELAY, seconds from launch
    double stepDelay = 0.7;              // VELMO_UI_STEP_DELAY, seconds between steps
    std::optional<QString> snapshotDir;  // VELMO_UI_SNAPSHOT_DIR: one PNG per step
    std::optional<QString> snapshotPath; // VELMO_UI_SNAPSHOT: the single dump's picture
    bool quitsAtEnd = true;              // VELMO_UI_DUMP_QUIT "0" keeps the process alive
    bool light = false;                  // VELMO_UI_DUMP_LIGHT "1": headers only
    bool attributes = false;             // VELMO_UI_DUMP_ATTRS present
    bool lines = false;                  // VELMO_UI_LINES present
    double frameMs = 8.0;                // VELMO_UI_FRAME_MS, at least 0.5

    [[nodiscard]] static UIDriverEnvironment from(const QProcessEnvironment& environment);
    [[nodiscard]] static UIDriverEnvironment current() { return from(QProcessEnvironment::systemEnvironment()); }

    [[nodiscard]] bool isEnabled() const { return dumpPath.has_value(); }
    [[nodiscard]] bool isScripted() const { return !script.isEmpty(); }
};

}
