#pragma once

#include <QHash>
#include <QList>
#include <QString>
#include <QStringList>
#include <QUrl>
#include <optional>

namespace velmo::editor {

// The per-user memory of how things were left, kept in "session.json" in the support folder.
struct WorkspaceSession {
    std::optional<QString> rootPath;
    QStringList openPaths;
    std::optional<QString> selectedPath;
    QStringList expandedPaths;
    QHash<QString, qint64> carets; // standardized path to a UTF-16 offset
    bool sidebarVisible = true;
    bool outlineVisible = true;
    QStringList quickOpenRecents; // newest first
    std::optional<QString> lastOpenedPath;

    static constexpr int caretLimit = 400;
    static constexpr int recentLimit = 30;

    static WorkspaceSession empty() { return {}; }
    // A missing or undecodable file gives the empty session; missing keys take empty values.
    static WorkspaceSession load();
    static WorkspaceSession decode(const QByteArray& json);
    QByteArray encode() const;
    // Every failure is ignored: the next save tries again.
    void save() const;

    void rememberCaret(qint64 caret, const QUrl& url);
    std::optional<qint64> caret(const QUrl& url) const;
    void addRecent(const QUrl& url);
    // Saves at once, unlike every other change.
    void removeRecent(const QUrl& url);
    void clearRecents();
    QList<QUrl> recentURLs() const;

    bool operator==(const WorkspaceSession&) const = default;
};

}
