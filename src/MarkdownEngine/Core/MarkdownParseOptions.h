#pragma once

#include <QSet>
#include <QString>

namespace velmo::markdown {

// Switches of the dialect; a default-constructed value is the default dialect.
struct MarkdownParseOptions {
    bool wikiLinks = true;
    bool footnotes = true;
    bool frontMatter = true;
    bool tables = true;
    bool latex = true;
    bool highlight = true;
    bool strikethrough = true;
    bool directives = true;
    bool callouts = true;
    bool taskCheckboxes = true;
    bool blockHtml = false;
    bool smartQuotes = false;  // carried for the styler
    int maxTableColumns = 32;  // widest delimiter row accepted
    QSet<QString> directiveNames; // registered directives; the parser itself does not consult it

    bool operator==(const MarkdownParseOptions&) const = default;
};

}
