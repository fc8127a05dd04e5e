#pragma once

#include "MarkdownEngine/Editing/MarkdownEditingCommands.h"

#include <QChar>
#include <QString>
#include <optional>

namespace velmo::markdown {

// What the editor's structural keys do to a note: Return, Tab and Backspace in lists, quotes
// and tables, and a character typed over a selection. Pure like the editing commands: an edit,
// or nothing when the key keeps its ordinary meaning (the view then inserts or deletes as
// usual).
class MarkdownEditorKeys {
public:
    enum class Key : unsigned char {
        newline,   // Return
        lineBreak, // Shift+Return: a plain line break, never a list continuation
        tab,
        backtab,   // Shift+Tab
        backspace,
    };

    struct Options {
        bool closePairs = true;
        QString indentation = MarkdownEditingCommands::defaultIndentation; // one level of list nesting
    };

    using Edit = MarkdownEditingCommands::Edit;

    [[nodiscard]] static std::optional<Edit> edit(Key key, const QString& text, MarkdownSourceRange selection,
                                                  const Options& options);
    // A character typed over a selection wraps it in the character's pair.
    [[nodiscard]] static std::optional<Edit> typed(QChar character, const QString& text, MarkdownSourceRange selection,
                                                   const Options& options);

private:
    [[nodiscard]] static std::optional<Edit> newline(const QString& text, MarkdownSourceRange selection);
    [[nodiscard]] static std::optional<Edit> tab(const QString& text, MarkdownSourceRange selection,
                                                 MarkdownEditingCommands::IndentDirection direction,
                                                 const Options& options);
    [[nodiscard]] static std::optional<Edit> backspace(const QString& text, MarkdownSourceRange selection,
                                                       const Options& options);
};

}
