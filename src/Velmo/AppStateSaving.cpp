// The synchronous save path of AppState: every moment at which the program must know the
// outcome before going on (switching notes, closing, quitting, renaming by title).
#include "Velmo/AppState.h"

#include "Editor/Model/NoteTitle.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTextBoundaryFinder>

namespace velmo::app {

using editor::MarkdownFile;
using editor::MarkdownFileError;
namespace NoteTitle = editor::NoteTitle;

void AppState::raiseConflict(const SyncConflict& conflict)
{
    if (m_syncConflict)
        return;
    m_syncConflict = conflict;
    emit changed();
}

bool AppState::save(OpenDocument* document, bool announcing)
{
    if (document == activeDocument() && m_editor.isComposing())
        return false; // marked text never reaches the disk
    if (const auto conflict = unseenDiskChange(document, std::nullopt)) {
        cancelAutosave(document);
        raiseConflict(*conflict);
        return false;
    }
    SavableContents contents;
    try {
        contents = savableContents(document);
        if (contents.url == document->url())
            m_workspace.noteWrittenHere(contents.url);
        write(contents.text, document->url(), contents.url);
    } catch (const MarkdownFileError& error) {
        reportFileError(error, tr("Could Not Save Document"));
        return false;
    }
    synchronizeEditorContents(contents.text, document, contents.caret);
    document->acceptSavedContents(contents.text, contents.caret);
    if (contents.url != document->url())
        retargetDocuments({{document, contents.url}});
    savedHere(document, announcing);
    return true;
}

AppState::SavableContents AppState::savableContents(OpenDocument* document) const
{
    SavableContents result{document->text(), document->url(), document->caret()};
    const auto name = NoteTitle::name(result.text);
    if (!name)
        return result;
    const QFileInfo info(result.url.toLocalFile());
    const QString extension = info.suffix();
    if (!NoteTitle::isValidFilename(*name, extension))
        throw MarkdownFileError::invalidName();
    const QString directory = info.absolutePath();
    const QString suffix = extension.isEmpty() ? QString() : u'.' + extension;
    const QUrl candidate = QUrl::fromLocalFile(directory + u'/' + *name + suffix);
    if (editor::canonicalPath(candidate) == editor::canonicalPath(result.url))
        return result;

    const QString unique = m_workspace.uniqueName(*name, extension, QUrl::fromLocalFile(directory));
    const QString finalName = QFileInfo(unique).completeBaseName();
    if (!NoteTitle::isValidFilename(finalName, extension))
        throw MarkdownFileError::invalidName();
    if (finalName != *name) {
        // The title follows the file, so note and file name never disagree.
        result.caret = NoteTitle::caretAfterReplacingName(result.text, finalName, int(result.caret));
        result.text = NoteTitle::replacingName(result.text, finalName);
    }
    result.url = QUrl::fromLocalFile(directory + u'/' + unique);
    return result;
}

void AppState::write(const QString& text, const QUrl& from, const QUrl& to)
{
    const MarkdownFile source(from);
    const MarkdownFile target(to);
    if (source == target) {
        target.write(text);
        return;
    }
    // A note reached through a symlink is never renamed by its title.
    const QFileInfo info(source.path());
    if (!info.isFile() || info.isSymLink())
        throw MarkdownFileError::notWritable(target.path());
    source.write(text);
    // QFile::rename refuses an existing target, so a name taken meanwhile is never overwritten.
    if (!QFile::rename(source.path(), target.path()))
        throw MarkdownFileError::notWritable(target.path());
}

void AppState::savedHere(OpenDocument* document, bool announcing)
{
    cancelAutosave(document);
    if (announcing)
        setStatusMessage(tr("Saved ") + document->title());
    if (document != activeDocument())
        ++m_otherNotesSaved;
    m_workspace.noteWrittenHere(document->url());
    emit changed();
}

bool AppState::saveAll()
{
    bool allSaved = true;
    const std::vector<OpenDocument*> list = m_documents;
    for (OpenDocument* document : list)
        allSaved = save(document, false) && allSaved;
    if (allSaved)
        setStatusMessage(tr("Saved %n note(s)", nullptr, int(list.size())));
    return allSaved;
}

bool AppState::saveDirtyDocuments(const std::vector<OpenDocument*>& list)
{
    const std::vector<OpenDocument*> copy = list;
    for (OpenDocument* document : copy) {
        if (document->isDirty() && !save(document, false))
            return false;
    }
    return true;
}

void AppState::finishWritesInFlight(const std::vector<OpenDocument*>&)
{
    // Nothing is written in the background yet.
}

void AppState::synchronizeEditorContents(const QString& text, OpenDocument* document, qsizetype caret)
{
    if (text == document->text() || document != activeDocument())
        return;
    EditorTextSurface* surface = m_editor.surface();
    if (!surface || surface->documentId() != document->id() || surface->isComposing()
        || surface->surfaceText() != document->text())
        return;
    // Replace only what changed, cut at grapheme boundaries, as one undoable step.
    const QString& old = document->text();
    QTextBoundaryFinder oldFinder(QTextBoundaryFinder::Grapheme, old);
    QTextBoundaryFinder newFinder(QTextBoundaryFinder::Grapheme, text);
    qsizetype prefix = 0;
    while (true) {
        oldFinder.setPosition(prefix);
        newFinder.setPosition(prefix);
        const qsizetype nextOld = oldFinder.toNextBoundary();
        const qsizetype nextNew = newFinder.toNextBoundary();
        if (nextOld < 0 || nextOld != nextNew || QStringView(old).mid(prefix, nextOld - prefix) != QStringView(text).mid(prefix, nextNew - prefix))
            break;
        prefix = nextOld;
    }
    qsizetype suffix = 0;
    while (true) {
        const qsizetype oldEnd = old.size() - suffix;
        const qsizetype newEnd = text.size() - suffix;
        if (oldEnd <= prefix || newEnd <= prefix)
            break;
        oldFinder.setPosition(oldEnd);
        newFinder.setPosition(newEnd);
        const qsizetype previousOld = oldFinder.toPreviousBoundary();
        const qsizetype previousNew = newFinder.toPreviousBoundary();
        if (previousOld < prefix || previousNew < prefix || oldEnd - previousOld != newEnd - previousNew
            || QStringView(old).mid(previousOld, oldEnd - previousOld) != QStringView(text).mid(previousNew, newEnd - previousNew))
            break;
        suffix += oldEnd - previousOld;
    }
    surface->replaceText(int(prefix), int(old.size() - suffix - prefix),
                         text.mid(prefix, text.size() - suffix - prefix), int(caret));
}

std::optional<SyncConflict> AppState::unseenDiskChange(OpenDocument* document, const std::optional<QString>& besides) const
{
    const auto current = document->file().modificationDate();
    if (!current || current == document->diskDate())
        return std::nullopt;
    QString onDisk;
    try {
        onDisk = document->file().read(true);
    } catch (const MarkdownFileError&) {
        return std::nullopt;
    }
    if (onDisk == document->savedText() || (besides && onDisk == *besides))
        return std::nullopt;
    return SyncConflict{QUuid::createUuid(), SyncConflict::Kind::editedBothPlaces, document->url(),
                        document->title(), onDisk};
}

}
