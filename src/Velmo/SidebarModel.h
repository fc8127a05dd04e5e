#pragma once

#include "Editor/Model/WorkspaceNode.h"

#include <QAbstractItemModel>
#include <QHash>
#include <QUrl>
#include <optional>

namespace velmo::app {

class AppState;

// The rows of the sidebar: the workspace's filtered tree, the root itself not shown. Rebuilt
// whenever the tree or the filter changes; rows hold pointers into the model's own copy of
// the tree, which lives until the next rebuild. Dropping rows or files on it goes through
// AppState::receiveSidebarDrop on the next turn of the event loop, since the drop rebuilds
// the rows the view is still handling.
class SidebarModel : public QAbstractItemModel {
    Q_OBJECT

public:
    enum Role { UrlRole = Qt::UserRole + 1, IsDirectoryRole, RelativePathRole };

    explicit SidebarModel(AppState& state, QObject* parent = nullptr);

    QModelIndex index(int row, int column, const QModelIndex& parent = {}) const override;
    QModelIndex parent(const QModelIndex& child) const override;
    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    // Editing a row's name renames it.
    bool setData(const QModelIndex& index, const QVariant& value, int role = Qt::EditRole) override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;

    QStringList mimeTypes() const override;
    QMimeData* mimeData(const QModelIndexList& indexes) const override;
    Qt::DropActions supportedDropActions() const override;
    Qt::DropActions supportedDragActions() const override;
    bool canDropMimeData(const QMimeData* data, Qt::DropAction action, int row, int column,
                         const QModelIndex& parent) const override;
    bool dropMimeData(const QMimeData* data, Qt::DropAction action, int row, int column,
                      const QModelIndex& parent) override;

    // The row of a URL, by standardized path; invalid when it is not shown.
    [[nodiscard]] QModelIndex indexFor(const QUrl& url) const;
    [[nodiscard]] QUrl url(const QModelIndex& index) const;
    [[nodiscard]] bool isDirectory(const QModelIndex& index) const;
    // Rows shown, at any depth.
    [[nodiscard]] int nodeCount() const { return int(m_parents.size()); }

    // Where a drop at (row, parent) lands: the folder, the row it goes before, and whether it
    // was dropped between rows (a position) rather than onto a folder.
    struct DropTarget {
        QUrl folder;
        std::optional<QUrl> before;
        bool positioned = false;
    };
    [[nodiscard]] DropTarget dropTarget(int row, const QModelIndex& parent) const;

    void rebuild();

private:
    const editor::WorkspaceNode* node(const QModelIndex& index) const;
    const editor::WorkspaceNode& nodeOrRoot(const QModelIndex& index) const;

    AppState& m_state;
    std::optional<editor::WorkspaceNode> m_tree;
    // Child to parent (the root's children map to the root), and path to node, for the whole tree.
    QHash<const editor::WorkspaceNode*, const editor::WorkspaceNode*> m_parents;
    QHash<QString, const editor::WorkspaceNode*> m_byPath;
    QHash<const editor::WorkspaceNode*, int> m_rows;
};

}
