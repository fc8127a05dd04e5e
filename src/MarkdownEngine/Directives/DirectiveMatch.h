#pragma once

#include "MarkdownEngine/Core/MarkdownSourceRange.h"

#include <QString>
#include <vector>

namespace velmo::markdown {

// A directive found in a note, with the ranges the styler hides or shows.
struct DirectiveMatch {
    QString nodeID;
    MarkdownSourceRange range;
    MarkdownSourceRange nameRange;
    MarkdownSourceRange argumentsRange;
    MarkdownSourceRange bodyRange;
    std::vector<MarkdownSourceRange> markers;
    MarkdownSourceRange contentRange;
    bool parsesContent = false;
};

}
