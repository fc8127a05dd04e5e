#pragma once

#include <QDateTime>
#include <QHash>
#include <QString>
#include <QUrl>
#include <functional>
#include <mutex>
#include <optional>

namespace velmo::editor {

// What the program itself just wrote, remembered for `window` seconds so the watcher does not
// take it for an outside change. Shared by the main thread and the watcher's thread.
class OwnWrites {
public:
    using Clock = std::function<QDateTime()>;

    explicit OwnWrites(double windowSeconds = 5.0, Clock clock = {});
    OwnWrites(const OwnWrites&) = delete;
    OwnWrites& operator=(const OwnWrites&) = delete;

    // Stamps the file (symlinks resolved) and its folder; called before the bytes go out.
    void record(const QUrl& url);
    // True for a path stamped within the window, as written or with symlinks resolved.
    // Stamps are not consumed: every event of one write is recognised.
    [[nodiscard]] bool isOwn(const QString& path) const;
    void removeAll();

private:
    std::optional<QDateTime> stampOf(const QString& path) const;

    const qint64 m_windowMs;
    Clock m_clock;
    mutable std::mutex m_lock; // held for map operations only, never during file access
    QHash<QString, QDateTime> m_written;
};

// The standardized path with symbolic links resolved; for a path that does not exist, its
// folder resolved and its name kept.
QString resolvedPath(const QString& path);

}
