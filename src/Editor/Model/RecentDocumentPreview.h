#pragma once

#include <QString>
#include <QUrl>

namespace velmo::editor {

// The few plain lines a card of a recent note shows.
namespace RecentDocumentPreview {

// A preview costs the same for a large note as for a small one.
inline constexpr qint64 byteLimit = 4096;
inline constexpr int lineLimit = 4;
inline constexpr int characterLimit = 320;

// Reads the head of the file (off the main thread); an unreadable file gives an empty preview.
[[nodiscard]] QString load(const QUrl& url);
// Front matter, fenced code and a leading title heading skipped; each line made plain text.
[[nodiscard]] QString text(const QString& head);
// One Markdown line as reading text.
[[nodiscard]] QString plain(const QString& line);

}

}
