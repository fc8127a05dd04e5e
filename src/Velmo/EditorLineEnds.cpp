#include "Velmo/EditorLineEnds.h"

#include <algorithm>

namespace velmo::app {

EditorLineEnds EditorLineEnds::of(const QString& noteText)
{
    EditorLineEnds ends;
    qsizetype crlf = 0;
    qsizetype cr = 0;
    qsizetype lf = 0;
    const qsizetype size = noteText.size();
    for (qsizetype i = 0; i < size; ++i) {
        const QChar c = noteText[i];
        if (c == u'\r') {
            if (i + 1 < size && noteText[i + 1] == u'\n') {
                ++crlf;
                ++i;
            } else {
                ++cr;
            }
        } else if (c == u'\n') {
            ++lf;
        }
    }
    if (crlf > 0 && cr == 0 && lf == 0)
        ends.m_terminator = QStringLiteral("\r\n");
    else if (cr > 0 && crlf == 0 && lf == 0)
        ends.m_terminator = QStringLiteral("\r");
    return ends;
}

QString EditorLineEnds::toEditor(const QString& noteText) const
{
    if (isPlain())
        return noteText;
    QString text = noteText;
    return text.replace(m_terminator, QStringLiteral("\n"));
}

QString EditorLineEnds::toNote(const QString& editorText) const
{
    if (isPlain())
        return editorText;
    QString text = editorText;
    return text.replace(u'\n', m_terminator);
}

qsizetype EditorLineEnds::toEditorOffset(const QString& noteText, qsizetype offset) const
{
    offset = std::clamp<qsizetype>(offset, 0, noteText.size());
    if (m_terminator.size() < 2)
        return offset;
    // Every CR before the offset is half of a line end that is one unit in the editor; an offset
    // between CR and LF lands before that unit.
    return offset - QStringView(noteText).left(offset).count(u'\r');
}

qsizetype EditorLineEnds::toNoteOffset(const QString& editorText, qsizetype offset) const
{
    offset = std::clamp<qsizetype>(offset, 0, editorText.size());
    if (m_terminator.size() < 2)
        return offset;
    return offset + QStringView(editorText).left(offset).count(u'\n');
}

}
