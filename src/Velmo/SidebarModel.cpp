#include "Velmo/SidebarModel.h"

#include "Editor/Model/MarkdownFile.h"
#include "Velmo/AppState.h"

#include <QIcon>
#include <QMimeData>
#include <QTimer>
#include <vector>

namespace velmo::app {

using editor::WorkspaceNode;

SidebarModel::SidebarModel(AppState& state, QObject* parent)
    : QAbstractItemModel(parent)
    , m_state(state)
{
    connect(&state.workspace(), &editor::Workspace::treeChanged, this, &SidebarModel::rebuild);
    rebuild();
}

void SidebarModel::rebuild()
{
    beginResetModel();
    m_tree = m_state.workspace().filteredTree();
    m_parents.clear();
    m_byPath.clear();
    m_rows.clear();
    if (m_tree) {
        std::vector<const WorkspaceNode*> stack{&*m_tree};
        while (!stack.empty()) {
            const WorkspaceNode* node = stack.back();
            stack.pop_back();
            m_byPath.insert(node->path(), node);
            for (size_t i = 0; i < node->children().size(); ++i) {
                const WorkspaceNode* child = &node->children()[i];
                m_parents.insert(child, node);
                m_rows.insert(child, int(i));
                stack.push_back(child);
            }
        }
    }
    endResetModel();
}

const WorkspaceNode* SidebarModel::node(const QModelIndex& index) const
{
    return index.isValid() ? static_cast<const WorkspaceNode*>(index.internalPointer()) : nullptr;
}

const WorkspaceNode& SidebarModel::nodeOrRoot(const QModelIndex& index) const
{
    static const WorkspaceNode empty;
    if (const WorkspaceNode* n = node(index))
        return *n;
    return m_tree ? *m_tree : empty;
}

QModelIndex SidebarModel::index(int row, int column, const QModelIndex& parent) const
{
    const WorkspaceNode& folder = nodeOrRoot(parent);
    if (column != 0 || row < 0 || size_t(row) >= folder.children().size())
        return {};
    return createIndex(row, 0, const_cast<WorkspaceNode*>(&folder.children()[size_t(row)]));
}

QModelIndex SidebarModel::parent(const QModelIndex& child) const
{
    const WorkspaceNode* n = node(child);
    if (!n)
        return {};
    const WorkspaceNode* up = m_parents.value(n);
    if (!up || !m_parents.contains(up))
        return {}; // a top-level row: its parent is the hidden root
    return createIndex(m_rows.value(up), 0, const_cast<WorkspaceNode*>(up));
}

int SidebarModel::rowCount(const QModelIndex& parent) const
{
    if (parent.column() > 0)
        return 0;
    return int(nodeOrRoot(parent).children().size());
}

int SidebarModel::columnCount(const QModelIndex&) const
{
    return 1;
}

// Notes show without their Markdown extension; other names as they are.
static QString displayName(const WorkspaceNode& node)
{
    const QString name = node.name();
    if (node.isDirectory())
        return name;
    const qsizetype dot = name.lastIndexOf(u'.');
    return dot > 0 && node.file().isMarkdown() ? name.left(dot) : name;
}

QVariant SidebarModel::data(const QModelIndex& index, int role) const
{
    const WorkspaceNode* n = node(index);
    if (!n)
        return {};
    switch (role) {
    case Qt::DisplayRole:
    case Qt::EditRole:
        return displayName(*n);
    case Qt::ToolTipRole:
    case RelativePathRole:
        return m_state.workspace().relativePath(n->url());
    case Qt::DecorationRole:
        if (n->isDirectory())
            return QIcon::fromTheme(n->isSymbolicLink() ? "folder-remote" : "folder");
        return QIcon::fromTheme("text-x-generic");
    case UrlRole:
        return n->url();
    case IsDirectoryRole:
        return n->isDirectory();
    default:
        return {};
    }
}

bool SidebarModel::setData(const QModelIndex& index, const QVariant& value, int role)
{
    const WorkspaceNode* n = node(index);
    if (!n || role != Qt::EditRole)
        return false;
    const QString name = value.toString();
    if (name == displayName(*n))
        return false;
    // The rename rebuilds the rows; the editor that asked is closed first.
    QTimer::singleShot(0, this, [this, url = n->url(), name] { m_state.rename(url, name); });
    return true;
}

Qt::ItemFlags SidebarModel::flags(const QModelIndex& index) const
{
    const WorkspaceNode* n = node(index);
    if (!n)
        return Qt::ItemIsDropEnabled; // the blank area below the rows is the root
    Qt::ItemFlags flags = Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsEditable | Qt::ItemIsDragEnabled;
    // Files accept drops too: a drop onto a note lands beside it.
    flags |= Qt::ItemIsDropEnabled;
    if (!n->isDirectory())
        flags |= Qt::ItemNeverHasChildren;
    return flags;
}

QStringList SidebarModel::mimeTypes() const
{
    return {QStringLiteral("text/uri-list")};
}

QMimeData* SidebarModel::mimeData(const QModelIndexList& indexes) const
{
    QList<QUrl> urls;
    for (const QModelIndex& index : indexes) {
        if (const WorkspaceNode* n = node(index))
            urls << n->url();
    }
    auto* data = new QMimeData;
    data->setUrls(urls);
    return data;
}

Qt::DropActions SidebarModel::supportedDropActions() const
{
    return Qt::MoveAction | Qt::CopyAction;
}

Qt::DropActions SidebarModel::supportedDragActions() const
{
    return Qt::MoveAction;
}

SidebarModel::DropTarget SidebarModel::dropTarget(int row, const QModelIndex& parent) const
{
    DropTarget target;
    const WorkspaceNode* onto = node(parent);
    if (onto && row < 0 && !onto->isDirectory()) {
        // Onto a note: into its folder, just before it.
        const WorkspaceNode* folder = m_parents.value(onto);
        target.folder = folder ? folder->url() : QUrl();
        target.before = onto->url();
        target.positioned = true;
        return target;
    }
    const WorkspaceNode& folder = nodeOrRoot(parent);
    target.folder = folder.url();
    if (row >= 0) {
        target.positioned = true;
        if (size_t(row) < folder.children().size())
            target.before = folder.children()[size_t(row)].url();
    }
    return target;
}

bool SidebarModel::canDropMimeData(const QMimeData* data, Qt::DropAction, int, int, const QModelIndex&) const
{
    return m_tree && data && data->hasUrls();
}

bool SidebarModel::dropMimeData(const QMimeData* data, Qt::DropAction action, int row, int,
                                const QModelIndex& parent)
{
    if (!canDropMimeData(data, action, row, 0, parent))
        return false;
    QList<QUrl> urls;
    for (const QUrl& url : data->urls()) {
        if (url.isLocalFile())
            urls << url;
    }
    const DropTarget target = dropTarget(row, parent);
    if (urls.isEmpty() || target.folder.isEmpty())
        return false;
    QTimer::singleShot(0, this, [this, urls, target] {
        m_state.receiveSidebarDrop(urls, target.folder, target.before, target.positioned);
    });
    // False: the view must not remove the dragged rows itself; the rescan does that.
    return false;
}

QModelIndex SidebarModel::indexFor(const QUrl& url) const
{
    const WorkspaceNode* n = m_byPath.value(editor::standardizedPath(url));
    if (!n || !m_parents.contains(n))
        return {};
    return createIndex(m_rows.value(n), 0, const_cast<WorkspaceNode*>(n));
}

QUrl SidebarModel::url(const QModelIndex& index) const
{
    const WorkspaceNode* n = node(index);
    return n ? n->url() : QUrl();
}

bool SidebarModel::isDirectory(const QModelIndex& index) const
{
    const WorkspaceNode* n = node(index);
    return n && n->isDirectory();
}

}
