#pragma once

#include <QJsonDocument>
#include <QString>
#include <QStringList>
#include <optional>

namespace velmo::cli {

// One subcommand: `arguments` are those after its name. Returns the exit status.
using CommandFunction = int (*)(const QStringList& arguments);

// Each command lives in its own Cli<Name>.cpp.
int runStats(const QStringList& arguments);
int runOutline(const QStringList& arguments);
int runParse(const QStringList& arguments);
int runTags(const QStringList& arguments);
int runTex(const QStringList& arguments);
int runHighlight(const QStringList& arguments);
int runStyle(const QStringList& arguments);

// Reads FILE, or standard input for "-". On failure prints the file error's message on
// standard error and returns nothing; the command then exits with status 1.
std::optional<QString> readInput(const QString& path);

void printJson(const QJsonDocument& json);
// Prints "velmo-cli: " + message on standard error; returns 2, the status for a usage error.
int usageError(const QString& message);

}
