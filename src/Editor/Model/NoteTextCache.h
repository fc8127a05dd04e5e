#pragma once

#include <QHash>
#include <QString>
#include <QUrl>
#include <mutex>
#include <optional>

namespace velmo::editor {

// Decoded texts of notes, keyed by standardized path, so features that read the whole folder
// again and again pay only for files that changed. A version of a file is its modification
// time and size, nothing more: an outside change that keeps both is not seen.
class NoteTextCache {
public:
    struct Stamp {
        qint64 modifiedNs = 0; // modification time, nanoseconds since the epoch
        qint64 size = 0;       // bytes
        friend bool operator==(const Stamp&, const Stamp&) = default;
    };

    NoteTextCache() = default;
    NoteTextCache(const NoteTextCache&) = delete;
    NoteTextCache& operator=(const NoteTextCache&) = delete;

    // The one cache of the process; MarkdownFile::write feeds it.
    static NoteTextCache& shared();

    // The file's text, read only when its stamp changed; absent when it cannot be read.
    [[nodiscard]] std::optional<QString> text(const QUrl& url);
    // Remembers what was just written, under the file's current stamp.
    void store(const QString& text, const QUrl& url);
    void forget(const QUrl& url);
    void removeAll();
    [[nodiscard]] qsizetype count() const;

    [[nodiscard]] static std::optional<Stamp> stamp(const QString& path);

private:
    struct Entry {
        Stamp stamp;
        QString text;
    };
    mutable std::mutex m_lock; // held for map operations only; files are read outside it
    QHash<QString, Entry> m_entries;
};

}
