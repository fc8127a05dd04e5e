#pragma once

#include "MarkdownEngine/Core/MarkdownSourceRange.h"

#include <QString>
#include <optional>

namespace velmo::editor {

// A note's first line is its title, and its file is named after it. Offsets are UTF-16 units.
namespace NoteTitle {

struct FirstLine {
    std::optional<QString> name; // absent when the title is empty
    markdown::MarkdownSourceRange nameRange;
    QString prefix;    // before the title, a leading BOM included
    QString suffix;    // after the title in the line
    QString remainder; // from the first line's terminator on
    bool isHeading = false;
    bool isEmptyDocument = false; // nothing but, at most, a BOM
};

struct Replacement {
    QString text;
    markdown::MarkdownSourceRange oldNameRange;
    markdown::MarkdownSourceRange newNameRange;
};

[[nodiscard]] FirstLine firstLine(const QString& text);
[[nodiscard]] std::optional<QString> name(const QString& text);
[[nodiscard]] Replacement replacement(const QString& text, const QString& name);
[[nodiscard]] QString replacingName(const QString& text, const QString& name);
// Where the caret goes when the title is replaced: it keeps its place relative to the text
// around the title and never lands inside a composed character.
[[nodiscard]] int caretAfterReplacingName(const QString& text, const QString& name, int caret);
[[nodiscard]] bool isValidFilename(const QString& name, const QString& extension);

}

}
