#pragma once

#include <QWidget>

class QLineEdit;
class QTreeView;

namespace velmo::app {
class AppState;
class SidebarModel;
}

namespace velmo::ui {

// The workspace's tree with its filter field. It translates gestures into AppState calls and
// mirrors the workspace's expansion and selection; it decides nothing itself.
class Sidebar : public QWidget {
    Q_OBJECT

public:
    explicit Sidebar(app::AppState& state, QWidget* parent = nullptr);

    QTreeView* view() const { return m_view; }
    void focusFilter();
    // Starts editing the name of the row of `url`.
    void beginRename(const QUrl& url);

private:
    void restoreExpansionAndSelection();
    void syncSelection();
    void showContextMenu(const QPoint& position);
    void activate(const QModelIndex& index);
    void deleteSelected();
    QUrl folderFor(const QModelIndex& index) const;

    app::AppState& m_state;
    app::SidebarModel* m_model = nullptr;
    QLineEdit* m_filter = nullptr;
    QTreeView* m_view = nullptr;
    bool m_syncing = false; // expansion changes made here must not echo back into the workspace
};

}
