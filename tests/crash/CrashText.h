#pragma once

#include <QString>

namespace velmo::test {

// The text a crash child types at one step: a fixed first line (so no rename), a header that
// names the run and step, and a body whose length varies from a few bytes to 192 KB, so a kill
// often lands in the middle of a write.
inline QString crashText(int run, int step)
{
    QString text = QStringLiteral("# Note\nrun %1 step %2\n").arg(run).arg(step);
    const int lines = (step * 7919 + run * 104729) % 3000;
    text.reserve(text.size() + lines * 64);
    for (int line = 0; line < lines; ++line)
        text += QStringLiteral("%1 the quick brown fox jumps over the lazy dog, step %2 ….\n")
                    .arg(line, 5).arg(step, 6);
    return text;
}

}
