#include "Velmo/DocumentCaretState.h"

#include "MarkdownEngine/Core/TextCharacters.h"

#include <algorithm>

namespace velmo::app {

void DocumentCaretState::updateText(const QString& text, qsizetype caret)
{
    m_lineStarts.clear();
    m_lineStarts.append(0);
    const qsizetype length = text.size();
    for (qsizetype i = 0; i < length;) {
        const int terminator = markdown::chars::terminatorLength(text, i);
        if (terminator == 0) {
            ++i;
            continue;
        }
        i += terminator;
        m_lineStarts.append(i);
    }
    updateCaret(caret);
}

void DocumentCaretState::updateCaret(qsizetype caret)
{
    const auto count = std::upper_bound(m_lineStarts.cbegin(), m_lineStarts.cend(), caret) - m_lineStarts.cbegin();
    const int line = std::max<int>(1, int(count));
    if (line != m_line) {
        m_line = line;
        emit lineChanged(line);
    }
}

}
