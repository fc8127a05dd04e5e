#pragma once

#include "MarkdownEngine/Core/MarkdownCallout.h"
#include "MarkdownEngine/Editing/MarkdownTableCommand.h"

#include <QString>
#include <QStringView>
#include <optional>
#include <variant>

namespace velmo::markdown {

// The whole vocabulary of editing commands that menus, shortcuts and the slash menu send.
namespace editor_command {
struct Heading { int level = 1; bool operator==(const Heading&) const = default; };
// An absent colour removes colouring.
struct TextColor { std::optional<QString> color; bool operator==(const TextColor&) const = default; };
struct Table { int rows = 3; int columns = 3; bool operator==(const Table&) const = default; };
struct TableCommand { MarkdownTableCommand command; bool operator==(const TableCommand&) const = default; };
struct FrontMatter { QString fields; bool operator==(const FrontMatter&) const = default; };
struct Callout { MarkdownCallout kind = MarkdownCallout::note; bool operator==(const Callout&) const = default; };
struct InsertText { QString text; bool operator==(const InsertText&) const = default; };

// The cases without payload, in the order of the vocabulary.
enum class Simple : unsigned char {
    bold,
    italic,
    strikethrough,
    highlight,
    inlineCode,
    inlineLatex,
    blockLatex,
    blockquote,
    bulletList,
    orderedList,
    taskList,
    indent,
    outdent,
    link,
    wikiLink,
    image,
    codeBlock,
    thematicBreak,
    clearFormatting,
    toggleTaskCheckbox,
    tableEdit,
    copyTable,
    footnote,
    renumberFootnotes,
    moveLinesUp,
    moveLinesDown,
};
}

using MarkdownEditorCommand =
    std::variant<editor_command::Heading, editor_command::TextColor, editor_command::Table,
                 editor_command::TableCommand, editor_command::FrontMatter, editor_command::Callout,
                 editor_command::InsertText, editor_command::Simple>;

namespace editor_command {
// The case name: "bold", "heading", "tableCommand", ...
[[nodiscard]] QString name(const MarkdownEditorCommand& command);
// A command from its case name and a textual payload: the level of "heading", a colour name
// for "textColor" (empty: none), "ROWSxCOLUMNS" for "table", a table command's name for
// "tableCommand", the fields of "frontMatter", a kind for "callout", the text of "insertText".
[[nodiscard]] std::optional<MarkdownEditorCommand> fromName(QStringView name, const QString& argument = {});
}

}
