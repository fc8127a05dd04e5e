#include "Velmo/UIDriver.h"

#include "Velmo/AppState.h"
#include "Velmo/UIDriverCommands.h"
#include "Velmo/UIDump.h"
#include "Velmo/UIWindowHost.h"

#include <QDir>
#include <QFutureWatcher>
#include <QTimer>

namespace velmo::app {

UIDriver::UIDriver(AppState& state, UIWindowHost* host, UIDriverEnvironment environment,
                   std::function<void()> terminate, QObject* parent)
    : QObject(parent)
    , m_state(state)
    , m_host(host)
    , m_environment(std::move(environment))
    , m_terminate(std::move(terminate))
{
}

QString UIDriver::perform(const UIDriverCommand& command)
{
    QString note;
    if (const UIDriverCommands::Entry* entry = UIDriverCommands::find(command.name)) {
        UIDriverCommands::Context context{m_state, m_host, *this};
        note = entry->run(context, command);
    } else {
        note = "unknown command " + command.name;
    }
    m_transcript << command.text + " — " + note;
    return note;
}

void UIDriver::runIfRequested()
{
    m_transcript.clear();
    m_commands = UIDriverScript::parse(m_environment.script);
    m_notes.assign(m_commands.size(), QString());
    // An empty script ends the run at once: no block, and no quit.
    if (m_commands.empty())
        return;
    m_notes[0] = perform(m_commands[0]);
    scheduleStep(0);
}

void UIDriver::scheduleStep(std::size_t index)
{
    const double delay = m_delayOverride > 0 ? m_delayOverride : m_environment.stepDelay;
    m_delayOverride = 0;
    QTimer::singleShot(int(std::max(0.0, delay) * 1000.0), this, [this, index] { runStep(index); });
}

void UIDriver::runStep(std::size_t index)
{
    if (m_pendingWork && !m_pendingWork->isFinished()) {
        auto* watcher = new QFutureWatcher<void>(this);
        connect(watcher, &QFutureWatcher<void>::finished, this, [this, watcher, index] {
            watcher->deleteLater();
            m_pendingWork.reset();
            logStep(index);
        });
        watcher->setFuture(*m_pendingWork);
        return;
    }
    m_pendingWork.reset();
    logStep(index);
}

void UIDriver::logStep(std::size_t index)
{
    const QString header = QStringLiteral("step %1: %2 — %3").arg(index + 1).arg(m_commands[index].text, m_notes[index]);
    UIDump::append(*m_environment.dumpPath, header, m_state, m_host, m_environment);
    if (m_environment.snapshotDir && m_host) {
        QDir().mkpath(*m_environment.snapshotDir);
        m_host->capture(QDir(*m_environment.snapshotDir).filePath(QString::asprintf("%02d.png", int(index + 1))));
    }
    const std::size_t next = index + 1;
    if (next < m_commands.size()) {
        m_notes[next] = perform(m_commands[next]);
        scheduleStep(next);
    } else {
        finish();
    }
}

void UIDriver::finish()
{
    UIDump::append(*m_environment.dumpPath, "summary\n" + m_transcript.join(u'\n'), m_state, m_host, m_environment);
    emit finished();
    applyQuitRule();
}

void UIDriver::writeSingleDump()
{
    UIDump::append(*m_environment.dumpPath, QStringLiteral("dump"), m_state, m_host, m_environment);
    if (m_environment.snapshotPath && m_host)
        m_host->capture(*m_environment.snapshotPath);
    emit finished();
    applyQuitRule();
}

void UIDriver::applyQuitRule()
{
    if (m_environment.quitsAtEnd && m_terminate)
        m_terminate();
}

}
