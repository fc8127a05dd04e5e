#pragma once

#include "MarkdownEngine/Layout/MarkdownDecorationPainter.h"
#include "MarkdownEngine/Layout/MarkdownLayoutManager.h"
#include "MarkdownEngine/Layout/MarkdownTextStorage.h"
#include "MarkdownEngine/Layout/MarkdownTextView.h"
#include "MarkdownEngine/Layout/MarkdownUndoSelections.h"

#include <QObject>

namespace velmo::markdown {

class MarkdownEditorCoordinator;

// A text view without a window: the storage, its layout and a selection, with the input path
// reduced to edits and compositions. Tests, benchmarks and windowless runs drive the
// coordinator through it exactly as the widget does.
class MarkdownHeadlessTextView final : public QObject, public MarkdownTextView {
    Q_OBJECT

public:
    explicit MarkdownHeadlessTextView(QObject* parent = nullptr);

    void setCoordinator(MarkdownEditorCoordinator* coordinator) { m_coordinator = coordinator; }
    MarkdownLayoutManager& layout() { return *m_layout; }
    MarkdownDecorationPainter& painter() { return m_painter; }

    // Replaces the selection with `text` as one undoable edit; the caret goes after it.
    void insert(const QString& text);
    // As the widget's: a command's edit undone or redone puts its selection back.
    void undo();
    void redo();
    // An input method's composition: marked text is not in the storage until committed.
    void setMarkedText(const QString& text);
    void commitMarkedText(const QString& text);
    void setSelection(MarkdownSourceRange range);
    void setInputTransactionDepth(int depth) { m_depth = depth; }

    MarkdownTextStorage& textStorage() override { return m_storage; }
    std::vector<MarkdownSourceRange> selectedRanges() const override;
    void setSelectedRange(MarkdownSourceRange range) override;
    bool hasMarkedText() const override { return !m_marked.isEmpty(); }
    int inputTransactionDepth() const override { return m_depth; }
    bool isApplyingStyle() const override { return m_applying; }
    void setApplyingStyle(bool applying) override { m_applying = applying; }
    QPointF visibleOrigin() const override { return {}; }
    void setVisibleOrigin(QPointF) override {}
    void installFragments(const MarkdownEditorFragmentStore& store) override;
    int fragmentRevision() const override { return m_fragmentRevision; }
    void installSelectionOverlay(const MarkdownEditorFragmentStore& overlay,
                                 const std::vector<MarkdownSourceRange>& ranges) override
    {
        m_painter.setOverlay(overlay, ranges);
    }
    void setTemporaryHighlights(std::vector<MarkdownSourceRange> ranges, QColor color) override;
    void applyConfiguration(const MarkdownEditorConfiguration& config) override;
    void scrollRangeToVisible(MarkdownSourceRange) override {}
    void applyEdit(MarkdownSourceRange range, const QString& replacement, MarkdownSourceRange selection) override;

private:
    MarkdownTextStorage m_storage;
    MarkdownLayoutManager* m_layout; // owned by the storage's document
    MarkdownDecorationPainter m_painter;
    MarkdownUndoSelections m_undoSelections;
    MarkdownEditorCoordinator* m_coordinator = nullptr;
    MarkdownSourceRange m_selection;
    QString m_marked;
    int m_depth = 0;
    bool m_applying = false;
    int m_fragmentRevision = 0;
};

}
