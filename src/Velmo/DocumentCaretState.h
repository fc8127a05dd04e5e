#pragma once

#include <QList>
#include <QObject>
#include <QString>

namespace velmo::app {

// The caret's line for the status bar. Separate from the document, so that moving the caret
// notifies only those who show the line.
class DocumentCaretState : public QObject {
    Q_OBJECT

public:
    int line() const { return m_line; }
    const QList<qsizetype>& lineStarts() const { return m_lineStarts; }

    // Rebuilds the line starts (every terminator ends a line, CRLF once), then updates the caret.
    void updateText(const QString& text, qsizetype caret);
    // Binary search over the line starts; notifies only when the line changes.
    void updateCaret(qsizetype caret);

signals:
    void lineChanged(int line);

private:
    int m_line = 1;
    QList<qsizetype> m_lineStarts{0};
};

}
