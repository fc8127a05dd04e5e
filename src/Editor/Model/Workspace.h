#pragma once

#include "Editor/Model/DirectoryWatcher.h"
#include "Editor/Model/MarkdownFile.h"
#include "Editor/Model/OwnWrites.h"
#include "Editor/Model/WorkspaceFolder.h"
#include "Editor/Model/WorkspaceNode.h"
#include "Editor/Model/WorkspaceOrder.h"

#include <QList>
#include <QObject>
#include <QSet>
#include <QString>
#include <QTimer>
#include <QUrl>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace velmo::editor {

// The open folder of notes: its tree, the flat list of its notes, the sidebar's expansion,
// selection, filter and manual order, and every change the user makes to the folder itself.
// Main thread only. Paths in `expanded` and `selection` are standardized, symlinks kept.
// The file operations throw MarkdownFileError or WorkspaceFileOperationError; a refused or
// failed operation leaves files, tree, order and selection as they were.
class Workspace : public QObject {
    Q_OBJECT

public:
    Workspace();
    ~Workspace() override;
    Workspace(const Workspace&) = delete;
    Workspace& operator=(const Workspace&) = delete;

    const std::optional<QUrl>& root() const { return m_root; }
    const WorkspaceNode& tree() const { return m_tree; }
    // Every file of the tree, in tree order.
    const std::vector<MarkdownFile>& notes() const { return m_notes; }
    // Bumped on each rescan and each reload of a note: a cheap sign that something changed.
    quint64 contentGeneration() const { return m_contentGeneration; }
    void bumpContentGeneration();
    const QSet<QString>& expanded() const { return m_expanded; }
    const std::optional<QUrl>& selection() const { return m_selection; }
    bool isLoading() const { return m_isLoading; }
    const std::optional<QString>& lastError() const { return m_lastError; }
    const QString& filter() const { return m_filter; }
    void setFilter(const QString& filter);
    const WorkspaceOrder& order() const { return m_order; }

    // An unreadable folder sets `lastError` and changes nothing else.
    void open(const QUrl& url);
    // Asks the shell's folder picker, titled "Choose a folder of notes for Velmo.", and opens
    // the choice. Without a picker installed (no window system) nothing happens.
    void openWithPanel();
    using FolderPanel = std::function<std::optional<QUrl>(const QString& title)>;
    void setFolderPanel(FolderPanel panel) { m_folderPanel = std::move(panel); }
    static QString folderPanelTitle();
    void close();
    // Synchronous; nothing without a root.
    void rescan();
    // The folder's name, or "Velmo" without a root.
    QString displayName() const;
    // Nothing on Linux: there is no cloud drive whose states could be read.
    void refreshCloudStates() {}

    // The tree with the sidebar filter applied; absent when nothing matches.
    [[nodiscard]] std::optional<WorkspaceNode> filteredTree() const;
    bool isExpanded(const QUrl& url) const;
    void setExpanded(const QUrl& url, bool expanded);
    // Every folder from the root down to the item's parent.
    void expandAncestors(const QUrl& url);
    void collapseAll();
    // A URL inside the tree also has its ancestors expanded.
    void select(const std::optional<QUrl>& url);
    [[nodiscard]] QList<WorkspaceFolder> folders() const;

    // Symlinks resolved on both sides: the root itself, or a path under it.
    [[nodiscard]] bool contains(const QUrl& url) const;
    // The entry's parent folder lies inside the root: unlike `contains`, a symlink stored in
    // the workspace counts even when it points elsewhere.
    [[nodiscard]] bool containsEntry(const QUrl& url) const;
    // Path components from the root: 0 for the root, 1 for its children; -1 outside.
    [[nodiscard]] int depth(const QUrl& url) const;
    [[nodiscard]] QString relativePath(const QUrl& url) const;
    // Where a new note goes: the selected folder, or the selected file's folder, else the root.
    [[nodiscard]] std::optional<QUrl> creationDirectory() const;
    // "name.ext", else "name 2.ext", "name 3.ext", … : the first free in `folder` (else the
    // root, else home). A blank name is "Untitled".
    [[nodiscard]] QString uniqueName(const QString& name, const QString& extension,
                                     const std::optional<QUrl>& folder = {}) const;

    // File operations. Each rescans and keeps expansion, selection and order in step.
    // `in` absent: the root, else the user's home.
    MarkdownFile createNote(const QString& name, const std::optional<QUrl>& in = {});
    QUrl createFolder(const QString& name, const std::optional<QUrl>& in = {});
    [[nodiscard]] QUrl renameDestination(const QUrl& url, const QString& name) const;
    QUrl rename(const QUrl& url, const QString& name);
    QUrl rename(const QUrl& url, const QUrl& to);
    QUrl duplicate(const QUrl& url);
    // To the Trash; fails when there is none. Nothing is ever destroyed.
    void deleteItem(const QUrl& url);
    // The URL itself when the item already lies in that folder: the move is then a no-op.
    [[nodiscard]] QUrl moveDestination(const QUrl& url, const QUrl& folder) const;
    QUrl move(const QUrl& url, const QUrl& folder);
    // Within one folder: `url` goes just before `sibling`, or to the end.
    void place(const QUrl& url, const std::optional<QUrl>& sibling);
    // Markdown files and folders from anywhere, copied in under unique names.
    QList<QUrl> importFiles(const QList<QUrl>& urls, const QUrl& folder);
    // The folder's place relative to the root, symlinks resolved, laid onto the root as the
    // workspace sees it; absent outside.
    [[nodiscard]] std::optional<QUrl> directoryDestination(const QUrl& url) const;
    void revealInFinder(const QUrl& url) const;
    void restoreOperationState(const WorkspaceOrder& order, const QSet<QString>& expanded,
                               const std::optional<QUrl>& selection);

    // Throws MarkdownFileError::invalidName; a blank name gives the fallback when there is one.
    [[nodiscard]] static QString validName(const QString& name, const std::optional<QString>& fallback = {});
    static void validateRenameDestination(const QUrl& from, const QUrl& to);

    // ---- Change detection: the watcher lives in its own files; these three are its hooks. ----
    // Stops any watcher, forgets recorded own writes, and watches `url`; an empty URL (from
    // `close`) only stops.
    void startWatching(const QUrl& url);
    // A rescan 0.35 s from now; a call within that time pushes it back.
    void scheduleRescan();
    // Announces a write of our own, so change detection does not take it for an outside edit.
    void noteWrittenHere(const QUrl& url);
    OwnWrites& ownWrites() { return m_ownWrites; }
    const DirectoryWatcher* watcher() const { return m_watcher.get(); }
    // ---- end of change detection ----

signals:
    // Any change of an observable field.
    void changed();
    // The tree or the filter changed: the sidebar rebuilds its rows.
    void treeChanged();
    // A rescan asked for by the watcher ran: files changed outside the program.
    void changedOnDisk();
    // The watcher could not watch everything; the workspace still works.
    void watchProblem(const QString& message);

private:
    void retargetState(const QString& from, const QString& to);
    void retargetOrder(const QString& from, const QString& to, bool isDirectory);
    void dropState(const QString& path, bool isDirectory);
    void saveOrder();
    [[nodiscard]] QString folderOrFallback(const std::optional<QUrl>& in) const;

    std::optional<QUrl> m_root;
    WorkspaceNode m_tree;
    std::vector<MarkdownFile> m_notes;
    quint64 m_contentGeneration = 0;
    QSet<QString> m_expanded;
    std::optional<QUrl> m_selection;
    bool m_isLoading = false;
    std::optional<QString> m_lastError;
    QString m_filter;
    WorkspaceOrder m_order;
    QTimer m_rescanWork;
    FolderPanel m_folderPanel;
    OwnWrites m_ownWrites{5.0};
    // Last, so it stops (synchronously) before what its handlers use goes away.
    std::unique_ptr<DirectoryWatcher> m_watcher;
};

// The standardized path with symbolic links resolved; for a path that does not exist, its
// folder resolved and its name kept.
QString canonicalPath(const QUrl& url);
// "." and ".." removed, no trailing "/"; symbolic links kept.
QString standardizedPath(const QUrl& url);

}
