#pragma once

#include "Editor/Model/MarkdownFileError.h"

#include <QByteArray>
#include <QDateTime>
#include <QString>
#include <QStringList>
#include <QUrl>
#include <optional>

namespace velmo::editor {

// The only way a note's bytes are read or written. A plain value: usable from any thread.
class MarkdownFile {
public:
    static const QStringList markdownExtensions;

    explicit MarkdownFile(const QUrl& url);
    static MarkdownFile atPath(const QString& path) { return MarkdownFile(QUrl::fromLocalFile(path)); }
    // A path already standardized, as the workspace scanner makes them: skips the clean-up,
    // which costs more than the scan itself over a large folder.
    static MarkdownFile atStandardizedPath(const QString& path) { return MarkdownFile(QUrl::fromLocalFile(path), Standardized{}); }

    const QUrl& url() const { return m_url; }
    QString path() const { return m_url.toLocalFile(); }
    // The last path component without its extension.
    QString name() const;
    bool isMarkdown() const;
    // Read fresh from the file system each time; absent on any error.
    std::optional<QDateTime> modificationDate() const;
    std::optional<qint64> byteCount() const;

    // Throws MarkdownFileError. `downloadIfNeeded` matters only for cloud drives, which Linux
    // does not have; it is kept so callers read the same everywhere.
    QString read(bool downloadIfNeeded = true) const;
    QByteArray readData(bool downloadIfNeeded = true) const;
    static QString decode(const QByteArray& data);

    // Replaces the file atomically with the text as UTF-8, keeping a byte-order mark the file
    // had and its permissions. Throws MarkdownFileError; a failure leaves the file as it was.
    void write(const QString& text) const;

    // The display title: the first heading or plain line of the text, else `name`.
    QString title(const QString& text) const;

    friend bool operator==(const MarkdownFile&, const MarkdownFile&) = default;

private:
    struct Standardized {};
    MarkdownFile(QUrl url, Standardized) : m_url(std::move(url)) {}

    QUrl m_url;
};

size_t qHash(const MarkdownFile& file, size_t seed = 0);

}
