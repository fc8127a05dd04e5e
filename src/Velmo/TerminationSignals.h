#pragma once

#include <QObject>

class QSocketNotifier;

namespace velmo::app {

// SIGTERM and SIGINT (a session logout, `kill`, Ctrl+C) as a Qt signal on the main thread.
// The handler only writes a byte to a pipe; everything else happens in the event loop, so the
// ordinary quit path runs, saving dirty notes and the session.
class TerminationSignals : public QObject {
    Q_OBJECT

public:
    explicit TerminationSignals(QObject* parent = nullptr);
    ~TerminationSignals() override;
    TerminationSignals(const TerminationSignals&) = delete;
    TerminationSignals& operator=(const TerminationSignals&) = delete;

    bool isInstalled() const { return m_notifier != nullptr; }

signals:
    void received(int signal);

private:
    void drain();

    QSocketNotifier* m_notifier = nullptr;
};

}
