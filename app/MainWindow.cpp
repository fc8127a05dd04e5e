#include "MainWindow.h"

#include "ConflictDialog.h"
#include "MarkdownEditorView.h"
#include "MarkdownEngine/Layout/MarkdownEditorCoordinator.h"
#include "Sidebar.h"
#include "Velmo/AppState.h"
#include "Velmo/EditorConfigurationBuilder.h"
#include "Velmo/EditorHostCoordinator.h"

#include <QApplication>
#include <QCloseEvent>
#include <QFileDialog>
#include <QLabel>
#include <QMenuBar>
#include <QMessageBox>
#include <QPointer>
#include <QSplitter>
#include <QStatusBar>

namespace velmo::ui {

MainWindow::MainWindow(app::AppState& state, QWidget* parent)
    : QMainWindow(parent)
    , m_state(state)
{
    resize(1100, 720);
    auto* splitter = new QSplitter(this);
    m_sidebar = new Sidebar(state, splitter);
    m_editor = new MarkdownEditorView(splitter);
    splitter->addWidget(m_sidebar);
    splitter->addWidget(m_editor);
    splitter->setStretchFactor(1, 1);
    splitter->setSizes({260, 840});
    setCentralWidget(splitter);
    m_statistics = new QLabel(this);
    m_caretLine = new QLabel(this);
    statusBar()->addPermanentWidget(m_statistics);
    statusBar()->addPermanentWidget(m_caretLine);
    m_coordinator = new markdown::MarkdownEditorCoordinator(
        *m_editor, app::EditorConfigurationBuilder::make(m_state.settings(), isDarkAppearance()), this);
    m_editor->setCoordinator(m_coordinator);
    m_host = new app::EditorHostCoordinator(m_state, *m_coordinator, this);
    m_state.editor().textView = m_editor;
    m_state.editor().coordinator = m_coordinator;
    m_state.editor().view = m_editor;
    connect(&m_state.settings(), &editor::EditorSettings::changed, this, &MainWindow::applyEditorConfiguration);

    buildMenus();
    // The state outlives the window: a picker asked for after it is gone answers nothing.
    m_state.workspace().setFolderPanel([window = QPointer<MainWindow>(this)](const QString& title) -> std::optional<QUrl> {
        if (!window)
            return std::nullopt;
        const QString folder = QFileDialog::getExistingDirectory(window, title);
        return folder.isEmpty() ? std::nullopt : std::optional(QUrl::fromLocalFile(folder));
    });

    // Queued: an edit under way in the view finishes before the document is compared with it.
    connect(&m_state, &app::AppState::changed, this, [this] {
        if (m_host)
            m_host->synchronizeDocument();
    }, Qt::QueuedConnection);
    connect(&m_state, &app::AppState::activeDocumentChanged, this, &MainWindow::showActiveDocument);
    connect(&m_state, &app::AppState::changed, this, &MainWindow::refreshStatus);
    connect(&m_state, &app::AppState::alertChanged, this, &MainWindow::showAlert);
    connect(&m_state, &app::AppState::syncConflictChanged, this, &MainWindow::showConflict);

    showActiveDocument();
    refreshStatus();
}

void MainWindow::buildMenus()
{
    QMenu* file = menuBar()->addMenu(tr("&File"));
    file->addAction(tr("Open Folder…"), QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_O), this, &MainWindow::chooseFolder);
    file->addAction(tr("Save"), QKeySequence::Save, this, [this] {
        if (app::OpenDocument* document = m_state.activeDocument())
            m_state.save(document, true);
    });
    file->addAction(tr("Save As…"), QKeySequence::SaveAs, this, &MainWindow::saveActiveAs);
    file->addAction(tr("Close"), QKeySequence::Close, this, [this] { m_state.goHome(); });
    file->addSeparator();
    file->addAction(tr("New Note"), QKeySequence::New, this, [this] { m_state.newNote(QString()); });
    file->addAction(tr("New Folder"), QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_N), this, [this] {
        if (const auto folder = m_state.newFolder(QString()))
            m_sidebar->beginRename(*folder);
    });
    file->addAction(tr("Rename Note…"), this, [this] {
        if (const app::OpenDocument* document = m_state.activeDocument())
            m_sidebar->beginRename(document->url());
    });
    file->addAction(tr("Duplicate Note"), this, [this] {
        if (const app::OpenDocument* document = m_state.activeDocument())
            m_state.duplicate(document->url());
    });
    file->addAction(tr("Move Note to Trash"), this, [this] { m_state.deleteActive(); });
    file->addAction(tr("Filter Notes"), QKeySequence(Qt::CTRL | Qt::ALT | Qt::Key_F), m_sidebar, &Sidebar::focusFilter);
    file->addSeparator();
    file->addAction(tr("Quit"), QKeySequence::Quit, this, &QWidget::close);

    QMenu* edit = menuBar()->addMenu(tr("&Edit"));
    edit->addAction(tr("Undo"), QKeySequence::Undo, m_editor, &MarkdownEditorView::undoEdit);
    edit->addAction(tr("Redo"), QKeySequence::Redo, m_editor, &MarkdownEditorView::redoEdit);
    edit->addSeparator();
    edit->addAction(tr("Cut"), QKeySequence::Cut, m_editor, &QTextEdit::cut);
    edit->addAction(tr("Copy"), QKeySequence::Copy, m_editor, &QTextEdit::copy);
    edit->addAction(tr("Paste"), QKeySequence::Paste, m_editor, &QTextEdit::paste);
    edit->addAction(tr("Select All"), QKeySequence::SelectAll, m_editor, &QTextEdit::selectAll);
    buildViewMenu();
}

void MainWindow::chooseFolder()
{
    const QString folder = QFileDialog::getExistingDirectory(this, editor::Workspace::folderPanelTitle());
    if (!folder.isEmpty())
        m_state.openWorkspace(QUrl::fromLocalFile(folder));
}

void MainWindow::saveActiveAs()
{
    app::OpenDocument* document = m_state.activeDocument();
    if (!document)
        return;
    QFileDialog dialog(this, tr("Save As"), document->url().toLocalFile());
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setDefaultSuffix("md");
    dialog.setNameFilters({tr("Markdown (*.md *.markdown *.mdown *.mkd *.mdx *.txt)")});
    if (dialog.exec() == QDialog::Accepted && !dialog.selectedUrls().isEmpty())
        m_state.saveAs(document, dialog.selectedUrls().first());
}

void MainWindow::showActiveDocument()
{
    app::OpenDocument* document = m_state.activeDocument();
    if (document == m_host->document() && document)
        return;
    m_editor->setDocumentId(document ? document->id() : QString());
    m_host->setDocument(document);
    m_editor->setEnabled(document != nullptr);
    if (document)
        m_editor->setFocus();
}

void MainWindow::refreshStatus()
{
    setWindowTitle(m_state.windowTitle());
    statusBar()->showMessage(m_state.statusMessage().value_or(QString()));
    refreshEditorStatus();
}

void MainWindow::showAlert()
{
    const auto& alert = m_state.alert();
    if (!alert)
        return;
    const app::AppAlert shown = *alert;
    QMessageBox::warning(this, shown.title, shown.message.value_or(QString()));
    if (m_state.alert() && m_state.alert()->id == shown.id)
        m_state.dismissAlert();
}

void MainWindow::showConflict()
{
    const auto& conflict = m_state.syncConflict();
    if (m_conflictDialog && (!conflict || m_conflictDialog->conflict().id != conflict->id))
        m_conflictDialog->deleteLater();
    if (!conflict || (m_conflictDialog && m_conflictDialog->conflict().id == conflict->id))
        return;
    m_conflictDialog = new ConflictDialog(*conflict, this);
    m_conflictDialog->setAttribute(Qt::WA_DeleteOnClose);
    connect(m_conflictDialog, &ConflictDialog::resolved, this,
            [this](const app::SyncConflict& shown, app::SyncResolution resolution) {
                m_state.resolve(shown, resolution);
            });
    m_conflictDialog->open();
}

void MainWindow::closeEvent(QCloseEvent* event)
{
    // Closing the window quits, through the one quit path: it saves, and a failed save keeps
    // the window open with its alert on screen.
    event->ignore();
    m_state.quit();
}

}
