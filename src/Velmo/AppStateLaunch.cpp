// Launch, session and quit: what the application opens first and how it goes down without
// losing a keystroke.
#include "Velmo/AppState.h"

#include "Velmo/DefaultFolder.h"

#include <QDir>
#include <QFileInfo>
#include <QTimer>

namespace velmo::app {

// Panels close with an animation of their own; the quit waits for it.
static constexpr int panelsCloseDelayMs = 300;

void AppState::openWorkspace(const QUrl& url)
{
    m_workspace.open(url);
    if (const auto& root = m_workspace.root())
        m_session.rootPath = root->toLocalFile();
    scheduleSessionSave();
}

void AppState::restoreSession()
{
    if (!m_session.rootPath || !QFileInfo(*m_session.rootPath).isDir())
        return;
    m_workspace.open(QUrl::fromLocalFile(*m_session.rootPath));
    if (m_session.selectedPath && QFileInfo::exists(*m_session.selectedPath))
        m_workspace.select(QUrl::fromLocalFile(*m_session.selectedPath));
}

void AppState::openDefaultFolderIfNeeded()
{
    if (m_workspace.root() || !m_documents.empty())
        return;
    DefaultFolder::seedIfNeeded();
    if (const auto folder = DefaultFolder::stored())
        openWorkspace(QUrl::fromLocalFile(*folder));
}

void AppState::scheduleSessionSave()
{
    if (!m_persistsSession)
        return;
    // Every call within the second pushes the save back.
    m_sessionSave.start();
}

void AppState::captureSession()
{
    const auto& root = m_workspace.root();
    m_session.rootPath = root ? std::optional<QString>(root->toLocalFile()) : std::nullopt;
    m_session.openPaths.clear();
    for (const OpenDocument* document : m_documents)
        m_session.openPaths << document->url().toLocalFile();
    const OpenDocument* active = activeDocument();
    m_session.selectedPath = active ? std::optional<QString>(active->url().toLocalFile()) : std::nullopt;
    m_session.expandedPaths = QStringList(m_workspace.expanded().begin(), m_workspace.expanded().end());
    m_session.expandedPaths.sort();
    m_session.sidebarVisible = m_settings->showsSidebar();
    m_session.outlineVisible = m_settings->value("outlineVisible").toBool();
    for (const OpenDocument* document : m_documents)
        m_session.rememberCaret(document->caret(), document->url());
    if (m_persistsSession)
        m_session.save();
}

bool AppState::prepareToTerminate()
{
    finishWritesInFlight(m_documents);
    const bool saved = saveDirtyDocuments();
    m_settings->persist();
    m_sessionSave.stop();
    captureSession();
    return saved;
}

void AppState::closeFolder()
{
    if (!closeAll())
        return;
    m_workspace.close();
    // Forgets the recents too, and writes that at once rather than after the debounce.
    m_session = editor::WorkspaceSession::empty();
    m_sessionSave.stop();
    if (m_persistsSession)
        m_session.save();
    emit changed();
}

void AppState::openLaunchArguments(const QStringList& arguments)
{
    std::vector<QFileInfo> paths;
    for (QString argument : arguments.mid(1)) {
        if (argument.startsWith(u'-'))
            continue;
        if (argument == u'~' || argument.startsWith(QLatin1String("~/")))
            argument = QDir::homePath() + argument.mid(1);
        const QFileInfo info(QDir::cleanPath(QFileInfo(argument).absoluteFilePath()));
        if (info.exists())
            paths.push_back(info);
    }
    for (const QFileInfo& info : paths) {
        if (info.isDir())
            openWorkspace(QUrl::fromLocalFile(info.filePath()));
    }
    for (const QFileInfo& info : paths) {
        if (!info.isDir())
            open(QUrl::fromLocalFile(info.filePath()), true);
    }
}

void AppState::quit()
{
    m_isQuitting = true;
    const bool hadPanels = hasTransientPanels();
    dismissTransientPanels();
    if (hadPanels)
        QTimer::singleShot(panelsCloseDelayMs, this, &AppState::terminationRequested);
    else
        emit terminationRequested();
}

}
