#pragma once

#include <QMainWindow>
#include <QPointer>

class QLabel;

namespace velmo::app {
class AppState;
}

namespace velmo::ui {

class ConflictDialog;
class PlainNoteEditor;
class Sidebar;

// The window around the application state: the notes of the folder, the open note, a status bar.
class MainWindow : public QMainWindow {
    Q_OBJECT

public:
    explicit MainWindow(app::AppState& state, QWidget* parent = nullptr);

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    void buildMenus();
    void showActiveDocument();
    void refreshStatus();
    void showAlert();
    void chooseFolder();
    void showConflict();
    // Text changed by the logic (a reload from disk, a resolved conflict) reaches the view.
    void synchronizeEditor();
    void saveActiveAs();

    app::AppState& m_state;
    Sidebar* m_sidebar = nullptr;
    PlainNoteEditor* m_editor = nullptr;
    QLabel* m_statistics = nullptr;
    bool m_loadingEditor = false;
    QPointer<ConflictDialog> m_conflictDialog;
};

}
