#pragma once

#include <QString>
#include <ostream>

// Readable failure messages for QString comparisons (found by argument-dependent lookup).
inline void PrintTo(const QString& text, std::ostream* out)
{
    *out << '"' << text.toStdString() << '"';
}
