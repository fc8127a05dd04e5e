// The synchronous save path of AppState: every moment at which the program must know the
// outcome before going on (switching notes, closing, quitting, renaming by title).
#include "Velmo/AppState.h"

#include "Editor/Model/NoteTitle.h"
#include "MarkdownEngine/Core/TextCharacters.h"
#include "Velmo/EditorLineEnds.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QPointer>
#include <QTextBoundaryFinder>
#include <algorithm>

namespace velmo::app {

using editor::MarkdownFile;
using editor::MarkdownFileError;
namespace NoteTitle = editor::NoteTitle;

void AppState::raiseConflict(const SyncConflict& conflict)
{
    if (m_syncConflict)
        return; // the one shown stays until resolved
    m_syncConflict = conflict;
    emit syncConflictChanged();
    emit changed();
}

std::optional<QString> AppState::textOnTheWay(const OpenDocument* document) const
{
    const auto pending = m_pendingWrites.constFind(document->id());
    if (pending == m_pendingWrites.constEnd())
        return std::nullopt;
    return pending->text;
}

void AppState::setSavingDelays(const SavingDelays& delays)
{
    m_delays = delays;
    m_syncTimer.setInterval(delays.syncIntervalMs);
}

void AppState::scheduleAutosave(OpenDocument* document)
{
    const int delayMs = std::max(int(m_settings->autoSaveDelay() * 1000), m_delays.minimumAutosaveMs);
    cancelAutosave(document);
    auto* timer = new QTimer(this);
    timer->setSingleShot(true);
    timer->setInterval(delayMs);
    timer->setTimerType(Qt::PreciseTimer); // a coarse timer may fire early, under the minimum
    const QPointer<OpenDocument> weak(document);
    connect(timer, &QTimer::timeout, this, [this, weak] {
        if (!weak || !contains(weak) || !weak->isDirty() || !m_settings->autoSave())
            return;
        saveInBackground(weak, false);
    });
    m_autosaves.insert(document->id(), timer);
    timer->start();
}

bool AppState::isAutosaveScheduled(const OpenDocument* document) const
{
    const QTimer* timer = m_autosaves.value(document->id());
    return timer && timer->isActive();
}

bool AppState::saveInBackground(OpenDocument* document, bool announcing)
{
    if (!contains(document))
        return false;
    if (document == activeDocument() && m_editor.isComposing()) {
        if (m_settings->autoSave())
            scheduleAutosave(document);
        return false; // marked text never reaches the disk
    }
    SavableContents contents;
    try {
        contents = savableContents(document);
    } catch (const MarkdownFileError&) {
        return save(document, announcing); // which reports the failure
    }
    if (contents.url != document->url())
        return save(document, announcing); // a rename never goes through the background
    const QString id = document->id();
    if (m_pendingWrites.contains(id)) {
        m_writeAgainWhenDone.insert(id);
        return true;
    }
    // Only references to the texts are copied here: no encoding, no disk access.
    const NoteWriter::Write write{id, contents.url, contents.text, contents.caret,
                                  document->diskDate(), document->savedText(), ++m_writer.sequence};
    m_workspace.noteWrittenHere(contents.url);
    m_pendingWrites.insert(id, write);
    const QPointer<OpenDocument> weak(document);
    m_writer.start(write, [this, weak, announcing](const NoteWriter::Write& done, const NoteWriter::Outcome& outcome) {
        if (weak)
            backgroundSaveFinished(done, outcome, weak, announcing);
    });
    return true;
}

void AppState::backgroundSaveFinished(const NoteWriter::Write& write, const NoteWriter::Outcome& outcome,
                                      OpenDocument* document, bool announcing)
{
    const auto pending = m_pendingWrites.constFind(document->id());
    if (pending == m_pendingWrites.constEnd() || pending->sequence != write.sequence)
        return; // stale: a synchronous save or finishWritesInFlight took over
    m_pendingWrites.erase(pending);

    bool written = false;
    if (const auto* done = std::get_if<NoteWriter::Written>(&outcome)) {
        document->noteSaved(write.text, done->date); // stays dirty when typing went on meanwhile
        savedHere(document, announcing);
        written = true;
    } else if (const auto* conflict = std::get_if<NoteWriter::Conflicted>(&outcome)) {
        if (conflict->textOnDisk == document->text()) {
            // Somebody else wrote what we hold: nothing to choose between.
            document->noteSaved(conflict->textOnDisk, document->file().modificationDate());
        } else {
            cancelAutosave(document);
            raiseConflict(SyncConflict{QUuid::createUuid(), SyncConflict::Kind::editedBothPlaces, document->url(),
                                       document->title(), conflict->textOnDisk});
        }
    } else if (const auto* failure = std::get_if<NoteWriter::Failed>(&outcome)) {
        reportFileError(MarkdownFileError::notWritable(failure->message), tr("Could Not Save Document"));
    }

    const bool again = m_writeAgainWhenDone.remove(document->id());
    if (again && document->isDirty())
        saveInBackground(document, announcing);
    else if (written && document->isDirty() && m_settings->autoSave())
        scheduleAutosave(document); // what was typed during the write still gets its turn
}

bool AppState::save(OpenDocument* document, bool announcing)
{
    if (document == activeDocument() && m_editor.isComposing()) {
        if (m_settings->autoSave())
            scheduleAutosave(document);
        return false; // marked text never reaches the disk
    }
    m_writer.waitForDisk();
    std::optional<QString> pendingText;
    if (const auto pending = m_pendingWrites.constFind(document->id()); pending != m_pendingWrites.constEnd()) {
        pendingText = pending->text;
        m_pendingWrites.erase(pending);
        m_writeAgainWhenDone.remove(document->id());
    }
    if (const auto conflict = unseenDiskChange(document, pendingText)) {
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
    // Only the first line is handed over: the title never depends on the rest, and a copy of
    // the whole note would cost the main thread milliseconds on a large one.
    const QStringView text = result.text; // a view: indexing a non-const QString would detach it
    qsizetype lineEnd = 0;
    while (lineEnd < text.size() && !markdown::chars::isNewline(text[lineEnd].unicode()))
        ++lineEnd;
    const auto name = NoteTitle::name(text.left(lineEnd).toString());
    if (!name)
        return result;
    const QFileInfo info(result.url.toLocalFile());
    const QString extension = info.suffix();
    if (!NoteTitle::isValidFilename(*name, extension))
        throw MarkdownFileError::invalidName();
    const QString directory = info.absolutePath();
    const QString suffix = extension.isEmpty() ? QString() : u'.' + extension;
    const QUrl candidate = QUrl::fromLocalFile(directory + u'/' + *name + suffix);
    // Equal spellings are the same file; only different ones need symlinks resolved.
    if (QDir::cleanPath(candidate.toLocalFile()) == QDir::cleanPath(result.url.toLocalFile())
        || editor::canonicalPath(candidate) == editor::canonicalPath(result.url))
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

void AppState::finishWritesInFlight(const std::vector<OpenDocument*>& list)
{
    if (m_pendingWrites.isEmpty())
        return;
    const std::vector<OpenDocument*> copy = list;
    for (OpenDocument* document : copy) {
        const auto pending = m_pendingWrites.constFind(document->id());
        if (pending == m_pendingWrites.constEnd())
            continue;
        const NoteWriter::Write write = *pending;
        m_pendingWrites.erase(pending);
        m_writeAgainWhenDone.remove(write.id);
        m_writer.discard(write.id);
        m_writer.waitForDisk();
        // Our own write is now the base of the checks, so the save below does not mistake it
        // for a change made elsewhere. Only when it really landed: a write that met a conflict
        // must still meet it.
        const MarkdownFile file(write.url);
        bool landed = false;
        try {
            landed = file.read(true) == write.text;
        } catch (const MarkdownFileError&) {
        }
        if (landed)
            document->noteSaved(write.text, file.modificationDate());
        save(document, false);
    }
}

void AppState::synchronizeEditorContents(const QString& newText, OpenDocument* document, qsizetype caret)
{
    if (newText == document->text() || document != activeDocument())
        return;
    EditorTextSurface* surface = m_editor.surface();
    // The surface holds the note with LF line ends; the comparison and the edit are in its terms.
    const EditorLineEnds ends = EditorLineEnds::of(document->text());
    if (!surface || surface->documentId() != document->id() || surface->isComposing()
        || ends.toNote(surface->surfaceText()) != document->text())
        return;
    // Replace only what changed, cut at grapheme boundaries, as one undoable step.
    const QString old = ends.toEditor(document->text());
    const QString text = ends.toEditor(newText);
    caret = ends.toEditorOffset(newText, caret);
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
    if (onDisk == document->savedText() || onDisk == textOnTheWay(document) || (besides && onDisk == *besides))
        return std::nullopt;
    return SyncConflict{QUuid::createUuid(), SyncConflict::Kind::editedBothPlaces, document->url(),
                        document->title(), onDisk};
}

}
