#pragma once

#include <QString>

namespace velmo::app {

// What the application's logic asks of a live text view. The shell's editor implements it;
// the logic works the same when none exists.
class EditorTextSurface {
public:
    virtual ~EditorTextSurface() = default;

    virtual QString surfaceText() const = 0;
    virtual int selectionStart() const = 0;
    virtual int selectionLength() const = 0;
    // True while an input method composes: no partial composition may reach a document.
    virtual bool isComposing() const = 0;
    // Replaces `length` units at `location` as one undoable step, then puts the caret at `caret`.
    virtual void replaceText(int location, int length, const QString& replacement, int caret) = 0;
    // The id of the document whose text the view holds.
    virtual QString documentId() const = 0;
};

}
