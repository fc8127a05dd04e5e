// The file operations of AppState: the workspace does the file work; here each operation gets
// the care an open note needs. What is open below an item is saved first, so that nothing the
// user typed is left behind in the old place or lost to the Trash; open notes follow their
// files; every failure is reported and leaves files and open notes as they were.
#include "Velmo/AppState.h"

#include "Editor/Model/NoteTitle.h"
#include "Editor/Model/WorkspaceTree.h"

#include <QDir>
#include <QFileInfo>

namespace velmo::app {

using editor::MarkdownFile;
using editor::MarkdownFileError;
using editor::WorkspaceFileOperationError;
namespace NoteTitle = editor::NoteTitle;

static QString fileOperationTitle()
{
    return AppState::tr("Could Not Complete File Operation");
}

// Runs `operation`, reporting what it throws. True when it went through.
template <typename Operation>
static bool attempt(AppState& state, Operation&& operation, const QString& title = fileOperationTitle())
{
    try {
        operation();
        return true;
    } catch (const MarkdownFileError& error) {
        state.reportFileError(error, title);
    } catch (const WorkspaceFileOperationError& error) {
        state.reportFileError(error, title);
    }
    return false;
}

static QString pathOf(const QUrl& url)
{
    return editor::standardizedPath(url);
}

// The new path of `path` when `from` became `to`, for the item itself and all below it.
static std::optional<QString> relocated(const QString& path, const QString& from, const QString& to)
{
    if (path == from)
        return to;
    if (path.startsWith(from + u'/'))
        return to + path.mid(from.size());
    return std::nullopt;
}

// A note's first line is its title. A heading, a line equal to the old name, or no title is
// replaced by the new name; any other first line is kept and a heading goes above it, so a
// rename never loses a line of text.
static QString retitled(const QString& text, const QString& oldName, const QString& newName, qsizetype* caret)
{
    const NoteTitle::FirstLine line = NoteTitle::firstLine(text);
    if (line.isHeading || !line.name || *line.name == oldName) {
        if (caret)
            *caret = NoteTitle::caretAfterReplacingName(text, newName, int(*caret));
        return NoteTitle::replacingName(text, newName);
    }
    const QString heading = line.prefix + "# " + newName + "\n\n";
    if (caret)
        *caret += heading.size() - line.prefix.size();
    return heading + text.mid(line.prefix.size());
}

static void retargetSessionPaths(editor::WorkspaceSession& session, const QString& from, const QString& to)
{
    for (QString& recent : session.quickOpenRecents) {
        if (const auto moved = relocated(recent, from, to))
            recent = *moved;
    }
    QHash<QString, qint64> carets;
    for (auto it = session.carets.begin(); it != session.carets.end(); ++it)
        carets.insert(relocated(it.key(), from, to).value_or(it.key()), it.value());
    session.carets = std::move(carets);
    if (session.lastOpenedPath) {
        if (const auto moved = relocated(*session.lastOpenedPath, from, to))
            session.lastOpenedPath = *moved;
    }
}

// Open documents at or below `from`, paired with their places below `to`.
static std::vector<std::pair<OpenDocument*, QUrl>> followers(const std::vector<OpenDocument*>& documents,
                                                             const QUrl& from, const QUrl& to)
{
    const QString oldRoot = editor::canonicalPath(from);
    std::vector<std::pair<OpenDocument*, QUrl>> pairs;
    for (OpenDocument* document : documents) {
        const QString path = editor::canonicalPath(document->url());
        if (const auto moved = relocated(path, oldRoot, pathOf(to)))
            pairs.emplace_back(document, QUrl::fromLocalFile(*moved));
    }
    return pairs;
}

void AppState::reportFileError(const WorkspaceFileOperationError& error, const QString& title)
{
    setStatusMessage(error.message());
    warn(title, error.message());
}

OpenDocument* AppState::newNote(const QString& name, const std::optional<QUrl>& folder)
{
    if (!prepareForDocumentSwitch())
        return nullptr;
    const std::optional<QUrl> in = folder ? folder : m_workspace.creationDirectory();
    std::optional<MarkdownFile> created;
    if (!attempt(*this, [&] { created = m_workspace.createNote(name, in); }))
        return nullptr;
    return open(created->url(), true);
}

std::optional<QUrl> AppState::newFolder(const QString& name, const std::optional<QUrl>& folder)
{
    const std::optional<QUrl> in = folder ? folder : m_workspace.creationDirectory();
    std::optional<QUrl> created;
    if (!attempt(*this, [&] { created = m_workspace.createFolder(name, in); }))
        return std::nullopt;
    scheduleSessionSave();
    return created;
}

bool AppState::renameActive(const QString& name)
{
    OpenDocument* active = activeDocument();
    return active && rename(active->url(), name);
}

bool AppState::rename(const QUrl& url, const QString& name)
{
    QUrl source = url;
    if (!attempt(*this, [&] { (void)m_workspace.renameDestination(source, name); }))
        return false;
    const std::vector<OpenDocument*> below = documentsUnder(source);
    const bool isFile = !QFileInfo(pathOf(source)).isDir();
    OpenDocument* own = isFile && below.size() == 1 ? below.front() : nullptr;
    if (own && own == activeDocument() && m_editor.isComposing()) {
        setStatusMessage(tr("Finish the current input before switching documents."));
        return false;
    }
    if (!saveDirtyDocuments(below))
        return false;
    if (own)
        source = own->url(); // saving may have renamed the note after its first line
    QUrl destination;
    if (!attempt(*this, [&] { destination = m_workspace.renameDestination(source, name); }))
        return false;
    if (pathOf(destination) == pathOf(source))
        return true;

    const QString oldName = QFileInfo(pathOf(source)).completeBaseName();
    const QString newName = QFileInfo(pathOf(destination)).completeBaseName();
    // Paired before the move: afterwards the old paths can no longer be resolved.
    const auto pairs = followers(m_documents, source, destination);
    const bool renamed = attempt(*this, [&] {
        m_workspace.rename(source, destination);
        if (!isFile || !MarkdownFile(destination).isMarkdown())
            return;
        // The first line follows the file; when it cannot be written the rename is undone.
        const MarkdownFile file(destination);
        try {
            const QString text = own ? own->text() : file.read(true);
            m_workspace.noteWrittenHere(destination);
            file.write(retitled(text, oldName, newName, nullptr));
        } catch (const MarkdownFileError&) {
            m_workspace.rename(destination, source);
            throw;
        }
    });
    if (!renamed)
        return false;

    if (own) {
        qsizetype caret = own->caret();
        const QString text = retitled(own->text(), oldName, newName, &caret);
        synchronizeEditorContents(text, own, caret);
        own->acceptSavedContents(text, caret);
    }
    retargetSessionPaths(m_session, pathOf(source), pathOf(destination));
    retargetDocuments(pairs);
    scheduleSessionSave();
    return true;
}

OpenDocument* AppState::duplicate(const QUrl& url)
{
    if (!saveDirtyDocuments(documentsUnder(url)))
        return nullptr;
    QUrl copy;
    if (!attempt(*this, [&] { copy = m_workspace.duplicate(url); }))
        return nullptr;
    if (QFileInfo(pathOf(copy)).isDir())
        return nullptr;
    return open(copy, true);
}

bool AppState::deleteActive()
{
    OpenDocument* active = activeDocument();
    return active && deleteItem(active->url());
}

bool AppState::deleteItem(const QUrl& url)
{
    const std::vector<OpenDocument*> below = documentsUnder(url);
    finishWritesInFlight(below);
    if (!saveDirtyDocuments(below))
        return false;
    // Saving may have renamed the note after its first line: delete where it is now.
    const QUrl target = below.size() == 1 && !QFileInfo(pathOf(url)).isDir() ? below.front()->url() : url;
    if (!attempt(*this, [&] { m_workspace.deleteItem(target); }))
        return false;
    for (OpenDocument* document : below)
        detach(document);
    scheduleSessionSave();
    return true;
}

bool AppState::saveAs(OpenDocument* document, const QUrl& url)
{
    if (!contains(document))
        return false;
    finishWritesInFlight({document});
    const QFileInfo info(pathOf(url));
    const QString name = info.completeBaseName();
    if (!url.isLocalFile() || !NoteTitle::isValidFilename(name, info.suffix())) {
        reportFileError(MarkdownFileError::invalidName(), fileOperationTitle());
        return false;
    }
    if (document == activeDocument() && m_editor.isComposing()) {
        setStatusMessage(tr("Finish the current input before switching documents."));
        return false;
    }
    qsizetype caret = document->caret();
    const QString text = retitled(document->text(), document->title(), name, &caret);
    const QUrl target = QUrl::fromLocalFile(pathOf(url));
    if (!attempt(*this, [&] { MarkdownFile(target).write(text); }, tr("Could Not Save Document")))
        return false;
    m_workspace.noteWrittenHere(target);
    synchronizeEditorContents(text, document, caret);
    document->acceptSavedContents(text, caret);
    retargetDocuments({{document, target}});
    m_workspace.rescan();
    return true;
}

// The move itself, reporting its failure; the item's new URL when it went through.
static std::optional<QUrl> moving(AppState& state, const QUrl& url, const QUrl& folder)
{
    editor::Workspace& workspace = state.workspace();
    QUrl source = url;
    // Refuse early, before anything is saved.
    if (!attempt(state, [&] { (void)workspace.moveDestination(source, folder); }))
        return std::nullopt;
    const std::vector<OpenDocument*> below = state.documentsUnder(source);
    if (state.activeDocument() && state.editor().isComposing()) {
        state.setStatusMessage(AppState::tr("Finish the current input before switching documents."));
        return std::nullopt;
    }
    if (!state.saveDirtyDocuments(below))
        return std::nullopt;
    if (below.size() == 1 && !QFileInfo(pathOf(source)).isDir())
        source = below.front()->url(); // saving may have renamed the note after its first line
    QUrl destination;
    std::vector<std::pair<OpenDocument*, QUrl>> pairs;
    const bool moved = attempt(state, [&] {
        destination = workspace.moveDestination(source, folder);
        // Paired before the move: afterwards the old paths can no longer be resolved.
        pairs = followers(state.documents(), source, destination);
        destination = workspace.move(source, folder);
    });
    if (!moved)
        return std::nullopt;
    if (pathOf(destination) != pathOf(source)) {
        retargetSessionPaths(state.session(), pathOf(source), pathOf(destination));
        state.retargetDocuments(pairs);
        workspace.select(destination);
    }
    state.setStatusMessage(AppState::tr("Moved %1").arg(QFileInfo(pathOf(destination)).fileName()));
    state.scheduleSessionSave();
    return destination;
}

bool AppState::move(const QUrl& url, const QUrl& folder)
{
    return moving(*this, url, folder).has_value();
}

void AppState::place(const QUrl& url, const std::optional<QUrl>& before)
{
    m_workspace.place(url, before);
}

std::optional<QList<QUrl>> AppState::importFiles(const QList<QUrl>& urls, const QUrl& folder)
{
    QList<QUrl> imported;
    if (!attempt(*this, [&] { imported = m_workspace.importFiles(urls, folder); }))
        return std::nullopt;
    return imported;
}

bool AppState::receiveSidebarDrop(const QList<QUrl>& urls, const QUrl& folder, const std::optional<QUrl>& before,
                                  bool positioned)
{
    if (!m_workspace.contains(folder)) {
        reportFileError(WorkspaceFileOperationError(WorkspaceFileOperationError::Kind::outsideWorkspace),
                        fileOperationTitle());
        return false;
    }
    const QString folderPath = editor::canonicalPath(folder);
    std::optional<QUrl> last;
    QStringList importedNames;
    for (const QUrl& url : urls) {
        if (m_workspace.containsEntry(url)) {
            const QString parent = editor::canonicalPath(QUrl::fromLocalFile(QFileInfo(pathOf(url)).path()));
            QUrl placed = url;
            if (parent != folderPath || !positioned) {
                const auto moved = moving(*this, url, folder);
                if (!moved)
                    return false;
                placed = *moved;
            }
            if (positioned)
                m_workspace.place(placed, before);
            last = placed;
        } else {
            const auto imported = importFiles({url}, folder);
            if (!imported)
                return false;
            for (const QUrl& copy : *imported) {
                if (positioned)
                    m_workspace.place(copy, before);
                importedNames << QFileInfo(pathOf(copy)).fileName();
                last = copy;
            }
        }
    }
    if (const auto destination = m_workspace.directoryDestination(folder))
        m_workspace.setExpanded(*destination, true);
    if (last)
        m_workspace.select(last);
    if (!importedNames.isEmpty())
        setStatusMessage(tr("Imported %1").arg(importedNames.join(", ")));
    scheduleSessionSave();
    return true;
}

}
