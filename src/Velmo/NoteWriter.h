#pragma once

#include <QDateTime>
#include <QObject>
#include <QSet>
#include <QString>
#include <QUrl>
#include <condition_variable>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <variant>

class QThread;

namespace velmo::app {

// Writes notes one at a time on its own serial thread ("com.velmo.note-write"), so typing never
// waits for the disk and two writes can never interleave. Outcomes come back on the thread
// that owns the writer (the main thread). `writing` is touched only there.
class NoteWriter : public QObject {
    Q_OBJECT

public:
    // One prepared write. The texts are implicitly shared: preparing it copies no characters.
    struct Write {
        QString id; // the document's id
        QUrl url;
        QString text;
        qsizetype caret = 0;
        std::optional<QDateTime> diskDate; // the document's disk date when prepared
        QString lastSavedText;             // what the document believed was on disk then
        quint64 sequence = 0;
    };
    struct Written {
        std::optional<QDateTime> date;
    };
    struct Conflicted {
        QString textOnDisk;
    };
    struct Failed {
        QString message;
    };
    using Outcome = std::variant<Written, Conflicted, Failed>;
    using Perform = std::function<Outcome(const Write&)>;
    using Completion = std::function<void(const Write&, const Outcome&)>;

    NoteWriter();
    // Lets every queued write finish: nothing handed to the writer is dropped.
    ~NoteWriter() override;
    NoteWriter(const NoteWriter&) = delete;
    NoteWriter& operator=(const NoteWriter&) = delete;

    // Compares the disk with what the document last saw, then writes atomically. Runs on the
    // writer's thread; replaceable, and taken when a write starts.
    static Outcome defaultPerform(const Write& write);
    Perform perform = defaultPerform;
    quint64 sequence = 0;

    // Hands the write to the writer's thread; `completion` runs later on the owner's thread.
    Write start(const Write& write, Completion completion);
    void discard(const QString& id) { m_writing.remove(id); }
    [[nodiscard]] bool isWriting(const QString& id) const { return m_writing.contains(id); }
    // Blocks until every write handed over so far has run. The writer's thread never waits
    // for the caller, so this cannot deadlock.
    void waitForDisk();

private:
    void enqueue(std::function<void()> job);
    void run();

    QSet<QString> m_writing;
    std::unique_ptr<QThread> m_thread;
    std::mutex m_lock;
    std::condition_variable m_wake;
    std::deque<std::function<void()>> m_jobs;
    bool m_stopping = false;
};

}
