#pragma once

#include "Editor/Model/DirectoryWatcher.h"
#include "Editor/Model/MarkdownFile.h"
#include "Editor/Model/OwnWrites.h"

#include <QObject>
#include <QSet>
#include <QString>
#include <QTimer>
#include <QUrl>
#include <memory>
#include <optional>
#include <vector>

namespace velmo::editor {

// The open folder of notes. This first form scans the notes as a flat list; the tree, the
// watcher and the manual order build on it.
class Workspace : public QObject {
    Q_OBJECT

public:
    Workspace() = default;
    Workspace(const Workspace&) = delete;
    Workspace& operator=(const Workspace&) = delete;

    const std::optional<QUrl>& root() const { return m_root; }
    const std::vector<MarkdownFile>& notes() const { return m_notes; }
    const std::optional<QUrl>& selection() const { return m_selection; }
    const QSet<QString>& expanded() const { return m_expanded; }
    const std::optional<QString>& lastError() const { return m_lastError; }
    quint64 contentGeneration() const { return m_contentGeneration; }

    void open(const QUrl& url);
    void close();
    void rescan();
    // The folder's name, or "Velmo" without a root.
    QString displayName() const;
    void select(const std::optional<QUrl>& url);
    // Announces a write of our own, so change detection does not take it for an outside edit.
    void noteWrittenHere(const QUrl& url);
    // A note was reloaded from disk: a sign for the models that something changed.
    void markContentChanged();

    // Watches the folder; its events (other than our own writes) schedule a rescan.
    void startWatching(const QUrl& url);
    // Coalesces a burst of changes into one rescan, 0.35 s after the last.
    void scheduleRescan();
    OwnWrites& ownWrites() { return m_ownWrites; }
    const DirectoryWatcher* watcher() const { return m_watcher.get(); }

    // Symlinks resolved on both sides: the root itself, or a path under it.
    bool contains(const QUrl& url) const;
    QString relativePath(const QUrl& url) const;
    // "name.ext", else "name 2.ext", "name 3.ext", … : the first free in `folder` (else the
    // root, else home).
    QString uniqueName(const QString& name, const QString& extension, const std::optional<QUrl>& folder = {}) const;

signals:
    void changed();
    // A rescan asked for by the watcher ran: files changed outside the program.
    void changedOnDisk();
    // The watcher could not watch everything; the workspace still works.
    void watchProblem(const QString& message);

private:
    std::optional<QUrl> m_root;
    std::vector<MarkdownFile> m_notes;
    std::optional<QUrl> m_selection;
    QSet<QString> m_expanded;
    std::optional<QString> m_lastError;
    quint64 m_contentGeneration = 0;
    OwnWrites m_ownWrites{5.0};
    QTimer* m_rescanWork = nullptr;
    // Last, so it stops (synchronously) before what its handlers use goes away.
    std::unique_ptr<DirectoryWatcher> m_watcher;
};

// The standardized path with symbolic links resolved; the file's own path when it does not exist.
QString canonicalPath(const QUrl& url);

}
