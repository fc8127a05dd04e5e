#pragma once

#include <QString>

namespace velmo::markdown {

// A span written between an opener and a closer, such as "==" ... "==".
struct InlineSyntax {
    QString open;
    QString close;
    bool parsesContent = true;
    bool requiresNonEmptyContent = true;
    bool rejectsOpenerRun = false; // "===" is no opener of "=="
    bool rejectsCloserRun = false;

    bool operator==(const InlineSyntax&) const = default;
};

}
