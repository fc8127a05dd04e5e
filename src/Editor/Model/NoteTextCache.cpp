#include "Editor/Model/NoteTextCache.h"

#include "Editor/Model/MarkdownFile.h"

#include <QDir>
#include <QFile>

#include <sys/stat.h>

namespace velmo::editor {

NoteTextCache& NoteTextCache::shared()
{
    static NoteTextCache cache;
    return cache;
}

static QString keyOf(const QUrl& url)
{
    return QDir::cleanPath(url.toLocalFile());
}

std::optional<NoteTextCache::Stamp> NoteTextCache::stamp(const QString& path)
{
    // stat directly: a fresh look at the disk each time, and much cheaper than QFileInfo.
    struct stat st {};
    if (::stat(QFile::encodeName(path).constData(), &st) != 0 || !S_ISREG(st.st_mode))
        return std::nullopt;
    return Stamp{qint64(st.st_mtim.tv_sec) * 1'000'000'000 + st.st_mtim.tv_nsec, qint64(st.st_size)};
}

std::optional<QString> NoteTextCache::text(const QUrl& url)
{
    const QString key = keyOf(url);
    const auto current = stamp(key);
    if (!current)
        return std::nullopt;
    {
        const std::lock_guard lock(m_lock);
        const auto it = m_entries.constFind(key);
        if (it != m_entries.constEnd() && it->stamp == *current)
            return it->text;
    }
    QString text;
    try {
        text = MarkdownFile::atPath(key).read(false);
    } catch (const MarkdownFileError&) {
        return std::nullopt;
    }
    const std::lock_guard lock(m_lock);
    m_entries.insert(key, Entry{*current, text});
    return text;
}

void NoteTextCache::store(const QString& text, const QUrl& url)
{
    const QString key = keyOf(url);
    const auto current = stamp(key);
    const std::lock_guard lock(m_lock);
    if (current)
        m_entries.insert(key, Entry{*current, text});
    else
        m_entries.remove(key);
}

void NoteTextCache::forget(const QUrl& url)
{
    const QString key = keyOf(url);
    const std::lock_guard lock(m_lock);
    m_entries.remove(key);
}

void NoteTextCache::removeAll()
{
    const std::lock_guard lock(m_lock);
    m_entries.clear();
}

qsizetype NoteTextCache::count() const
{
    const std::lock_guard lock(m_lock);
    return m_entries.size();
}

}
