#include "Editor/Model/OwnWrites.h"

#include <QDir>
#include <QFileInfo>

namespace velmo::editor {

QString resolvedPath(const QString& path)
{
    const QString clean = QDir::cleanPath(path);
    const QFileInfo info(clean);
    const QString canonical = info.canonicalFilePath();
    if (!canonical.isEmpty())
        return canonical;
    const QString folder = QFileInfo(info.absolutePath()).canonicalFilePath();
    return folder.isEmpty() ? clean : folder + u'/' + info.fileName();
}

OwnWrites::OwnWrites(double windowSeconds, Clock clock)
    : m_windowMs(qint64(windowSeconds * 1000))
    , m_clock(clock ? std::move(clock) : Clock([] { return QDateTime::currentDateTimeUtc(); }))
{
}

void OwnWrites::record(const QUrl& url)
{
    const QDateTime now = m_clock();
    const QString path = resolvedPath(url.toLocalFile());
    const QString parent = QFileInfo(path).path();
    const std::lock_guard lock(m_lock);
    for (auto it = m_written.begin(); it != m_written.end();) {
        if (it.value().msecsTo(now) > m_windowMs)
            it = m_written.erase(it);
        else
            ++it;
    }
    m_written.insert(path, now);
    m_written.insert(parent, now);
}

std::optional<QDateTime> OwnWrites::stampOf(const QString& path) const
{
    const std::lock_guard lock(m_lock);
    const auto it = m_written.constFind(path);
    if (it == m_written.constEnd())
        return std::nullopt;
    return it.value();
}

bool OwnWrites::isOwn(const QString& path) const
{
    const QDateTime now = m_clock();
    auto stamp = stampOf(QDir::cleanPath(path));
    if (!stamp)
        stamp = stampOf(resolvedPath(path)); // resolved outside the lock: it touches the disk
    return stamp && stamp->msecsTo(now) <= m_windowMs;
}

void OwnWrites::removeAll()
{
    const std::lock_guard lock(m_lock);
    m_written.clear();
}

}
