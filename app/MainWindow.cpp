#include "MainWindow.h"

#include "MarkdownEditorView.h"
#include "MarkdownEngine/Layout/MarkdownEditorCoordinator.h"
#include "Velmo/AppState.h"
#include "Velmo/EditorConfigurationBuilder.h"
#include "Velmo/EditorHostCoordinator.h"

#include <QApplication>
#include <QCloseEvent>
#include <QFileDialog>
#include <QLabel>
#include <QListWidget>
#include <QMenuBar>
#include <QMessageBox>
#include <QSplitter>
#include <QStatusBar>

namespace velmo::ui {

MainWindow::MainWindow(app::AppState& state, QWidget* parent)
    : QMainWindow(parent)
    , m_state(state)
{
    resize(1100, 720);
    auto* splitter = new QSplitter(this);
    m_notes = new QListWidget(splitter);
    m_notes->setUniformItemSizes(true); // a folder of thousands of notes lays out in one step
    m_editor = new MarkdownEditorView(splitter);
    splitter->addWidget(m_notes);
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

    connect(m_notes, &QListWidget::itemActivated, this, [this](QListWidgetItem* item) {
        m_state.open(item->data(Qt::UserRole).toUrl(), true);
    });
    connect(m_notes, &QListWidget::itemClicked, this, [this](QListWidgetItem* item) {
        m_state.open(item->data(Qt::UserRole).toUrl(), true);
    });
    // Queued: an edit under way in the view finishes before the document is compared with it.
    connect(&m_state, &app::AppState::changed, this, [this] {
        if (m_host)
            m_host->synchronizeDocument();
    }, Qt::QueuedConnection);
    connect(&m_state.workspace(), &editor::Workspace::changed, this, &MainWindow::refreshNotes);
    connect(&m_state, &app::AppState::activeDocumentChanged, this, &MainWindow::showActiveDocument);
    connect(&m_state, &app::AppState::changed, this, &MainWindow::refreshStatus);
    connect(&m_state, &app::AppState::alertChanged, this, &MainWindow::showAlert);

    refreshNotes();
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
    file->addAction(tr("Close"), QKeySequence::Close, this, [this] { m_state.goHome(); });
    file->addSeparator();
    file->addAction(tr("Quit"), QKeySequence::Quit, this, &QWidget::close);

    QMenu* edit = menuBar()->addMenu(tr("&Edit"));
    edit->addAction(tr("Undo"), QKeySequence::Undo, m_editor, &QTextEdit::undo);
    edit->addAction(tr("Redo"), QKeySequence::Redo, m_editor, &QTextEdit::redo);
    edit->addSeparator();
    edit->addAction(tr("Cut"), QKeySequence::Cut, m_editor, &QTextEdit::cut);
    edit->addAction(tr("Copy"), QKeySequence::Copy, m_editor, &QTextEdit::copy);
    edit->addAction(tr("Paste"), QKeySequence::Paste, m_editor, &QTextEdit::paste);
    edit->addAction(tr("Select All"), QKeySequence::SelectAll, m_editor, &QTextEdit::selectAll);
    buildViewMenu();
}

void MainWindow::chooseFolder()
{
    const QString folder = QFileDialog::getExistingDirectory(this, tr("Choose a folder of notes for Velmo."));
    if (!folder.isEmpty())
        m_state.openWorkspace(QUrl::fromLocalFile(folder));
}

void MainWindow::refreshNotes()
{
    const editor::Workspace& workspace = m_state.workspace();
    m_notes->clear();
    // All rows in one insertion: one per note would notify the view ten thousand times.
    QStringList labels;
    labels.reserve(qsizetype(workspace.notes().size()));
    for (const editor::MarkdownFile& note : workspace.notes())
        labels << workspace.relativePath(note.url());
    m_notes->addItems(labels);
    for (int row = 0; row < m_notes->count(); ++row) {
        const QUrl& url = workspace.notes()[std::size_t(row)].url();
        QListWidgetItem* item = m_notes->item(row);
        item->setData(Qt::UserRole, url);
        if (workspace.selection() == url)
            m_notes->setCurrentItem(item);
    }
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

void MainWindow::closeEvent(QCloseEvent* event)
{
    // Closing the window quits, through the one quit path: it saves, and a failed save keeps
    // the window open with its alert on screen.
    event->ignore();
    m_state.quit();
}

}
