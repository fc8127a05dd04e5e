#pragma once

#include "Velmo/EditorTextSurface.h"

#include <QPlainTextEdit>

namespace velmo::ui {

// A plain text view of the open note, until the live editor takes its place.
class PlainNoteEditor : public QPlainTextEdit, public app::EditorTextSurface {
    Q_OBJECT

public:
    explicit PlainNoteEditor(QWidget* parent = nullptr);

    void setDocument(const QString& documentId, const QString& text, qsizetype caret);

    QString surfaceText() const override { return toPlainText(); }
    int selectionStart() const override;
    int selectionLength() const override;
    bool isComposing() const override { return m_composing; }
    void replaceText(int location, int length, const QString& replacement, int caret) override;
    QString documentId() const override { return m_documentId; }

protected:
    void inputMethodEvent(QInputMethodEvent* event) override;

private:
    QString m_documentId;
    bool m_composing = false;
};

}
