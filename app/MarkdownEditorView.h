#pragma once

#include "MarkdownEngine/Layout/MarkdownDecorationPainter.h"
#include "MarkdownEngine/Layout/MarkdownLayoutManager.h"
#include "MarkdownEngine/Layout/MarkdownTextStorage.h"
#include "MarkdownEngine/Editing/MarkdownTableCopyFormat.h"
#include "MarkdownEngine/Layout/MarkdownTextView.h"
#include "MarkdownEngine/Layout/MarkdownUndoSelections.h"
#include "Velmo/EditorTextSurface.h"

#include <QTextEdit>
#include <optional>

namespace velmo::markdown {
class MarkdownEditorCoordinator;
}

namespace velmo::ui {

// The live editor's surface: Qt's text editing (keys, mouse, input methods, undo, clipboard)
// over a storage that holds the plain note, laid out by the Markdown layout manager. It
// translates events for the coordinator and draws what the fragment store lists; it decides
// nothing about Markdown itself.
class MarkdownEditorView : public QTextEdit, public markdown::MarkdownTextView, public app::EditorTextSurface {
    Q_OBJECT

public:
    explicit MarkdownEditorView(QWidget* parent = nullptr);
    ~MarkdownEditorView() override;

    void setCoordinator(markdown::MarkdownEditorCoordinator* coordinator) { m_coordinator = coordinator; }
    void setDocumentId(const QString& id) { m_documentId = id; }
    markdown::MarkdownLayoutManager& layoutManager() { return *m_layout; }
    const markdown::MarkdownDecorationPainter& decorations() const { return m_painter; }
    // The composed text's range while an input method composes.
    std::optional<std::pair<int, int>> markedRange() const;
    QString toPlainText() const { return m_storage.text(); }
    // Undo and redo that put back the selection a command's edit had before, or chose.
    void undoEdit();
    void redoEdit();
    // The table under the caret onto the clipboard: TSV as text with HTML and CSV beside it,
    // or one format alone. False outside a table.
    bool copyTable(std::optional<markdown::MarkdownTableCopyFormat> format = std::nullopt);
    // Keys the window's menus own, although Qt's text editing knows them (Ctrl+K deletes to
    // the end of the line on X11): they reach the menu, not the text.
    void reserveShortcuts(QList<QKeySequence> shortcuts) { m_reservedShortcuts = std::move(shortcuts); }

    // MarkdownTextView
    markdown::MarkdownTextStorage& textStorage() override { return m_storage; }
    std::vector<markdown::MarkdownSourceRange> selectedRanges() const override;
    void setSelectedRange(markdown::MarkdownSourceRange range) override;
    bool hasMarkedText() const override { return m_marked; }
    int inputTransactionDepth() const override { return m_transactionDepth; }
    bool isApplyingStyle() const override { return m_applying; }
    void setApplyingStyle(bool applying) override { m_applying = applying; }
    QPointF visibleOrigin() const override;
    void setVisibleOrigin(QPointF origin) override;
    void installFragments(const markdown::MarkdownEditorFragmentStore& store) override;
    int fragmentRevision() const override { return m_fragmentRevision; }
    void installSelectionOverlay(const markdown::MarkdownEditorFragmentStore& overlay,
                                 const std::vector<markdown::MarkdownSourceRange>& ranges) override;
    void setTemporaryHighlights(std::vector<markdown::MarkdownSourceRange> ranges, QColor color) override;
    void applyConfiguration(const markdown::MarkdownEditorConfiguration& config) override;
    void scrollRangeToVisible(markdown::MarkdownSourceRange range) override;
    void applyEdit(markdown::MarkdownSourceRange range, const QString& replacement,
                   markdown::MarkdownSourceRange selection) override;

    // EditorTextSurface
    QString surfaceText() const override { return m_storage.text(); }
    int selectionStart() const override;
    int selectionLength() const override;
    bool isComposing() const override { return m_marked; }
    void replaceText(int location, int length, const QString& replacement, int caret) override;
    QString documentId() const override { return m_documentId; }
    QString documentIdentity() const { return m_documentId; }

protected:
    bool event(QEvent* event) override;
    void inputMethodEvent(QInputMethodEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    // True when the click at `point` (viewport coordinates) hit something that acts.
    bool activate(const QPoint& point, bool force);
    // Return, Tab, Backspace and characters typed over a selection, as the editing keys see
    // them; true when the key was used.
    bool handleEditingKey(QKeyEvent* event);
    void updateOverscroll();

    markdown::MarkdownTextStorage m_storage;
    markdown::MarkdownLayoutManager* m_layout; // owned by the storage's document
    markdown::MarkdownDecorationPainter m_painter;
    markdown::MarkdownUndoSelections m_undoSelections;
    markdown::MarkdownEditorCoordinator* m_coordinator = nullptr;
    markdown::MarkdownEditorConfiguration::OverscrollPolicy m_overscroll;
    QString m_documentId;
    QList<QKeySequence> m_reservedShortcuts;
    int m_markedStart = -1;
    int m_markedLength = 0;
    int m_transactionDepth = 0;
    int m_fragmentRevision = 0;
    bool m_marked = false;
    bool m_applying = false;
    bool m_textChanging = false; // an edit is under way and its text change not yet reported
    bool m_traceInput = false;
};

}
