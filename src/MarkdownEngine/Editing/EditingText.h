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

}
