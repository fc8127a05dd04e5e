#pragma once

#include "Editor/Model/MarkdownFileError.h"
#include "Editor/Model/Workspace.h"
#include "Editor/Model/WorkspaceFileOperationError.h"
#include "Editor/Model/WorkspaceSession.h"
#include "Editor/Settings/EditorSettings.h"
#include "Velmo/AppAlert.h"
#include "Velmo/EditorHandle.h"
#include "Velmo/OpenDocument.h"
#include "Velmo/SyncConflict.h"

#include <QHash>
#include <QObject>
#include <QTimer>
#include <QUrl>
#include <memory>
#include <optional>
#include <vector>

namespace velmo::app {

// The one object in which the application's logic lives, on the main thread for the whole run.
// It needs no window: the editor is reached through `editor`, whose references may be empty.
class AppState : public QObject {
    Q_OBJECT

public:
    // `settings` absent: the user's settings store. `restoresSession` false gives a state that
    // touches neither the session file nor the default folder (tests, automation).
    explicit AppState(std::unique_ptr<editor::EditorSettings> settings = nullptr, bool restoresSession = true);
    ~AppState() override;
    AppState(const AppState&) = delete;
    AppState& operator=(const AppState&) = delete;

    editor::Workspace& workspace() { return m_workspace; }
    editor::EditorSettings& settings() { return *m_settings; }
    editor::WorkspaceSession& session() { return m_session; }
    const std::vector<OpenDocument*>& documents() const { return m_documents; }
    const std::optional<QString>& activeID() const { return m_activeID; }
    OpenDocument* activeDocument() const;
    EditorHandle& editor() { return m_editor; }
    const std::optional<QString>& statusMessage() const { return m_statusMessage; }
    const std::optional<AppAlert>& alert() const { return m_alert; }
    bool persistsSession() const { return m_persistsSession; }
    int otherNotesSaved() const { return m_otherNotesSaved; }
    bool isQuitting() const { return m_isQuitting; }
    const std::optional<SyncConflict>& syncConflict() const { return m_syncConflict; }

    void setStatusMessage(const std::optional<QString>& message);
    void dismissAlert();

    // Documents.
    OpenDocument* open(const QUrl& url, bool select = true);
    bool activate(OpenDocument* document);
    void selectDocument(const std::optional<QString>& id);
    void replaceOpenDocument(std::unique_ptr<OpenDocument> document);
    void detach(OpenDocument* document);
    bool close(OpenDocument* document);
    bool closeAll();
    bool goHome();
    void retargetDocuments(const std::vector<std::pair<OpenDocument*, QUrl>>& pairs);
    std::vector<OpenDocument*> documentsUnder(const QUrl& url) const;
    bool prepareForDocumentSwitch();
    QString windowTitle() const;
    void warn(const QString& title, const std::optional<QString>& message);
    void reportFileError(const editor::MarkdownFileError& error, const QString& title);
    void openAny(const QUrl& url);

    // Saving (the synchronous path).
    struct SavableContents {
        QString text;
        QUrl url;
        qsizetype caret = 0;
    };
    bool save(OpenDocument* document, bool announcing);
    SavableContents savableContents(OpenDocument* document) const; // throws MarkdownFileError
    void write(const QString& text, const QUrl& from, const QUrl& to);   // throws MarkdownFileError
    void savedHere(OpenDocument* document, bool announcing);
    bool saveAll();
    bool saveDirtyDocuments(const std::vector<OpenDocument*>& list);
    bool saveDirtyDocuments() { return saveDirtyDocuments(m_documents); }
    void finishWritesInFlight(const std::vector<OpenDocument*>& list);
    void synchronizeEditorContents(const QString& text, OpenDocument* document, qsizetype caret);
    // A conflict when the file changed since we last saw it and holds none of our texts.
    std::optional<SyncConflict> unseenDiskChange(OpenDocument* document, const std::optional<QString>& besides) const;

    // File operations (AppStateFileOperations.cpp). None throws: a failure is reported under
    // "Could Not Complete File Operation" and leaves files and open notes as they were.
    OpenDocument* newNote(const QString& name, const std::optional<QUrl>& folder = {});
    std::optional<QUrl> newFolder(const QString& name, const std::optional<QUrl>& folder = {});
    bool renameActive(const QString& name);
    bool rename(const QUrl& url, const QString& name);
    OpenDocument* duplicate(const QUrl& url);
    bool deleteActive();
    // To the Trash, after saving what is open below it so the Trash holds the last edits.
    bool deleteItem(const QUrl& url);
    // Writes a copy under `url` and continues there; the old file stays where it was.
    bool saveAs(OpenDocument* document, const QUrl& url);
    bool move(const QUrl& url, const QUrl& folder);
    void place(const QUrl& url, const std::optional<QUrl>& before);
    std::optional<QList<QUrl>> importFiles(const QList<QUrl>& urls, const QUrl& folder);
    // Items from inside the workspace are moved (or only placed, when they already lie in the
    // folder); items from outside are imported. `positioned`: a drop between rows.
    bool receiveSidebarDrop(const QList<QUrl>& urls, const QUrl& folder, const std::optional<QUrl>& before,
                            bool positioned);
    void reportFileError(const editor::WorkspaceFileOperationError& error, const QString& title);

    // Launch, session, quit.
    void openWorkspace(const QUrl& url);
    void restoreSession();
    void openDefaultFolderIfNeeded();
    void scheduleSessionSave();
    void captureSession();
    bool prepareToTerminate();

signals:
    void changed();
    void documentsChanged();
    void activeDocumentChanged();
    void statusMessageChanged();
    void alertChanged();

private:
    void observe();
    void observe(OpenDocument* document);
    void setActiveID(const std::optional<QString>& id);
    void cancelAutosave(OpenDocument* document);
    bool contains(const OpenDocument* document) const;
    void raiseConflict(const SyncConflict& conflict);

    std::unique_ptr<editor::EditorSettings> m_settings;
    editor::Workspace m_workspace;
    std::vector<OpenDocument*> m_documents; // owned; deleted on detach
    std::optional<QString> m_activeID;
    EditorHandle m_editor;
    editor::WorkspaceSession m_session;
    std::optional<QString> m_statusMessage;
    std::optional<AppAlert> m_alert;
    std::optional<SyncConflict> m_syncConflict;
    int m_otherNotesSaved = 0;
    bool m_isQuitting = false;
    const bool m_persistsSession;

    QTimer m_sessionSave;
    QTimer m_settingsPersist;
    QTimer m_workspaceDebounce;
    // Per document: the 150 ms text debounce and the pending autosave.
    QHash<QString, QTimer*> m_textDebounces;
    QHash<QString, QTimer*> m_autosaves;
};

}
