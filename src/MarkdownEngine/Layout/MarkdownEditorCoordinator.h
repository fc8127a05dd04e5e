#pragma once

#include "MarkdownEngine/Configuration/MarkdownEditorConfiguration.h"
#include "MarkdownEngine/Core/MarkdownDocument.h"
#include "MarkdownEngine/Core/MarkdownSourceEditorState.h"
#include "MarkdownEngine/Core/MarkdownTextStatistics.h"
#include "MarkdownEngine/Core/OutlineEntry.h"
#include "MarkdownEngine/Editing/MarkdownEditingCommands.h"
#include "MarkdownEngine/Editing/MarkdownEditorKeys.h"
#include "MarkdownEngine/Layout/EditorReveals.h"
#include "MarkdownEngine/Styling/MarkdownASTStyler.h"
#include "MarkdownEngine/Styling/MarkdownEditorAttachmentFactory.h"
#include "MarkdownEngine/Styling/MarkdownEditorFragmentStore.h"

#include <QHash>
#include <QObject>
#include <QUrl>
#include <memory>
#include <optional>
#include <vector>

namespace velmo::markdown {

class MarkdownEditorCoordinator;
class MarkdownTextView;

// Who hears from the coordinator: the host that keeps the open note in step with the editor.
class MarkdownEditorCoordinatorDelegate {
public:
    virtual ~MarkdownEditorCoordinatorDelegate() = default;
    virtual void coordinatorDidChangeText(MarkdownEditorCoordinator& coordinator) = 0;
    virtual void coordinatorDidChangeSelection(MarkdownEditorCoordinator& coordinator,
                                               const MarkdownSourceEditorState& state) = 0;
    virtual void coordinatorDidChangeStatistics(MarkdownEditorCoordinator& coordinator,
                                                const MarkdownTextStatistics& statistics) = 0;
    virtual void coordinatorDidChangeOutline(MarkdownEditorCoordinator&, const std::vector<OutlineEntry>&) {}
    virtual void coordinatorDidActivateWikiLink(const QString& /*target*/, const std::optional<QString>& /*heading*/) {}
    virtual void coordinatorDidActivateTag(const QString& /*tag*/) {}
    virtual void coordinatorDidOpenURLs(const std::vector<QUrl>& /*urls*/) {}
};

// The inline formatting at the selection, for the toolbar and menus.
struct InlineSelectionState {
    bool bold = false;
    bool italic = false;
    bool highlight = false;
    bool strikethrough = false;
    bool code = false;
    bool operator==(const InlineSelectionState&) const = default;
};

// The live restyle loop between the text view and the pure parser and styler. On each change
// of text or caret it does nothing, restyles the blocks around the caret, or parses and styles
// the whole note and copies only the changed lines into the storage. Main thread only.
//
// Guarantee: `isRestyled` is set only after a full pass over the storage's current text with
// the current configuration; while it is clear, the next pass copies every attribute.
class MarkdownEditorCoordinator : public QObject {
    Q_OBJECT

public:
    MarkdownEditorCoordinator(MarkdownTextView& textView, MarkdownEditorConfiguration config, QObject* parent = nullptr);
    ~MarkdownEditorCoordinator() override;

    // Fields, in the order of the design; public where the driver and tests read them.
    MarkdownTextView& textView;
    MarkdownEditorConfiguration config;
    std::unique_ptr<MarkdownEditorAttachmentFactory> attachmentFactory;
    MarkdownDocument document;
    // How `document` came from the one before it, when it was reparsed from it.
    std::optional<MarkdownDocumentChange> documentChange;
    MarkdownEditorFragmentStore fragments;
    MarkdownTextStatistics statistics;
    MarkdownSourceEditorState editorState;
    std::vector<OutlineEntry> outlineEntries;
    QHash<QString, MarkdownStyledText> codeCache; // by language and content
    QString lastText;
    std::vector<MarkdownSourceRange> lastActiveLines;
    bool scheduled = false;
    bool isRestyled = false;
    MarkdownParseOptions parseOptions;
    int textRevision = 0;
    int cachedStatisticsRevision = -1;
    MarkdownTextStatistics cachedDocumentStatistics;
    int cachedFenceRevision = -1;
    std::vector<int> cachedFenceLineStarts;
    int cachedCodeRangesRevision = -1;
    std::vector<MarkdownSourceRange> cachedCodeRanges;
    std::optional<QString> lastOutlineText;
    QHash<QString, MarkdownStyledText> lastHighlightedCode;
    // Ranges of the caret moves' fragments that hide or show with the selection; the store's
    // own are looked up where a move lands.
    std::vector<MarkdownSourceRange> selectionSensitiveRanges;
    std::optional<MarkdownSourceRange> lastFormulaUnderCaret;
    int fullStylePassCount = 0; // passes over the text, restyles after an edit included
    size_t restyledBlockCount = 0; // blocks the last of them styled
    int selectionStylePassCount = 0;
    int statisticsMeasurementCount = 0;
    double maximumEmbedWidth = 620.0;
    std::vector<MarkdownSourceRange> findHighlights;
    MarkdownEditorCoordinatorDelegate* delegate = nullptr; // not owned; cleared by its owner
    QString documentId;
    std::optional<InlineSelectionState> inlineSelection;

    // Caret moves restyle a few blocks without rebuilding the whole store: their fragments
    // stand over `overlayRanges` until the next full pass folds them in.
    MarkdownEditorFragmentStore selectionOverlay;
    std::vector<MarkdownSourceRange> overlayRanges;
    // The hit target at a position, the overlay's first where it covers the position.
    [[nodiscard]] const MarkdownEditorFragment* hitTarget(int position) const;

    // The range the last full pass wrote into the storage: what tests and traces read.
    MarkdownSourceRange lastAppliedRange;

    void scheduleRestyle();
    void restyleNow();
    void restyleSelectionNow();
    void setText(const QString& text, int caretAt);
    void update(const MarkdownEditorConfiguration& newConfig);
    void attachmentDidBecomeReady();

    void select(MarkdownSourceRange range);
    void selectAndReveal(MarkdownSourceRange range);
    bool revealHeading(const QString& title);
    // `line` is 1-based; the first match of `query` on it is selected, else the line's start.
    void revealLine(int line, const QString& query);
    // Takes the queue's requests in order.
    void performReveals(EditorReveals& reveals);

    void applyFindHighlights();
    void refreshOutline();
    [[nodiscard]] InlineSelectionState formatState() const;
    MarkdownTextStatistics measureStatistics();

    // What the text view reports.
    void textViewDidChange();
    void textViewDidChangeSelection();
    void textViewDidChangeMarkedText();
    void textViewDidInsertNewline() {}
    void textViewDidToggleCheckbox(MarkdownSourceRange box);
    void textViewDidActivateWikiLink(const QString& target, const std::optional<QString>& heading);
    void textViewDidActivateTag(const QString& tag);
    void textViewDidOpenURL(const QUrl& url);

    // Editing commands and the structural keys, each one undoable change of the text. They
    // answer whether they changed anything; a key that did not keeps its usual meaning.
    bool perform(const MarkdownEditorCommand& command);
    bool handleKey(MarkdownEditorKeys::Key key);
    bool handleTyped(QChar character);
    // Makes the edit, when there is one; false without.
    bool applyEdit(const std::optional<MarkdownEditingCommands::Edit>& edit);

    [[nodiscard]] QString text() const;
    [[nodiscard]] MarkdownSourceRange selectedRange() const;
    [[nodiscard]] bool isComposing() const;

    // The styler's request for the current state.
    [[nodiscard]] MarkdownASTStyler::Request request() const;
    [[nodiscard]] MarkdownSourceEditorState makeEditorState() const;
    // The lines a full pass must write: active lines, old and new, and the changed text.
    [[nodiscard]] MarkdownSourceRange dirtyRange(const std::vector<MarkdownSourceRange>& activeLines) const;
    [[nodiscard]] MarkdownSourceRange changedTextRange() const;

protected:
    bool event(QEvent* event) override;

private:
    // Replaced trees and stores are freed after the frame, not on the keystroke's path: a
    // large note's take a tenth of a pass to free, and nothing reads them once replaced.
    void retire(MarkdownDocument&& old);
    void retire(MarkdownEditorFragmentStore&& old);
    void postRelease();
    QHash<QString, MarkdownStyledText> highlightedCode();
    void apply(const MarkdownASTStyler::Result& result, const std::vector<MarkdownSourceRange>& activeLines,
               bool forceAllAttributes);
    // The pass over the text: from the store when `change` says how the document came from the
    // one it was made for, and nothing else changed since; a full one otherwise.
    MarkdownASTStyler::Result styleFromStore(const std::optional<MarkdownDocumentChange>& change);
    void installStore(MarkdownEditorFragmentStore store);
    // Writes the styled text over the lines `range` touches.
    void copyStyled(const MarkdownStyledNote& styled, MarkdownSourceRange range);
    void refreshInlineSelection();
    // Moves the outline over an edit from `before` to `after` that cannot change it; false
    // when the outline must be read again.
    bool shiftOutline(const QString& before, const QString& after);
    // Requests posted on the bus become commands of this editor.
    void listenToBus();
    [[nodiscard]] MarkdownEditorKeys::Options keyOptions() const;
    void tellStatistics();
    void traceStorage(const char* label) const;
    void trace(const MarkdownStyledNote& final) const;
    [[nodiscard]] MarkdownSourceRange alignedToTables(MarkdownSourceRange range) const;
    [[nodiscard]] MarkdownTextAttributes baseAttributes() const;

    bool m_traceStyle = false;
    MarkdownDocument m_retiredDocument;
    // Whether `fragments` was made with today's configuration, services and embed width, so
    // that the pass after an edit may build on it.
    bool m_storeReusable = false;
    double m_storeEmbedWidth = 0;
    MarkdownEditorFragmentStore m_retiredStore;
    bool m_releasePosted = false;
    // The text `cachedDocumentStatistics` counts: the next count reads only the lines changed since.
    QString m_statisticsText;
};

}
