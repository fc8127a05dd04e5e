#include "Sidebar.h"

#include "Velmo/AppState.h"
#include "Velmo/SidebarModel.h"

#include <QAction>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMenu>
#include <QTreeView>
#include <QVBoxLayout>

namespace velmo::ui {

using app::SidebarModel;

Sidebar::Sidebar(app::AppState& state, QWidget* parent)
    : QWidget(parent)
    , m_state(state)
{
    m_filter = new QLineEdit(this);
    m_filter->setPlaceholderText(tr("Filter"));
    m_filter->setClearButtonEnabled(true);
    m_filter->setText(state.workspace().filter());

    m_model = new SidebarModel(state, this);
    m_view = new QTreeView(this);
    m_view->setModel(m_model);
    m_view->setHeaderHidden(true);
    m_view->setUniformRowHeights(true); // keeps a tree of thousands of rows quick to lay out
    m_view->setSelectionMode(QAbstractItemView::ExtendedSelection);
    m_view->setDragDropMode(QAbstractItemView::DragDrop);
    m_view->setDefaultDropAction(Qt::MoveAction);
    m_view->setDropIndicatorShown(true);
    m_view->setEditTriggers(QAbstractItemView::EditKeyPressed);
    m_view->setContextMenuPolicy(Qt::CustomContextMenu);

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(4);
    layout->addWidget(m_filter);
    layout->addWidget(m_view);

    connect(m_filter, &QLineEdit::textChanged, this, [this](const QString& text) { m_state.workspace().setFilter(text); });
    connect(m_model, &QAbstractItemModel::modelReset, this, &Sidebar::restoreExpansionAndSelection);
    connect(&state.workspace(), &editor::Workspace::changed, this, [this] {
        if (m_filter->text() != m_state.workspace().filter())
            m_filter->setText(m_state.workspace().filter());
        restoreExpansionAndSelection();
    });
    connect(m_view, &QTreeView::expanded, this, [this](const QModelIndex& index) {
        if (!m_syncing && m_state.workspace().filter().isEmpty())
            m_state.workspace().setExpanded(m_model->url(index), true);
    });
    connect(m_view, &QTreeView::collapsed, this, [this](const QModelIndex& index) {
        if (!m_syncing && m_state.workspace().filter().isEmpty())
            m_state.workspace().setExpanded(m_model->url(index), false);
    });
    connect(m_view, &QTreeView::clicked, this, &Sidebar::activate);
    connect(m_view, &QTreeView::activated, this, &Sidebar::activate);
    connect(m_view, &QWidget::customContextMenuRequested, this, &Sidebar::showContextMenu);

    auto* remove = new QAction(tr("Move to Trash"), m_view);
    remove->setShortcuts({QKeySequence::Delete, QKeySequence(Qt::CTRL | Qt::Key_Backspace)});
    remove->setShortcutContext(Qt::WidgetShortcut);
    connect(remove, &QAction::triggered, this, &Sidebar::deleteSelected);
    m_view->addAction(remove);

    restoreExpansionAndSelection();
}

void Sidebar::focusFilter()
{
    m_filter->setFocus();
    m_filter->selectAll();
}

void Sidebar::beginRename(const QUrl& url)
{
    const QModelIndex index = m_model->indexFor(url);
    if (!index.isValid())
        return;
    m_view->scrollTo(index);
    m_view->setCurrentIndex(index);
    m_view->edit(index);
}

void Sidebar::restoreExpansionAndSelection()
{
    m_syncing = true;
    const editor::Workspace& workspace = m_state.workspace();
    if (!workspace.filter().isEmpty()) {
        m_view->expandAll(); // every match in sight while filtering
    } else {
        for (const QString& path : workspace.expanded()) {
            const QModelIndex index = m_model->indexFor(QUrl::fromLocalFile(path));
            if (index.isValid() && !m_view->isExpanded(index))
                m_view->expand(index);
        }
    }
    m_syncing = false;
    syncSelection();
}

void Sidebar::syncSelection()
{
    const auto& selection = m_state.workspace().selection();
    const QModelIndex index = selection ? m_model->indexFor(*selection) : QModelIndex();
    if (index == m_view->currentIndex())
        return;
    const QSignalBlocker quiet(m_view->selectionModel());
    if (index.isValid()) {
        m_view->selectionModel()->setCurrentIndex(index, QItemSelectionModel::ClearAndSelect);
        m_view->scrollTo(index);
    } else {
        m_view->selectionModel()->clearSelection();
    }
    m_view->viewport()->update();
}

void Sidebar::activate(const QModelIndex& index)
{
    if (!index.isValid())
        return;
    const QUrl url = m_model->url(index);
    if (m_model->isDirectory(index))
        m_state.workspace().select(url);
    else
        m_state.open(url, true);
}

QUrl Sidebar::folderFor(const QModelIndex& index) const
{
    if (!index.isValid())
        return m_state.workspace().root().value_or(QUrl());
    if (m_model->isDirectory(index))
        return m_model->url(index);
    const QModelIndex parent = index.parent();
    return parent.isValid() ? m_model->url(parent) : m_state.workspace().root().value_or(QUrl());
}

void Sidebar::deleteSelected()
{
    QList<QUrl> urls;
    for (const QModelIndex& index : m_view->selectionModel()->selectedRows())
        urls << m_model->url(index);
    for (const QUrl& url : urls) {
        if (!m_state.deleteItem(url))
            break;
    }
}

void Sidebar::showContextMenu(const QPoint& position)
{
    if (!m_state.workspace().root())
        return;
    const QModelIndex index = m_view->indexAt(position);
    const QUrl url = m_model->url(index);
    const QUrl folder = folderFor(index);
    QMenu menu(this);
    menu.addAction(tr("New Note"), this, [this, folder] { m_state.newNote(QString(), folder); });
    menu.addAction(tr("New Folder"), this, [this, folder] {
        if (const auto created = m_state.newFolder(QString(), folder))
            beginRename(*created);
    });
    if (index.isValid()) {
        menu.addSeparator();
        menu.addAction(tr("Rename…"), this, [this, url] { beginRename(url); });
        if (!m_model->isDirectory(index))
            menu.addAction(tr("Duplicate"), this, [this, url] { m_state.duplicate(url); });
        menu.addAction(tr("Move to Trash"), this, [this, url] { m_state.deleteItem(url); });
        menu.addSeparator();
        menu.addAction(tr("Show in File Manager"), this, [this, url] { m_state.workspace().revealInFinder(url); });
    }
    menu.exec(m_view->viewport()->mapToGlobal(position));
}

}
