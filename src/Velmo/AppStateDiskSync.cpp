// The way back from the disk: the periodic look at open notes, reloads, and the conflict
// between an edit here and a change made elsewhere.
#include "Velmo/AppState.h"

#include <QDir>
#include <QFileInfo>
#include <QGuiApplication>

namespace velmo::app {

using editor::MarkdownFile;
using editor::MarkdownFileError;

void AppState::startSyncMonitoring()
{
    m_syncTimer.setInterval(m_delays.syncIntervalMs);
    connect(&m_syncTimer, &QTimer::timeout, this, &AppState::synchronizeWithDisk);
    m_syncTimer.start();
    if (auto* application = qobject_cast<QGuiApplication*>(QCoreApplication::instance())) {
        connect(application, &QGuiApplication::applicationStateChanged, this, [this](Qt::ApplicationState state) {
            if (state == Qt::ApplicationActive)
                synchronizeWithDisk();
        });
    }
    // The watcher saw files change: look at the open notes now rather than at the next tick.
    connect(&m_workspace, &editor::Workspace::changedOnDisk, this, &AppState::synchronizeWithDisk);
    connect(&m_workspace, &editor::Workspace::watchProblem, this,
            [this](const QString& message) { setStatusMessage(message); });
}

void AppState::synchronizeWithDisk()
{
    if (!m_syncConflict)
        reloadOpenDocumentsChangedOnDisk();
}

void AppState::synchronizeWithDiskNow()
{
    QTimer::singleShot(0, this, &AppState::synchronizeWithDisk);
}

void AppState::reloadOpenDocumentsChangedOnDisk()
{
    const std::vector<OpenDocument*> list = m_documents;
    for (OpenDocument* document : list) {
        const auto date = document->file().modificationDate();
        if (!date || date == document->diskDate())
            continue; // gone (the next write recreates it), or as we left it
        if (document == activeDocument() && m_editor.isComposing())
            continue; // looked at again on the next tick
        QString text;
        try {
            text = document->file().read(true);
        } catch (const MarkdownFileError&) {
            continue;
        }
        if (text == document->savedText() || text == textOnTheWay(document)) {
            document->setDiskDate(date);
            continue;
        }
        if (document->isDirty()) {
            cancelAutosave(document);
            raiseConflict(SyncConflict{QUuid::createUuid(), SyncConflict::Kind::editedBothPlaces, document->url(),
                                       document->title(), text});
            return;
        }
        document->applyDiskContents(text, date);
        m_workspace.bumpContentGeneration();
        setStatusMessage(tr("“%1” was updated from another device.").arg(document->title()));
    }
}

void AppState::resolve(const SyncConflict& conflict, SyncResolution resolution)
{
    OpenDocument* document = nullptr;
    const QString path = editor::canonicalPath(conflict.url);
    for (OpenDocument* open : m_documents) {
        if (editor::canonicalPath(open->url()) == path)
            document = open;
    }
    if (conflict.kind == SyncConflict::Kind::editedBothPlaces) {
        const MarkdownFile file(conflict.url);
        if (resolution == SyncResolution::useOther) {
            if (document)
                document->applyDiskContents(conflict.otherText, file.modificationDate());
        } else {
            // The disk's version is now known, so the save below no longer sees a conflict.
            if (document)
                document->setDiskDate(file.modificationDate());
            if (resolution == SyncResolution::keepBoth)
                saveCopy(conflict);
        }
        if (m_syncConflict && m_syncConflict->id == conflict.id) {
            m_syncConflict.reset();
            emit syncConflictChanged();
        }
        if (document && resolution != SyncResolution::useOther)
            save(document, false);
    } else if (m_syncConflict && m_syncConflict->id == conflict.id) {
        m_syncConflict.reset(); // cloud versions do not exist on this platform
        emit syncConflictChanged();
    }
    m_workspace.rescan();
    emit changed();
}

void AppState::saveCopy(const SyncConflict& conflict)
{
    const QFileInfo info(conflict.url.toLocalFile());
    const QUrl folder = QUrl::fromLocalFile(info.absolutePath());
    const QString name = m_workspace.uniqueName(tr("%1 (Other Device)").arg(conflict.title), info.suffix(), folder);
    const QUrl copy = QUrl::fromLocalFile(QDir(info.absolutePath()).filePath(name));
    m_workspace.noteWrittenHere(copy);
    try {
        MarkdownFile(copy).write(conflict.otherText);
    } catch (const MarkdownFileError& error) {
        reportFileError(error, tr("Could Not Save Document"));
    }
}

}
