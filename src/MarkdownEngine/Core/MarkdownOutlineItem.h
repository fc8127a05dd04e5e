#pragma once

#include <QString>

namespace velmo::markdown {

// A heading block of a parsed document, for the outline panel.
struct MarkdownOutlineItem {
    int id = 0; // the block's id
    int level = 1;
    QString title;

    bool operator==(const MarkdownOutlineItem&) const = default;
};

}
