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

// Quote markers at the line's start, each ">" with the spaces after it: "> > ".
inline qsizetype quotePrefixLength(QStringView line)
{
    qsizetype i = 0;
    while (i < line.size() && line[i] == u'>') {
        ++i;
        while (i < line.size() && line[i] == u' ')
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
