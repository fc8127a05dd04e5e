#pragma once

#include "MarkdownEngine/Core/MarkdownSourceRange.h"

#include <QString>

namespace velmo::markdown {

// One replacement, in the offsets of the text before it: what a caller applies itself, as a
// single undoable change.
struct MarkdownTextMutation {
    MarkdownSourceRange range;
    QString replacement;

    // The text with the replacement made; `range` must lie inside `text`.
    [[nodiscard]] QString applied(const QString& text) const
    {
        QString result = text;
        result.replace(range.location, range.length, replacement);
        return result;
    }

    bool operator==(const MarkdownTextMutation&) const = default;
};

}
