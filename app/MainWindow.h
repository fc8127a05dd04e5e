#pragma once

#include <QMainWindow>
#include <QPointer>

class QLabel;
class QListWidget;

namespace velmo::app {
class AppState;
}

namespace velmo::ui {

class ConflictDialog;
class PlainNoteEditor;

// The window around the application state: the notes of the folder, the open note, a status bar.
class MainWindow : public QMainWindow {
    Q_OBJECT

public:
    explicit MainWindow(app::AppState& state, QWidget* parent = nullptr);

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    void buildMenus();
    void refreshNotes();
    void showActiveDocument();
    void refreshStatus();
    void showAlert();
    void chooseFolder();
    void showConflict();
    // Text changed by the logic (a reload from disk, a resolved conflict) reaches the view.
    void synchronizeEditor();

    app::AppState& m_state;
    QListWidget* m_notes = nullptr;
    PlainNoteEditor* m_editor = nullptr;
    QLabel* m_statistics = nullptr;
    bool m_loadingEditor = false;
    QPointer<ConflictDialog> m_conflictDialog;
};

}
