#pragma once

#include "MarkdownEngine/Editing/MarkdownEditorCommand.h"

#include <QMainWindow>
#include <QPointer>

class QLabel;

namespace velmo::app {
class AppState;
class EditorHostCoordinator;
}

namespace velmo::markdown {
class MarkdownEditorCoordinator;
}

namespace velmo::ui {

class ConflictDialog;
class MarkdownEditorView;
class Sidebar;

// The window around the application state: the notes of the folder, the open note, a status bar.
class MainWindow : public QMainWindow {
    Q_OBJECT

public:
    explicit MainWindow(app::AppState& state, QWidget* parent = nullptr);

    ~MainWindow() override;

protected:
    void closeEvent(QCloseEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void buildMenus();
    void showActiveDocument();
    void refreshStatus();
    void showAlert();
    void chooseFolder();
    void saveActiveAs();
    void showConflict();
    // The live editor: its menu, status line and configuration.
    void buildViewMenu();
    void buildFormatMenu();
    // A command for the open note's editor; nothing without one.
    void sendCommand(const markdown::MarkdownEditorCommand& command);
    void refreshEditorStatus();
    void applyEditorConfiguration();
    bool isDarkAppearance() const;

    app::AppState& m_state;
    Sidebar* m_sidebar = nullptr;
    MarkdownEditorView* m_editor = nullptr;
    QLabel* m_statistics = nullptr;
    QLabel* m_caretLine = nullptr;
    markdown::MarkdownEditorCoordinator* m_coordinator = nullptr;
    app::EditorHostCoordinator* m_host = nullptr;
    QPointer<ConflictDialog> m_conflictDialog;
};

}
