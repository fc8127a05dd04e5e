#pragma once

#include "MarkdownEngine/Core/MarkdownSourceRange.h"

#include <QColor>
#include <QPointF>
#include <QString>
#include <vector>

namespace velmo::markdown {

class MarkdownTextStorage;
class MarkdownEditorFragmentStore;
struct MarkdownEditorConfiguration;

// What the coordinator asks of the text view: its storage, selection and composition state,
// and the places where styling results go. The widget implements it; so does a headless view
// for tests and benchmarks.
class MarkdownTextView {
public:
    virtual ~MarkdownTextView() = default;

    virtual MarkdownTextStorage& textStorage() = 0;
    // Clamped to the text; at least one range (the caret).
    [[nodiscard]] virtual std::vector<MarkdownSourceRange> selectedRanges() const = 0;
    virtual void setSelectedRange(MarkdownSourceRange range) = 0;
    // An input method's composition is under way.
    [[nodiscard]] virtual bool hasMarkedText() const = 0;
    // Edits grouped by a command that is still running: styling waits for its end.
    [[nodiscard]] virtual int inputTransactionDepth() const = 0;
    // While set, the selection and text notifications the view makes are ignored.
    [[nodiscard]] virtual bool isApplyingStyle() const = 0;
    virtual void setApplyingStyle(bool applying) = 0;
    [[nodiscard]] virtual QPointF visibleOrigin() const = 0;
    virtual void setVisibleOrigin(QPointF origin) = 0;

    // A new fragment store for decorations and hit targets; raises the view's revision. The
    // store stays the caller's and is valid until the next call.
    virtual void installFragments(const MarkdownEditorFragmentStore& store) = 0;
    [[nodiscard]] virtual int fragmentRevision() const = 0;
    // Fragments restyled for caret moves since the last full pass; over `ranges` they stand in
    // for the store's. Both stay the caller's until the next call.
    virtual void installSelectionOverlay(const MarkdownEditorFragmentStore& overlay,
                                         const std::vector<MarkdownSourceRange>& ranges) = 0;
    // Drawn over the text without entering the storage (find matches).
    virtual void setTemporaryHighlights(std::vector<MarkdownSourceRange> ranges, QColor color) = 0;
    virtual void applyConfiguration(const MarkdownEditorConfiguration& config) = 0;
    // Scrolls so that the range is visible.
    virtual void scrollRangeToVisible(MarkdownSourceRange range) = 0;
    // Replaces `range` by `replacement` as one undoable step and selects `selection`; undoing
    // the step puts back the selection the view had before it.
    virtual void applyEdit(MarkdownSourceRange range, const QString& replacement, MarkdownSourceRange selection) = 0;
    virtual void refreshTypingAttributesAtCaret() {}
    virtual void resetInputNotifications() {}
};

}
