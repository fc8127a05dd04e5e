#pragma once

#include "MarkdownEngine/Layout/MarkdownEditorCoordinator.h"
#include "Velmo/EditorLineEnds.h"
#include "Velmo/OpenDocument.h"

#include <QObject>
#include <QPointer>
#include <QUrl>
#include <functional>
#include <optional>

namespace velmo::app {

class AppState;
class OpenDocument;

// Keeps the open note and the live editor in step: edits and caret moves reach the document,
// text changed by the program reaches the editor, and the editor's statistics and outline
// reach the window through the callbacks.
class EditorHostCoordinator : public QObject, public markdown::MarkdownEditorCoordinatorDelegate {
    Q_OBJECT

public:
    EditorHostCoordinator(AppState& state, markdown::MarkdownEditorCoordinator& coordinator, QObject* parent = nullptr);
    ~EditorHostCoordinator() override;

    // Shows `document` (or nothing) in the editor; its caret is clamped by the editor.
    void setDocument(OpenDocument* document);
    OpenDocument* document() const { return m_document; }
    // Text changed by the logic (a reload, a title rewrite) reaches the editor.
    void synchronizeDocument();
    bool isEditing() const { return m_isEditing; }

    std::function<void(const markdown::MarkdownTextStatistics&)> onStatistics;
    std::function<void(const std::vector<markdown::OutlineEntry>&)> onOutline;
    std::function<void(const markdown::InlineSelectionState&)> onFormatState;
    std::function<void(const QString& target, const std::optional<QString>& heading)> onWikiLink;
    std::function<void(const std::vector<QUrl>&)> onOpenURLs;
    std::function<void(const QString&)> onStatus;
    std::function<void(const QString& title, const QString& message)> onAlert;
    std::function<void()> onTextChange;

    void coordinatorDidChangeText(markdown::MarkdownEditorCoordinator& coordinator) override;
    void coordinatorDidChangeSelection(markdown::MarkdownEditorCoordinator& coordinator,
                                       const markdown::MarkdownSourceEditorState& state) override;
    void coordinatorDidChangeStatistics(markdown::MarkdownEditorCoordinator& coordinator,
                                        const markdown::MarkdownTextStatistics& statistics) override;
    void coordinatorDidChangeOutline(markdown::MarkdownEditorCoordinator& coordinator,
                                     const std::vector<markdown::OutlineEntry>& outline) override;
    void coordinatorDidActivateWikiLink(const QString& target, const std::optional<QString>& heading) override;
    void coordinatorDidActivateTag(const QString& tag) override;
    void coordinatorDidOpenURLs(const std::vector<QUrl>& urls) override;

private:
    void publish();
    // The open note's text and caret as the editor holds them, and the editor's caret as the
    // note's offset.
    QString editorText() const;
    int editorCaret() const;
    qsizetype noteCaret() const;
    // The window's default wiring of the callbacks.
    void installDefaultCallbacks();

    AppState& m_state;
    markdown::MarkdownEditorCoordinator& m_coordinator;
    QPointer<OpenDocument> m_document;
    EditorLineEnds m_lineEnds;
    bool m_isEditing = false;
    std::optional<markdown::InlineSelectionState> m_formatState;
};

}
