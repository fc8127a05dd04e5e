// The main window's live editor: the View menu, the status line and the configuration.
#include "MainWindow.h"

#include "MarkdownEditorView.h"
#include "MarkdownEngine/Layout/MarkdownEditorCoordinator.h"
#include "Velmo/AppState.h"
#include "Velmo/EditorConfigurationBuilder.h"
#include "Velmo/EditorHostCoordinator.h"

#include <QApplication>
#include <QEvent>
#include <QLabel>
#include <QMenuBar>
#include <QSplitter>

namespace velmo::ui {

MainWindow::~MainWindow()
{
    // The editor's notifications must not reach a coordinator or host that is going away.
    m_editor->setCoordinator(nullptr);
    delete m_host;
    m_host = nullptr;
    delete m_coordinator;
    m_coordinator = nullptr;
}

bool MainWindow::isDarkAppearance() const
{
    // Qt 6.4 has no colour-scheme query: a dark window colour means a dark desktop.
    return QApplication::palette().color(QPalette::Window).lightnessF() < 0.5;
}

void MainWindow::applyEditorConfiguration()
{
    if (m_coordinator)
        m_coordinator->update(app::EditorConfigurationBuilder::make(m_state.settings(), isDarkAppearance()));
    if (auto* splitter = qobject_cast<QSplitter*>(centralWidget()); splitter && splitter->count() > 1)
        splitter->widget(0)->setVisible(m_state.settings().showsSidebar());
}

void MainWindow::changeEvent(QEvent* event)
{
    QMainWindow::changeEvent(event);
    if (event->type() == QEvent::PaletteChange || event->type() == QEvent::ApplicationPaletteChange)
        applyEditorConfiguration();
}

void MainWindow::buildViewMenu()
{
    editor::EditorSettings& settings = m_state.settings();
    QMenu* view = menuBar()->addMenu(tr("&View"));
    QAction* sidebar = view->addAction(tr("Show Sidebar"), QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_L), this,
                                       [&settings] { settings.setValue("showsSidebar", !settings.showsSidebar()); });
    sidebar->setCheckable(true);
    QAction* raw = view->addAction(tr("Raw Source Mode"), QKeySequence(Qt::CTRL | Qt::ALT | Qt::Key_R), this,
                                   [&settings] { settings.setValue("rawSourceMode", !settings.rawSourceMode()); });
    raw->setCheckable(true);
    view->addSeparator();
    const auto resize = [&settings](double step) {
        const double size = settings.fontSize() > 0 ? settings.fontSize() : 15.0;
        settings.setValue("fontSize", step == 0 ? 15.0 : std::clamp(size + step, 9.0, 36.0));
    };
    view->addAction(tr("Bigger"), QKeySequence::ZoomIn, this, [resize] { resize(1); });
    view->addAction(tr("Smaller"), QKeySequence::ZoomOut, this, [resize] { resize(-1); });
    view->addAction(tr("Actual Size"), QKeySequence(Qt::CTRL | Qt::Key_0), this, [resize] { resize(0); });
    connect(view, &QMenu::aboutToShow, this, [sidebar, raw, &settings] {
        sidebar->setChecked(settings.showsSidebar());
        raw->setChecked(settings.rawSourceMode());
    });
    buildFormatMenu();
    applyEditorConfiguration();
}

void MainWindow::refreshEditorStatus()
{
    const app::OpenDocument* document = m_state.activeDocument();
    if (!document) {
        m_statistics->clear();
        m_caretLine->clear();
        return;
    }
    const markdown::MarkdownTextStatistics& s = document->statistics();
    const QString words = s.isSelection ? tr("%n word(s) selected", nullptr, s.totalWords())
                                        : tr("%n word(s)", nullptr, s.totalWords());
    m_statistics->setText(words + QStringLiteral("  ·  ") + tr("%n character(s)", nullptr, s.characters)
                          + QStringLiteral("  ·  ") + tr("%n min read", nullptr, s.readingMinutes()));
    m_caretLine->setText(tr("Line %1").arg(document->caretState().line()));
}

}
