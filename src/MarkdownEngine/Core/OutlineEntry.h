#pragma once

#include <QString>

namespace velmo::markdown {

// An ATX heading line found in raw text, without a parse.
struct OutlineEntry {
    int level = 1;
    int lineStart = 0;
    int contentStart = 0; // the first `#` of the line
    QString title;

    bool operator==(const OutlineEntry&) const = default;
};

}
