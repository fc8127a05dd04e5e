// The structural keys. Each rule looks at the caret's line only (and, in a table, at the lines
// of that table), so a key costs the same in a short note and a long one.

#include "MarkdownEngine/Editing/MarkdownEditorKeys.h"

#include "MarkdownEngine/Core/TextCharacters.h"
#include "MarkdownEngine/Editing/EditingText.h"
#include "MarkdownEngine/Editing/MarkdownTableSource.h"

#include <algorithm>

namespace velmo::markdown {

using Edit = MarkdownEditorKeys::Edit;
using Direction = MarkdownEditingCommands::IndentDirection;

namespace {

using editing_text::outerQuotePrefix;

// The quote markers before a line's own indentation, which Tab and Shift+Tab change.
qsizetype quotePrefixLength(QStringView line)
{
    return editing_text::quotePrefixLength(line, true);
}

// The caret's line: where it starts, its text without terminator, and the caret's column.
struct CaretLine {
    int start = 0;
    QStringView line;
    int column = 0;

    static std::optional<CaretLine> at(const QString& text, int caret)
    {
        const auto bounds = chars::lineAt(text, caret);
        if (caret > bounds.contentsEnd)
            return std::nullopt; // between the CR and LF of a terminator
        return CaretLine{int(bounds.start), QStringView(text).mid(bounds.start, bounds.contentsEnd - bounds.start),
                         int(caret - bounds.start)};
    }
};

Edit movingCaret(const QString& text, int to)
{
    return MarkdownEditingCommands::replacing(text, {to, 0}, {}, {to, 0});
}

// One level of indentation at the line's start: a tab, or up to `unit` spaces.
int outdentLength(QStringView body, int unit)
{
    if (body.startsWith(u'\t'))
        return 1;
    int spaces = 0;
    while (spaces < body.size() && spaces < unit && body[spaces] == u' ')
        ++spaces;
    return spaces;
}

bool isItem(QStringView body)
{
    return MarkdownEditingCommands::bulletPrefix(body) || MarkdownEditingCommands::taskPrefix(body);
}

}

std::optional<Edit> MarkdownEditorKeys::edit(Key key, const QString& text, MarkdownSourceRange selection,
                                             const Options& options)
{
    selection = MarkdownEditingCommands::clamped(text, selection);
    switch (key) {
    case Key::newline:
        return newline(text, selection);
    case Key::lineBreak:
        return MarkdownEditingCommands::insert(text, selection, QStringLiteral("\n"));
    case Key::tab:
        return tab(text, selection, Direction::inward, options);
    case Key::backtab:
        return tab(text, selection, Direction::outward, options);
    case Key::backspace:
        return backspace(text, selection, options);
    }
    return std::nullopt;
}

std::optional<Edit> MarkdownEditorKeys::typed(QChar character, const QString& text, MarkdownSourceRange selection,
                                              const Options& options)
{
    return MarkdownEditingCommands::pair(text, character, selection, options.closePairs);
}

std::optional<Edit> MarkdownEditorKeys::newline(const QString& text, MarkdownSourceRange selection)
{
    if (selection.length != 0)
        return std::nullopt;
    const int caret = selection.location;
    if (const auto shape = MarkdownTableSource::tableShape(text, selection)) {
        const auto line = CaretLine::at(text, caret);
        // Before the table's first character, Return moves the table down as usual.
        if (!line || caret == shape->range.location)
            return std::nullopt;
        const auto source = MarkdownTableSource::make(text, *shape, caret);
        if (!source)
            return std::nullopt;
        const int last = source->rowCount() - 1;
        const auto& cells = source->lines[size_t(source->lineIndex(source->row))].cells;
        const bool blank = std::all_of(cells.begin(), cells.end(),
                                       [](const QString& cell) { return chars::trimmed(cell).isEmpty(); });
        // An empty last row ends the table: it becomes the blank line after it.
        if (source->row == last && last >= 1 && blank)
            return MarkdownEditingCommands::replacing(
                text, {line->start, int(line->line.size())}, {}, {line->start, 0});
        return MarkdownEditingCommands::tableEdit(text, selection,
                                                  MarkdownTableCommand{MarkdownTableCommand::Kind::insertRowBelow});
    }
    return MarkdownEditingCommands::newline(text, selection);
}

std::optional<Edit> MarkdownEditorKeys::tab(const QString& text, MarkdownSourceRange selection, Direction direction,
                                            const Options& options)
{
    if (auto edit = MarkdownEditingCommands::moveTableCell(text, selection, direction == Direction::inward ? 1 : -1))
        return edit;
    if (MarkdownEditingCommands::lineRanges(text, selection).size() > 1)
        return MarkdownEditingCommands::indent(text, selection, direction, options.indentation);

    // One line: the indentation goes after its quote markers, so a quoted item nests inside its quote.
    const auto line = CaretLine::at(text, selection.location);
    if (!line)
        return std::nullopt;
    const int bodyStart = line->start + int(quotePrefixLength(line->line));
    const QStringView body = QStringView(text).mid(bodyStart, line->start + line->line.size() - bodyStart);
    int delta = 0;
    MarkdownSourceRange replaced{bodyStart, 0};
    QString replacement;
    if (direction == Direction::inward) {
        if (!isItem(body))
            return std::nullopt;
        replacement = options.indentation;
        delta = int(replacement.size());
    } else {
        replaced.length = outdentLength(body, int(options.indentation.size()));
        if (replaced.length == 0)
            return std::nullopt;
        delta = -replaced.length;
    }
    const auto shifted = [&](int position) {
        return position <= bodyStart ? position : std::max(bodyStart, position + delta);
    };
    const int location = shifted(selection.location);
    return MarkdownEditingCommands::replacing(
        text, replaced, replacement, {location, shifted(selection.upperBound()) - location});
}

std::optional<Edit> MarkdownEditorKeys::backspace(const QString& text, MarkdownSourceRange selection,
                                                  const Options& options)
{
    if (selection.length != 0 || selection.location == 0)
        return std::nullopt;
    const int caret = selection.location;
    const auto line = CaretLine::at(text, caret);
    if (!line)
        return std::nullopt;
    const QStringView head = line->line.left(line->column);

    // A table's pipes and line breaks hold its grid together: Backspace steps over them.
    if (const auto shape = MarkdownTableSource::tableShape(text, selection)) {
        if (line->column == 0 && line->start > shape->range.location)
            return movingCaret(text, int(chars::lineAt(text, line->start - 1).contentsEnd));
        if (head.endsWith(u'|') && !head.endsWith(u"\\|"))
            return movingCaret(text, caret - 1);
    }

    // Just after quote markers, the innermost one goes.
    const int quoteLength = int(quotePrefixLength(line->line));
    if (quoteLength > 0 && line->column == quoteLength) {
        const QString outer = outerQuotePrefix(head).toString();
        return MarkdownEditingCommands::replacing(text, {line->start, line->column}, outer,
                                                  {line->start + int(outer.size()), 0});
    }
    if (line->column < quoteLength)
        return std::nullopt;

    // Just after a list marker, the item unwinds a step: the task box, then one level of
    // indentation, then the marker itself.
    const int bodyStart = line->start + quoteLength;
    const QStringView body = line->line.mid(quoteLength);
    const int column = line->column - quoteLength;
    if (const auto task = MarkdownEditingCommands::taskPrefix(body);
        task && column == body.size() - task->rest.size()) {
        const int box = bodyStart + task->boxOffset;
        return MarkdownEditingCommands::replacing(text, MarkdownSourceRange::fromBounds(box, caret), {}, {box, 0});
    }
    const auto bullet = MarkdownEditingCommands::bulletPrefix(body);
    if (!bullet || column != body.size() - bullet->rest.size())
        return std::nullopt;
    if (const int outdent = outdentLength(body, int(options.indentation.size())); outdent > 0)
        return MarkdownEditingCommands::replacing(text, {bodyStart, outdent}, {}, {caret - outdent, 0});
    return MarkdownEditingCommands::replacing(text, MarkdownSourceRange::fromBounds(bodyStart, caret), {},
                                              {bodyStart, 0});
}

}
