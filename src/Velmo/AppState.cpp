#include "Velmo/AppState.h"

#include <QDir>
#include <QFileInfo>
#include <algorithm>

namespace velmo::app {

using editor::MarkdownFile;
using editor::MarkdownFileError;

static constexpr int settingsDebounceMs = 600;
static constexpr int sessionSaveDelayMs = 1000;

static void makeSingleShot(QTimer& timer, int ms)
{
    timer.setSingleShot(true);
    timer.setInterval(ms);
}

AppState::AppState(std::unique_ptr<editor::EditorSettings> settings, bool restoresSession)
    : m_settings(settings ? std::move(settings) : editor::EditorSettings::standard())
    , m_session(restoresSession ? editor::WorkspaceSession::load() : editor::WorkspaceSession::empty())
    , m_persistsSession(restoresSession)
{
    makeSingleShot(m_sessionSave, sessionSaveDelayMs);
    connect(&m_sessionSave, &QTimer::timeout, this, &AppState::captureSession);
    if (restoresSession) {
        restoreSession();
        openDefaultFolderIfNeeded();
    }
    observe();
    startSyncMonitoring();
}

AppState::~AppState()
{
    for (OpenDocument* document : m_documents)
        delete document;
}

void AppState::observe()
{
    connect(&m_workspace, &editor::Workspace::changed, this, &AppState::changed);
    connect(m_settings.get(), &editor::EditorSettings::changed, this, &AppState::changed);

    makeSingleShot(m_workspaceDebounce, settingsDebounceMs);
    connect(&m_workspace, &editor::Workspace::changed, &m_workspaceDebounce, qOverload<>(&QTimer::start));
    connect(&m_workspaceDebounce, &QTimer::timeout, this, &AppState::scheduleSessionSave);

    makeSingleShot(m_settingsPersist, settingsDebounceMs);
    connect(m_settings.get(), &editor::EditorSettings::changed, &m_settingsPersist, qOverload<>(&QTimer::start));
    connect(&m_settingsPersist, &QTimer::timeout, this, [this] {
        m_settings->persist();
        scheduleSessionSave();
    });
}

void AppState::observe(OpenDocument* document)
{
    connect(document, &OpenDocument::changed, this, &AppState::changed);
    auto* debounce = new QTimer(document);
    makeSingleShot(*debounce, m_delays.textDebounceMs);
    connect(document, &OpenDocument::textChanged, debounce, qOverload<>(&QTimer::start));
    // The timer belongs to the document, so a detached document's debounce dies with it.
    connect(debounce, &QTimer::timeout, this, [this, document] {
        if (!contains(document))
            return;
        m_session.rememberCaret(document->caret(), document->url());
        scheduleSessionSave();
        if (document->isDirty() && m_settings->autoSave())
            scheduleAutosave(document);
    });
    m_textDebounces.insert(document->id(), debounce);
}

bool AppState::contains(const OpenDocument* document) const
{
    return std::find(m_documents.begin(), m_documents.end(), document) != m_documents.end();
}

OpenDocument* AppState::activeDocument() const
{
    if (!m_activeID)
        return nullptr;
    for (OpenDocument* document : m_documents) {
        if (document->id() == *m_activeID)
            return document;
    }
    return nullptr;
}

void AppState::setStatusMessage(const std::optional<QString>& message)
{
    m_statusMessage = message;
    emit statusMessageChanged();
    emit changed();
}

void AppState::dismissAlert()
{
    m_alert.reset();
    emit alertChanged();
}

void AppState::setActiveID(const std::optional<QString>& id)
{
    if (id == m_activeID)
        return;
    m_activeID = id;
    emit activeDocumentChanged();
    emit changed();
}

OpenDocument* AppState::open(const QUrl& url, bool select)
{
    const MarkdownFile file(url);
    const QString path = editor::canonicalPath(file.url());
    for (OpenDocument* document : m_documents) {
        if (editor::canonicalPath(document->url()) != path)
            continue;
        if (!select)
            return document;
        return activate(document) ? document : nullptr;
    }

    QString text;
    try {
        text = file.read(true);
    } catch (const MarkdownFileError& error) {
        reportFileError(error, tr("Could Not Open Document"));
        return nullptr;
    }
    if (!prepareForDocumentSwitch())
        return nullptr;

    auto created = std::make_unique<OpenDocument>(file, text);
    OpenDocument* document = created.get();
    if (const auto caret = m_session.caret(file.url()); caret && *caret != 0)
        document->setCaret(*caret); // not clamped here: the editor clamps when it takes the text
    replaceOpenDocument(std::move(created));
    if (select)
        setActiveID(document->id());
    m_session.addRecent(file.url());
    if (select)
        m_workspace.select(file.url());
    scheduleSessionSave();
    return document;
}

bool AppState::activate(OpenDocument* document)
{
    if (!contains(document))
        return false;
    if (document != activeDocument() && !prepareForDocumentSwitch())
        return false;
    setActiveID(document->id());
    hideGraph();
    m_workspace.select(document->url());
    m_session.addRecent(document->url());
    scheduleSessionSave();
    return true;
}

void AppState::selectDocument(const std::optional<QString>& id)
{
    if (!id)
        return;
    for (OpenDocument* document : m_documents) {
        if (document->id() == *id) {
            activate(document);
            return;
        }
    }
}

void AppState::replaceOpenDocument(std::unique_ptr<OpenDocument> document)
{
    // One note is open at a time; the list remains so every loop stays written against it.
    const std::vector<OpenDocument*> open = m_documents;
    for (OpenDocument* existing : open)
        detach(existing);
    OpenDocument* added = document.release();
    m_documents.push_back(added);
    observe(added);
    emit documentsChanged();
}

void AppState::cancelAutosave(OpenDocument* document)
{
    // Later, not now: this may run inside the timer's own timeout.
    if (QTimer* timer = m_autosaves.take(document->id())) {
        timer->stop();
        timer->deleteLater();
    }
}

void AppState::detach(OpenDocument* document)
{
    if (!contains(document))
        return;
    cancelAutosave(document);
    m_writeAgainWhenDone.remove(document->id());
    m_pendingWrites.remove(document->id());
    m_textDebounces.remove(document->id());
    const bool wasActive = document == activeDocument();
    m_documents.erase(std::find(m_documents.begin(), m_documents.end(), document));
    document->disconnect(this);
    document->deleteLater();
    if (wasActive)
        setActiveID(std::nullopt);
    if (OpenDocument* active = activeDocument())
        m_workspace.select(active->url());
    else
        m_workspace.select(std::nullopt);
    scheduleSessionSave();
    emit documentsChanged();
}

bool AppState::close(OpenDocument* document)
{
    finishWritesInFlight({document});
    if (document->isDirty() && !save(document, false))
        return false;
    detach(document);
    return true;
}

bool AppState::closeAll()
{
    finishWritesInFlight(m_documents);
    if (!saveDirtyDocuments(m_documents))
        return false;
    const std::vector<OpenDocument*> open = m_documents;
    for (OpenDocument* document : open)
        detach(document);
    return true;
}

bool AppState::goHome()
{
    hideGraph();
    OpenDocument* document = activeDocument();
    if (!document && !m_documents.empty())
        document = m_documents.front();
    if (document)
        close(document);
    return m_documents.empty();
}

void AppState::retargetDocuments(const std::vector<std::pair<OpenDocument*, QUrl>>& pairs)
{
    for (const auto& [document, newURL] : pairs) {
        if (!contains(document))
            continue;
        const QString oldPath = QDir::cleanPath(document->url().toLocalFile());
        cancelAutosave(document);
        document->retarget(newURL);
        const QString newPath = QDir::cleanPath(document->url().toLocalFile());
        std::replace(m_session.quickOpenRecents.begin(), m_session.quickOpenRecents.end(), oldPath, newPath);
        m_session.carets.remove(oldPath);
        m_session.rememberCaret(document->caret(), document->url());
        if (m_session.lastOpenedPath == oldPath)
            m_session.lastOpenedPath = newPath;
    }
    if (OpenDocument* active = activeDocument()) {
        m_workspace.select(active->url());
        m_session.addRecent(active->url());
    }
    scheduleSessionSave();
    emit changed();
}

std::vector<OpenDocument*> AppState::documentsUnder(const QUrl& url) const
{
    const QString path = editor::canonicalPath(url);
    std::vector<OpenDocument*> result;
    for (OpenDocument* document : m_documents) {
        const QString documentPath = editor::canonicalPath(document->url());
        if (documentPath == path || documentPath.startsWith(path + u'/'))
            result.push_back(document);
    }
    return result;
}

bool AppState::prepareForDocumentSwitch()
{
    OpenDocument* active = activeDocument();
    if (!active)
        return true;
    if (m_editor.isComposing()) {
        setStatusMessage(tr("Finish the current input before switching documents."));
        return false;
    }
    if (active->isDirty() || m_pendingWrites.contains(active->id()))
        return save(active, false);
    return true;
}

QString AppState::windowTitle() const
{
    const OpenDocument* active = activeDocument();
    if (!active)
        return m_workspace.displayName();
    // The folder's name shows only while there are unsaved changes.
    if (!active->isDirty())
        return active->title();
    return active->title() + QStringLiteral(" — ") + m_workspace.displayName();
}

void AppState::warn(const QString& title, const std::optional<QString>& message)
{
    m_alert = AppAlert{QUuid::createUuid(), title, message};
    emit alertChanged();
    emit changed();
}

void AppState::reportFileError(const MarkdownFileError& error, const QString& title)
{
    setStatusMessage(error.message());
    warn(title, error.message());
}

void AppState::openAny(const QUrl& url)
{
    const QString path = url.toLocalFile();
    const QFileInfo info(path);
    if (!info.exists()) {
        setStatusMessage(tr("No such file: ") + info.fileName());
        return;
    }
    if (info.isDir())
        openWorkspace(url);
    else
        open(url, true);
}

}
