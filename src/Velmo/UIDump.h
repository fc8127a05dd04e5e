#pragma once

#include "MarkdownEngine/Core/MarkdownTextStatistics.h"
#include "Velmo/UIDriverEnvironment.h"

#include <QString>
#include <functional>

namespace velmo::app {

class AppState;
class UIDriver;
class UIWindowHost;

// The textual dump of the program's state that the scripted driver appends after each step.
// Its lines are keyed so that people and scripts can search them.
namespace UIDump {

// With VELMO_UI_DUMP set: after VELMO_UI_DUMP_DELAY seconds runs the script, or writes the single
// dump. `terminate` is the shell's quit path, taken at the end unless VELMO_UI_DUMP_QUIT is "0".
// The driver lives as a child of `state`; absent when the driver is off.
UIDriver* scheduleIfRequested(AppState& state, UIWindowHost* host, std::function<void()> terminate,
                              const UIDriverEnvironment& environment = UIDriverEnvironment::current());

// The block: a header line, then the body unless the dump is light.
[[nodiscard]] QString block(const QString& header, AppState& state, const UIWindowHost* host,
                            const UIDriverEnvironment& environment);
[[nodiscard]] QString body(AppState& state, const UIWindowHost* host, const UIDriverEnvironment& environment);
// Appends the block to the file, creating it; failures are ignored.
void append(const QString& path, const QString& header, AppState& state, const UIWindowHost* host,
            const UIDriverEnvironment& environment);

// "words= chars= cjk= total= reading=Nm selection=".
[[nodiscard]] QString statistics(const markdown::MarkdownTextStatistics& statistics);

}

}
