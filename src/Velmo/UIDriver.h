#pragma once

#include "Velmo/UIDriverEnvironment.h"
#include "Velmo/UIDriverScript.h"

#include <QFuture>
#include <QObject>
#include <QStringList>
#include <functional>
#include <optional>
#include <vector>

namespace velmo::app {

class AppState;
class UIWindowHost;

// Runs a script of commands against the live state, one step per delay, and appends a dump
// after each step. Main thread only. No command stops a run: failures are notes, so a script
// always runs to its end and its transcript is how the run is judged.
class UIDriver : public QObject {
    Q_OBJECT

public:
    UIDriver(AppState& state, UIWindowHost* host, UIDriverEnvironment environment,
             std::function<void()> terminate, QObject* parent = nullptr);
    UIDriver(const UIDriver&) = delete;
    UIDriver& operator=(const UIDriver&) = delete;

    const UIDriverEnvironment& environment() const { return m_environment; }
    const QStringList& transcript() const { return m_transcript; }
    AppState& state() { return m_state; }
    UIWindowHost* host() { return m_host; }

    void runIfRequested();
    // The dump without a script: one block, the single picture, then the quit rule.
    void writeSingleDump();
    // Offers the command to the groups in order and logs "command — note".
    QString perform(const UIDriverCommand& command);

    // The next step waits this long instead of the step delay; only a positive value counts.
    void setDelayOverride(double seconds) { m_delayOverride = seconds; }
    // Background work of the current step, awaited before the next step logs.
    void waitFor(QFuture<void> work) { m_pendingWork = std::move(work); }

signals:
    void finished();

private:
    void scheduleStep(std::size_t index);
    void runStep(std::size_t index);
    void logStep(std::size_t index);
    void finish();
    void applyQuitRule();

    AppState& m_state;
    UIWindowHost* m_host;
    UIDriverEnvironment m_environment;
    std::function<void()> m_terminate;
    std::vector<UIDriverCommand> m_commands;
    std::vector<QString> m_notes;
    QStringList m_transcript;
    double m_delayOverride = 0;
    std::optional<QFuture<void>> m_pendingWork;
};

}
