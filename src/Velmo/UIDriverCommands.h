#pragma once

#include "Velmo/UIDriverScript.h"

#include <QString>
#include <functional>
#include <vector>

namespace velmo::app {

class AppState;
class UIDriver;
class UIWindowHost;

// The table of the driver's commands, by group. Adding a command is one row in its group.
namespace UIDriverCommands {

struct Context {
    AppState& state;
    UIWindowHost* host; // absent without a window
    UIDriver& driver;
};

struct Entry {
    QString name;
    std::function<QString(Context&, const UIDriverCommand&)> run;
};

// The groups, in the order a command is offered to them.
std::vector<Entry> documentGroup();
std::vector<Entry> tagGroup();
std::vector<Entry> panelGroup();
std::vector<Entry> graphGroup();
std::vector<Entry> editingGroup();

// The first group that knows the name wins; absent for an unknown command.
const Entry* find(const QString& name);

// A path argument with a leading "~" expanded.
[[nodiscard]] QString expandedPath(const QString& path);

}

}
