// The table commands: one replacement of the table's text and a caret in the chosen cell.

#include "MarkdownEngine/Core/TextCharacters.h"
#include "MarkdownEngine/Editing/MarkdownEditingCommands.h"
#include "MarkdownEngine/Editing/MarkdownTableSource.h"

#include <QStringList>

namespace velmo::markdown {

using Edit = MarkdownEditingCommands::Edit;

namespace {

// The table under the selection as a source, with the caret at the selection's start.
std::optional<MarkdownTableSource> tableAt(const QString& text, MarkdownSourceRange selection,
                                           std::optional<MarkdownTableCommand> command = {})
{
    selection = MarkdownEditingCommands::clamped(text, selection);
    const auto shape = MarkdownTableSource::tableShape(text, selection);
    return shape ? MarkdownTableSource::make(text, *shape, selection.location, command) : std::nullopt;
}

}

std::optional<Edit> MarkdownEditingCommands::tableEdit(const QString& text, MarkdownSourceRange selection,
                                                       MarkdownTableCommand command)
{
    auto source = tableAt(text, selection, command);
    if (!source)
        return std::nullopt;
    const MarkdownSourceRange range = source->range;
    const auto cell = source->apply();
    if (!cell)
        return std::nullopt;
    if (source->lines.empty()) {
        // The whole table goes, its last terminator with it, so no empty line is left behind.
        const int end = int(chars::lineAt(text, range.upperBound()).end);
        return replacing(text, MarkdownSourceRange::fromBounds(range.location, end), {}, {range.location, 0});
    }
    return replacing(text, range, source->markdown(),
                     {range.location + source->caretOffset(cell->first, cell->second), 0});
}

std::optional<Edit> MarkdownEditingCommands::tidyTable(const QString& text, MarkdownSourceRange selection)
{
    const auto source = tableAt(text, selection);
    if (!source)
        return std::nullopt;
    const MarkdownTableSource tidy = source->realigning();
    const int row = std::clamp(source->row, 0, std::max(0, tidy.rowCount() - 1));
    const int column = std::clamp(source->column, 0, std::max(0, tidy.columnCount() - 1));
    return replacing(text, source->range, tidy.markdown(), {source->range.location + tidy.caretOffset(row, column), 0});
}

std::optional<Edit> MarkdownEditingCommands::moveTableCell(const QString& text, MarkdownSourceRange selection, int step)
{
    const auto source = tableAt(text, selection);
    if (!source)
        return std::nullopt;
    MarkdownTableSource tidy = source->realigning();
    const int columns = tidy.columnCount();
    const int rows = tidy.rowCount();
    if (columns < 1 || rows < 1)
        return std::nullopt;
    const int row = std::clamp(source->row, 0, rows - 1);
    const int column = std::clamp(source->column, 0, columns - 1);
    const int cell = std::max(0, row * columns + column + step);
    int caret = 0;
    if (cell < rows * columns) {
        caret = tidy.caretOffset(cell / columns, cell % columns);
    } else {
        tidy.row = rows - 1;
        tidy.column = 0;
        tidy.command = MarkdownTableCommand{MarkdownTableCommand::Kind::insertRowBelow};
        const auto added = tidy.apply();
        if (!added)
            return std::nullopt;
        caret = tidy.caretOffset(added->first, 0);
    }
    return replacing(text, source->range, tidy.markdown(), {source->range.location + caret, 0});
}

std::optional<QString> MarkdownEditingCommands::tableClipboard(const QString& text, MarkdownSourceRange selection,
                                                               MarkdownTableCopyFormat format)
{
    const auto source = tableAt(text, selection);
    if (!source)
        return std::nullopt;
    return format == MarkdownTableCopyFormat::csv ? source->csv() : source->html();
}

std::optional<QString> MarkdownEditingCommands::tableTSV(const QString& text, MarkdownSourceRange selection)
{
    selection = clamped(text, selection);
    const auto shape = MarkdownTableSource::tableShape(text, selection);
    if (!shape)
        return std::nullopt;
    QStringList rows;
    for (const std::vector<QString>& cells : shape->rows) {
        if (MarkdownTableSource::isSeparatorRow(cells))
            continue;
        QStringList fields;
        for (const QString& cell : cells)
            fields << MarkdownTableSource::unescaped(chars::trimmed(cell));
        rows << fields.join(u'\t');
    }
    return rows.join(u'\n');
}

}
