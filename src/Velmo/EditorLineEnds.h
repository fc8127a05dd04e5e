#pragma once

#include <QString>

namespace velmo::app {

// The editor's storage ends every paragraph alike, so the text it hands back has LF line ends
// only. A note written with CRLF, or CR, throughout keeps its own: its text reaches the editor
// with LF and comes back with the note's terminator, and offsets are mapped between the two.
// A note that mixes terminators is edited as LF.
class EditorLineEnds {
public:
    [[nodiscard]] static EditorLineEnds of(const QString& noteText);

    [[nodiscard]] bool isPlain() const { return m_terminator == u"\n"; }
    [[nodiscard]] QString terminator() const { return m_terminator; }

    [[nodiscard]] QString toEditor(const QString& noteText) const;
    [[nodiscard]] QString toNote(const QString& editorText) const;
    // An offset into the note's text as one into the editor's, and back. An offset between a CR
    // and its LF maps to the start of the line end.
    [[nodiscard]] qsizetype toEditorOffset(const QString& noteText, qsizetype offset) const;
    [[nodiscard]] qsizetype toNoteOffset(const QString& editorText, qsizetype offset) const;

private:
    QString m_terminator = QStringLiteral("\n");
};

}
