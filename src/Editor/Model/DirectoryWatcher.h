#pragma once

#include <QString>
#include <QStringList>
#include <QUrl>
#include <atomic>
#include <functional>
#include <memory>

class QThread;

namespace velmo::editor {

// Reports file-system activity under a folder, minus the program's own writes. One inotify
// watch per folder (hidden folders and symlinked ones are not entered), added as folders
// appear and dropped as they go. Events are read on the watcher's own thread
// ("com.velmo.watcher") and delivered in batches: the first event after a quiet spell at once,
// later ones at most every `latencyMs`. `handler` runs on that thread and must hop to its
// own thread itself.
class DirectoryWatcher {
public:
    using Handler = std::function<void()>;
    using OwnWriteTest = std::function<bool(const QString& path)>;

    DirectoryWatcher(const QUrl& url, Handler handler, OwnWriteTest isOwnWrite, int latencyMs = 200);
    ~DirectoryWatcher();
    DirectoryWatcher(const DirectoryWatcher&) = delete;
    DirectoryWatcher& operator=(const DirectoryWatcher&) = delete;

    // Called once, on the watcher's thread, when the system's limit of watches leaves some
    // folders unwatched. Set before `start`.
    void setLimitHandler(Handler handler) { m_limitHandler = std::move(handler); }
    // A lower limit of watches than the system's, so the limit can be met in a test.
    void setWatchLimit(int limit) { m_watchLimit = limit; }

    // Asynchronous: the watches are set up on the watcher's thread. A second start is a no-op.
    // When the watch cannot be set up, the thread ends and nothing is reported.
    void start();
    // Synchronous: no handler runs once it returns.
    void stop();

    // The decision for one batch of changed paths: a visible ".md" path that is not our own
    // write, or anything that vanished. New folders and other files alone do not count.
    [[nodiscard]] bool shouldNotify(const QStringList& paths) const;

    const QUrl& url() const { return m_url; }
    [[nodiscard]] bool isWatching() const { return m_watching; }
    [[nodiscard]] int watchCount() const { return m_watchCount; }

private:
    void run();

    QUrl m_url;
    Handler m_handler;
    OwnWriteTest m_isOwnWrite;
    Handler m_limitHandler;
    int m_latencyMs;
    int m_watchLimit = -1; // none but the system's
    std::unique_ptr<QThread> m_thread;
    int m_wakeFd = -1;
    std::atomic<bool> m_watching{false};
    std::atomic<int> m_watchCount{0};
};

}
