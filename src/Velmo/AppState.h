#pragma once

#include "Editor/Model/MarkdownFileError.h"
#include "Editor/Model/Workspace.h"
#include "Editor/Model/WorkspaceFileOperationError.h"
#include "Editor/Model/WorkspaceSession.h"
#include "Editor/Settings/EditorSettings.h"
#include "Velmo/AppAlert.h"
#include "Velmo/EditorHandle.h"
#include "Velmo/NoteWriter.h"
#include "Velmo/OpenDocument.h"
#include "Velmo/SettingsTab.h"
#include "Velmo/SidebarMode.h"
#include "Velmo/SyncConflict.h"

#include <QHash>
#include <QObject>
#include <QSet>
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

    // Saving in the background, and the way back from changes made elsewhere.
    struct SavingDelays {
        int textDebounceMs = 150;
        int minimumAutosaveMs = 500; // the autosave delay of the settings is never shorter
        int syncIntervalMs = 2000;   // the periodic look at the disk
    };
    // For tests and automation, before documents are opened.
    void setSavingDelays(const SavingDelays& delays);
    NoteWriter& writer() { return m_writer; }
    void scheduleAutosave(OpenDocument* document);
    [[nodiscard]] bool isAutosaveScheduled(const OpenDocument* document) const;
    bool saveInBackground(OpenDocument* document, bool announcing);
    void backgroundSaveFinished(const NoteWriter::Write& write, const NoteWriter::Outcome& outcome,
                                OpenDocument* document, bool announcing);
    // The text of the write in flight for the document, if any.
    std::optional<QString> textOnTheWay(const OpenDocument* document) const;
    void reloadOpenDocumentsChangedOnDisk();
    void synchronizeWithDisk();
    // The same, on the next turn of the event loop.
    void synchronizeWithDiskNow();
    void resolve(const SyncConflict& conflict, SyncResolution resolution);
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
    // Closes every note (refused when one cannot be saved), the folder, and forgets the session.
    void closeFolder();
    // Opens the paths among the process's arguments (past the first): folders, then notes.
    void openLaunchArguments(const QStringList& arguments);
    // The user's quit: panels go first, then `terminationRequested` asks the shell to end.
    void quit();
    void setQuitting(bool quitting) { m_isQuitting = quitting; }

    // Panels.
    bool isSettingsVisible() const { return m_isSettingsVisible; }
    bool isFindVisible() const { return m_isFindVisible; }
    bool isReplaceVisible() const { return m_isReplaceVisible; }
    bool isSearchVisible() const { return m_isSearchVisible; }
    const QString& findQuery() const { return m_findQuery; }
    int settingsRequestID() const { return m_settingsRequestID; }
    SettingsTab settingsTab() const { return m_settingsTab; }
    SidebarMode sidebarMode() const { return m_sidebarMode; }
    const std::optional<QString>& selectedTag() const { return m_selectedTag; }
    void showSettings();
    void closeSettings();
    void setFindVisible(bool visible);
    void setFindQuery(const QString& query);
    void setSearchVisible(bool visible);
    void setSettingsTab(SettingsTab tab);
    void setSidebarMode(SidebarMode mode);
    void selectTag(const std::optional<QString>& tag);
    // The rest of the find bar, the graph, the gutter and the export requests: plain observable
    // values that their panels read and write.
    enum class ExportKind { html, pdf, png };
    struct SidebarReveal {
        QUrl url;
        int token = 0;
    };
    const QString& findReplacement() const { return m_findReplacement; }
    bool findCaseSensitive() const { return m_findCaseSensitive; }
    bool findWholeWord() const { return m_findWholeWord; }
    int findIndex() const { return m_findIndex; }
    bool graphVisible() const { return m_graphVisible; }
    bool showLineNumbers() const { return m_showLineNumbers; }
    const std::optional<SidebarReveal>& sidebarReveal() const { return m_sidebarReveal; }
    const std::optional<ExportKind>& exportRequested() const { return m_exportRequested; }
    bool printRequested() const { return m_printRequested; }
    void setReplaceVisible(bool visible);
    void setFindReplacement(const QString& replacement);
    void setFindCaseSensitive(bool on);
    void setFindWholeWord(bool on);
    void setFindIndex(int index);
    void setGraphVisible(bool visible);
    void hideGraph() { setGraphVisible(false); }
    void setShowLineNumbers(bool on);
    // Asks the sidebar to scroll to a row; each request has a fresh token.
    void revealInSidebar(const QUrl& url);
    void requestExport(const std::optional<ExportKind>& kind);
    void setPrintRequested(bool requested);
    // Settings, find and the pickers; the folder search panel is not transient.
    bool hasTransientPanels() const;
    void dismissTransientPanels();

signals:
    void changed();
    void documentsChanged();
    void activeDocumentChanged();
    void statusMessageChanged();
    void alertChanged();
    void panelsChanged();
    // Asks the shell to end the process; it answers through its own quit handshake.
    void terminationRequested();
    void syncConflictChanged();

private:
    void observe();
    void observe(OpenDocument* document);
    void setActiveID(const std::optional<QString>& id);
    void cancelAutosave(OpenDocument* document);
    bool contains(const OpenDocument* document) const;
    void raiseConflict(const SyncConflict& conflict);
    void startSyncMonitoring();
    void saveCopy(const SyncConflict& conflict);
    // Assigns a panel value, notifying only a real change.
    template<typename T>
    void assignPanel(T& field, const T& value)
    {
        if (field == value)
            return;
        field = value;
        emit panelsChanged();
        emit changed();
    }

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
    bool m_isSettingsVisible = false;
    bool m_isFindVisible = false;
    bool m_isReplaceVisible = false;
    bool m_isSearchVisible = false;
    QString m_findQuery;
    int m_settingsRequestID = 0;
    SettingsTab m_settingsTab = SettingsTab::general;
    SidebarMode m_sidebarMode = SidebarMode::files;
    std::optional<QString> m_selectedTag;
    QString m_findReplacement;
    bool m_findCaseSensitive = false;
    bool m_findWholeWord = false;
    int m_findIndex = 0;
    bool m_graphVisible = false;
    bool m_showLineNumbers = false;
    std::optional<SidebarReveal> m_sidebarReveal;
    int m_sidebarRevealCount = 0;
    std::optional<ExportKind> m_exportRequested;
    bool m_printRequested = false;
    const bool m_persistsSession;

    QTimer m_sessionSave;
    QTimer m_settingsPersist;
    QTimer m_workspaceDebounce;
    // Per document: the 150 ms text debounce and the pending autosave.
    QHash<QString, QTimer*> m_textDebounces;
    QHash<QString, QTimer*> m_autosaves;
    SavingDelays m_delays;
    QHash<QString, NoteWriter::Write> m_pendingWrites; // at most one write in flight per document
    QSet<QString> m_writeAgainWhenDone;
    QTimer m_syncTimer;
    NoteWriter m_writer;
};

}
