#pragma once

#include "Highlighter/WordSet.h"

#include <QString>
#include <vector>

namespace velmo::highlighter {

// A language as the scanner sees it: word lists and the rules for comments and strings.
// Most languages share one scanning shape; `dialect` picks another for the few that differ.
struct SyntaxLanguage {
    enum class Dialect { code, html, css, diff, latex };

    struct BlockComment {
        QString open;
        QString close;
    };

    QString id;
    QString displayName;
    WordSet keywords; // coloured as keyword
    WordSet builtins; // coloured as type
    std::vector<QString> lineComments;
    std::vector<BlockComment> blockComments;
    std::vector<char16_t> quotes;
    bool escapes = true; // a backslash in a string skips the next unit
    bool keyValuePairs = false; // a string (or bare key) followed by ":" is a key
    Dialect dialect = Dialect::code;
    std::vector<char16_t> attributePrefixes;
    bool caseSensitive = true;
};

}
