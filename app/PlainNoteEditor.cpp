#include "PlainNoteEditor.h"

#include <QInputMethodEvent>
#include <QTextBlock>
#include <QTextCursor>

namespace velmo::ui {

PlainNoteEditor::PlainNoteEditor(QWidget* parent)
    : QPlainTextEdit(parent)
{
    setLineWrapMode(QPlainTextEdit::WidgetWidth);
}

void PlainNoteEditor::setDocument(const QString& documentId, const QString& text, qsizetype caret)
{
    m_documentId = documentId;
    setPlainText(text);
    QTextCursor cursor = textCursor();
    cursor.setPosition(int(std::clamp<qsizetype>(caret, 0, text.size())));
    setTextCursor(cursor);
}

int PlainNoteEditor::selectionStart() const
{
    return textCursor().selectionStart();
}

int PlainNoteEditor::selectionLength() const
{
    return textCursor().selectionEnd() - textCursor().selectionStart();
}

void PlainNoteEditor::replaceText(int location, int length, const QString& replacement, int caret)
{
    QTextCursor cursor(document());
    cursor.beginEditBlock();
    cursor.setPosition(location);
    cursor.setPosition(location + length, QTextCursor::KeepAnchor);
    cursor.insertText(replacement);
    cursor.endEditBlock();
    QTextCursor caretCursor = textCursor();
    caretCursor.setPosition(std::clamp(caret, 0, document()->characterCount() - 1));
    setTextCursor(caretCursor);
}

void PlainNoteEditor::inputMethodEvent(QInputMethodEvent* event)
{
    m_composing = !event->preeditString().isEmpty();
    QPlainTextEdit::inputMethodEvent(event);
}

}
