#pragma once

#include <QMainWindow>

class QLabel;

namespace velmo::app {
class AppState;
}

namespace velmo::ui {

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
    void saveActiveAs();

    app::AppState& m_state;
    Sidebar* m_sidebar = nullptr;
    PlainNoteEditor* m_editor = nullptr;
    QLabel* m_statistics = nullptr;
    bool m_loadingEditor = false;
};

}
