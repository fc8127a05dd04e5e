#pragma once

#include "MarkdownEngine/Core/MarkdownSourceRange.h"

#include <QMetaObject>
#include <functional>
#include <map>
#include <optional>

class QTextDocument;

namespace velmo::markdown {

// The selections around edits that commands and keys made, so that undoing one puts back the
// selection the writer had before it and redoing it the one the command chose; Qt's undo alone
// leaves a caret where the edit was.
//
// An edit is known by where its undo step starts and ends in the document's undo stack, counted
// in Qt's undo commands (one edit may be several). Undo and redo move over whole steps, so an
// entry applies exactly when the stack moves from one of its ends to the other and the text has
// the length it had there; a step that overwrote the redo stack drops the entries past it.
class MarkdownUndoSelections {
public:
    explicit MarkdownUndoSelections(QTextDocument& document);
    ~MarkdownUndoSelections();
    MarkdownUndoSelections(const MarkdownUndoSelections&) = delete;
    MarkdownUndoSelections& operator=(const MarkdownUndoSelections&) = delete;

    // Around one edit made as a single undo step.
    void beginEdit(MarkdownSourceRange before);
    void endEdit(MarkdownSourceRange after);
    // Runs `perform` (the view's undo or redo) and answers the selection to put back, nothing
    // for a step no command made.
    std::optional<MarkdownSourceRange> undo(const std::function<void()>& perform);
    std::optional<MarkdownSourceRange> redo(const std::function<void()>& perform);

private:
    struct Entry {
        int start = 0;
        MarkdownSourceRange before;
        MarkdownSourceRange after;
        int lengthBefore = 0;
        int lengthAfter = 0;
    };

    QTextDocument& m_document;
    std::map<int, Entry> m_entries; // by the undo index just past the edit's step
    Entry m_pending;
    QMetaObject::Connection m_added;
};

}
