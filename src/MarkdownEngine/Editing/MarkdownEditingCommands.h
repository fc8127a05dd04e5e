#pragma once

#include "MarkdownEngine/Core/MarkdownBlock.h"
#include "MarkdownEngine/Core/MarkdownCallout.h"
#include "MarkdownEngine/Core/MarkdownSourceRange.h"
#include "MarkdownEngine/Editing/MarkdownEditorCommand.h"
#include "MarkdownEngine/Editing/MarkdownTableCommand.h"
#include "MarkdownEngine/Editing/MarkdownTableCopyFormat.h"
#include "MarkdownEngine/Editing/MarkdownTextMutation.h"

#include <QString>
#include <QStringView>
#include <functional>
#include <optional>
#include <vector>

namespace velmo::markdown {

// The editing commands: pure functions from a note's text and a selection to the new text and
// selection, or nothing when a command does not apply (the caller then leaves the text alone,
// or, for Return and typed characters, inserts the key's own text).
//
// Offsets are UTF-16 units. A selection outside the text is clamped to it first. Every result
// comes from one replacement of the old text, given as `mutation`, so a view applies it as a
// single undoable change.
class MarkdownEditingCommands {
public:
    struct Edit {
        QString text;                   // the whole new text
        MarkdownSourceRange selection;  // in the new text
        MarkdownTextMutation mutation;  // the one replacement that turns the old text into `text`

        [[nodiscard]] bool isNoop() const { return text.isEmpty() && selection.length == 0; }
    };

    enum class IndentDirection : unsigned char { inward, outward };

    // A list item's start: "  - rest", "3. rest".
    struct BulletPrefix {
        QString indentation;
        QString rest;
        bool isOrdered = false;
    };

    // A task's start, "- [ ] rest" or a bare "[x] rest"; `rest` follows the box and its space.
    struct TaskPrefix {
        QString indentation;
        QString rest;
        int boxOffset = 0; // where the "[" stands in the line
    };

    // Where one line of the old text went, including its terminator.
    struct LineOrigin {
        int start = 0;
        int oldLength = 0;
        int newStart = 0;
        int newLength = 0;
    };

    // A line's body (without its terminator) and its index among the touched lines; nothing
    // leaves the line unchanged.
    using LineTransform = std::function<std::optional<QString>(QStringView body, int index)>;

    static inline const QString defaultIndentation = QStringLiteral("    ");

    // ---- Dispatch
    // `placeholder` is what a wrap puts in an empty selection; `indentation` is the unit of
    // indent and outdent.
    [[nodiscard]] static std::optional<Edit> edit(const MarkdownEditorCommand& command, const QString& text,
                                                  MarkdownSourceRange selection, const QString& placeholder = {},
                                                  const QString& indentation = defaultIndentation);

    // ---- Inline wraps
    // `close` absent means the same as `open`.
    [[nodiscard]] static Edit toggleWrap(const QString& text, MarkdownSourceRange selection, const QString& open,
                                         const std::optional<QString>& close, const QString& placeholder);
    [[nodiscard]] static Edit bold(const QString& text, MarkdownSourceRange selection, const QString& placeholder = {});
    [[nodiscard]] static Edit italic(const QString& text, MarkdownSourceRange selection, const QString& placeholder = {});
    [[nodiscard]] static Edit strikethrough(const QString& text, MarkdownSourceRange selection,
                                            const QString& placeholder = {});
    [[nodiscard]] static Edit highlight(const QString& text, MarkdownSourceRange selection,
                                        const QString& placeholder = {});
    [[nodiscard]] static Edit inlineCode(const QString& text, MarkdownSourceRange selection,
                                         const QString& placeholder = {});
    [[nodiscard]] static Edit inlineLatex(const QString& text, MarkdownSourceRange selection,
                                          const QString& placeholder = {});
    // Colours the selection with a span, recolours the span around it, or with no colour
    // removes the spans it touches. A colour that is no name, "#rrggbb" or "rgb(…)" gives nothing.
    [[nodiscard]] static std::optional<Edit> textColor(const QString& text, MarkdownSourceRange selection,
                                                       const std::optional<QString>& color,
                                                       const QString& placeholder = {});
    [[nodiscard]] static Edit link(const QString& text, MarkdownSourceRange selection, const QString& destination);
    [[nodiscard]] static Edit wikiLink(const QString& text, MarkdownSourceRange selection, const QString& target);
    [[nodiscard]] static Edit image(const QString& text, MarkdownSourceRange selection, const QString& source);
    [[nodiscard]] static Edit codeBlock(const QString& text, MarkdownSourceRange selection, const QString& language);
    [[nodiscard]] static Edit blockLatex(const QString& text, MarkdownSourceRange selection);
    [[nodiscard]] static Edit thematicBreak(const QString& text, MarkdownSourceRange selection);
    [[nodiscard]] static Edit clearFormatting(const QString& text, MarkdownSourceRange selection);
    [[nodiscard]] static std::optional<Edit> toggleTaskCheckbox(const QString& text, int at);

    // ---- Line-wise commands
    [[nodiscard]] static std::optional<Edit> mapLines(const QString& text, MarkdownSourceRange selection,
                                                      const LineTransform& transform);
    // The lines the selection touches, each with its terminator; an empty text has one empty line.
    [[nodiscard]] static std::vector<MarkdownSourceRange> lineRanges(QStringView text, MarkdownSourceRange selection);
    // Level below 1 removes headings.
    [[nodiscard]] static std::optional<Edit> heading(const QString& text, MarkdownSourceRange selection, int level);
    [[nodiscard]] static std::optional<Edit> blockquote(const QString& text, MarkdownSourceRange selection);
    [[nodiscard]] static std::optional<Edit> bulletList(const QString& text, MarkdownSourceRange selection);
    [[nodiscard]] static std::optional<Edit> orderedList(const QString& text, MarkdownSourceRange selection);
    [[nodiscard]] static std::optional<Edit> taskList(const QString& text, MarkdownSourceRange selection);
    [[nodiscard]] static std::optional<Edit> indent(const QString& text, MarkdownSourceRange selection,
                                                    IndentDirection direction,
                                                    const QString& indentation = defaultIndentation);
    [[nodiscard]] static std::optional<BulletPrefix> bulletPrefix(QStringView line);
    [[nodiscard]] static std::optional<TaskPrefix> taskPrefix(QStringView line);
    // All leading "#", then one space.
    [[nodiscard]] static QStringView stripHeadingPrefix(QStringView line);

    // ---- Blocks and structure
    // Return with a caret: continues a list item or a quote, ends an empty one step by step,
    // gives a new fence its closer. Nothing means a plain line break.
    [[nodiscard]] static std::optional<Edit> newline(const QString& text, MarkdownSourceRange selection);
    // A typed character over a selection: wraps it in the character's pair.
    [[nodiscard]] static std::optional<Edit> pair(const QString& text, QChar character, MarkdownSourceRange selection,
                                                  bool closePairs = true);
    [[nodiscard]] static QString indentation(QStringView text, int at);
    [[nodiscard]] static QString contentIndentation(QStringView text, int at);
    [[nodiscard]] static QString reindent(const QString& text, const QString& to, const QString& firstLine);
    [[nodiscard]] static std::optional<Edit> table(const QString& text, MarkdownSourceRange selection, int rows,
                                                   int columns);
    [[nodiscard]] static std::optional<Edit> frontMatter(const QString& text, MarkdownSourceRange selection,
                                                         const QString& fields);
    [[nodiscard]] static Edit footnote(const QString& text, MarkdownSourceRange selection);
    [[nodiscard]] static std::optional<Edit> renumberFootnotes(const QString& text, MarkdownSourceRange selection);
    [[nodiscard]] static Edit callout(const QString& text, MarkdownSourceRange selection, MarkdownCallout kind);
    [[nodiscard]] static std::optional<Edit> moveLines(const QString& text, MarkdownSourceRange selection, int offset);
    [[nodiscard]] static Edit insert(const QString& text, MarkdownSourceRange selection, const QString& literal);

    // ---- Tables
    [[nodiscard]] static std::optional<Edit> tableEdit(const QString& text, MarkdownSourceRange selection,
                                                       MarkdownTableCommand command);
    // Re-spaces the whole table under the selection.
    [[nodiscard]] static std::optional<Edit> tidyTable(const QString& text, MarkdownSourceRange selection);
    // Tab and Shift+Tab in a table: re-spaces it and moves the caret `step` cells on, reading
    // row by row; past the last cell a new row is added. Nothing outside a table.
    [[nodiscard]] static std::optional<Edit> moveTableCell(const QString& text, MarkdownSourceRange selection, int step);
    [[nodiscard]] static std::optional<Edit> alignTable(const QString& text, MarkdownSourceRange selection)
    {
        return tidyTable(text, selection);
    }
    [[nodiscard]] static std::optional<QString> tableClipboard(const QString& text, MarkdownSourceRange selection,
                                                               MarkdownTableCopyFormat format);
    [[nodiscard]] static std::optional<QString> tableTSV(const QString& text, MarkdownSourceRange selection);

    // ---- Helpers for callers that build their own edits
    [[nodiscard]] static MarkdownSourceRange clamped(QStringView text, MarkdownSourceRange selection);
    // The edit that replaces `range` of `text` by `replacement`, with the selection given in the
    // new text's offsets.
    [[nodiscard]] static Edit replacing(const QString& text, MarkdownSourceRange range, const QString& replacement,
                                        MarkdownSourceRange selection);

private:
    // The block holding an offset, from the block pass alone: Return and insertions ask this
    // on every keystroke, and inline parsing of the whole note would cost them most of a frame.
    // The inlines of the block are parsed when `withInlines` is set.
    [[nodiscard]] static std::optional<MarkdownBlock> blockAt(const QString& text, int offset, bool withInlines = false);

    enum class ListKind : unsigned char { bullet, ordered, task };
    [[nodiscard]] static std::optional<Edit> list(const QString& text, MarkdownSourceRange selection, ListKind kind);
    [[nodiscard]] static std::optional<QString> nextOrderedMarker(QStringView indentation, QStringView line);
};

}
