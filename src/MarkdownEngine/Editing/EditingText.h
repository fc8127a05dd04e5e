#pragma once

#include <QStringView>

// Small text helpers shared by the editing commands' files.
namespace velmo::markdown::editing_text {

// Indentation in the editing commands is spaces and tabs only.
inline bool isBlank(QChar c)
{
    return c == u' ' || c == u'\t';
}

inline qsizetype leadingBlanks(QStringView line)
{
    qsizetype i = 0;
    while (i < line.size() && isBlank(line[i]))
        ++i;
    return i;
}

// Quote markers at the line's start, each ">" with the spaces after it: "> > ". With
// `oneSpace`, a marker takes at most one space, and what follows is the line's own indentation.
inline qsizetype quotePrefixLength(QStringView line, bool oneSpace = false)
{
    const qsizetype spacesPerMarker = oneSpace ? 1 : line.size();
    qsizetype i = 0;
    while (i < line.size() && line[i] == u'>') {
        ++i;
        for (qsizetype spaces = 0; spaces < spacesPerMarker && i < line.size() && line[i] == u' '; ++spaces)
            ++i;
    }
    return i;
}

// The prefix less its last quote marker: "> > " becomes "> ".
inline QStringView outerQuotePrefix(QStringView prefix)
{
    const qsizetype last = prefix.lastIndexOf(u'>');
    return last < 0 ? QStringView() : prefix.left(last);
}

}
