#include "MarkdownEngine/Editing/MarkdownTableSource.h"

#include "MarkdownEngine/Core/TextCharacters.h"
#include "MarkdownEngine/Parser/GraphemeCount.h"

#include <QStringList>
#include <algorithm>

namespace velmo::markdown {

namespace {

// Positions of the "|" that separate cells: those not preceded by a backslash.
std::vector<qsizetype> pipePositions(QStringView line)
{
    std::vector<qsizetype> positions;
    for (qsizetype i = 0; i < line.size(); ++i) {
        if (line[i] == u'|' && (i == 0 || line[i - 1] != u'\\'))
            positions.push_back(i);
    }
    return positions;
}

bool hasLeadingPipe(QStringView line)
{
    return chars::trimmedHorizontal(line).startsWith(u'|');
}

QString htmlEscaped(QString cell)
{
    cell.replace(u'&', QStringLiteral("&amp;"));
    cell.replace(u'<', QStringLiteral("&lt;"));
    cell.replace(u'>', QStringLiteral("&gt;"));
    return cell;
}

QString csvField(const QString& cell)
{
    if (!cell.contains(u',') && !cell.contains(u'"') && !cell.contains(u'\n') && !cell.contains(u'\r'))
        return cell;
    QString quoted = cell;
    quoted.replace(u'"', QStringLiteral("\"\""));
    return u'"' + quoted + u'"';
}

}

// ---------------------------------------------------------------------------------------------
// Recognising lines

bool MarkdownTableSource::isTableLine(QStringView line)
{
    const QStringView t = chars::trimmed(line);
    return (t.startsWith(u'|') || t.endsWith(u'|')) && t.contains(u'|');
}

bool MarkdownTableSource::isSeparatorRow(const std::vector<QString>& cells)
{
    if (cells.empty())
        return false;
    for (const QString& cell : cells) {
        const QStringView t = chars::trimmed(cell);
        if (!t.contains(u'-'))
            return false;
        for (QChar c : t) {
            if (c != u'-' && c != u':')
                return false;
        }
    }
    return true;
}

std::vector<QString> MarkdownTableSource::rawCells(QStringView line)
{
    std::vector<QString> cells;
    qsizetype from = 0;
    for (qsizetype pipe : pipePositions(line)) {
        cells.push_back(line.mid(from, pipe - from).toString());
        from = pipe + 1;
    }
    cells.push_back(line.mid(from).toString());
    if (!cells.empty() && chars::trimmed(cells.front()).isEmpty())
        cells.erase(cells.begin());
    if (!cells.empty() && chars::trimmed(cells.back()).isEmpty())
        cells.pop_back();
    return cells;
}

std::vector<QString> MarkdownTableSource::splitRow(QStringView line)
{
    std::vector<QString> cells = rawCells(line);
    for (QString& cell : cells)
        cell = chars::trimmed(cell).toString();
    return cells;
}

QString MarkdownTableSource::unescaped(QStringView cell)
{
    QString result;
    result.reserve(cell.size());
    for (qsizetype i = 0; i < cell.size(); ++i) {
        if (cell[i] == u'\\' && i + 1 < cell.size() && cell[i + 1] == u'|') {
            result += u'|';
            ++i;
        } else {
            result += cell[i];
        }
    }
    return result;
}

std::vector<QString> MarkdownTableSource::padded(std::vector<QString> cells, int to)
{
    if (int(cells.size()) < to)
        cells.resize(to);
    return cells;
}

// ---------------------------------------------------------------------------------------------
// Building

std::optional<MarkdownTableSource::Shape> MarkdownTableSource::tableShape(QStringView text, MarkdownSourceRange selection)
{
    const int at = std::clamp(selection.location, 0, int(text.size()));
    auto lineOf = [&](qsizetype offset) { return chars::lineAt(text, offset); };
    auto body = [&](const chars::LineBounds& b) { return text.mid(b.start, b.contentsEnd - b.start); };

    const auto caretLine = lineOf(at);
    if (!isTableLine(body(caretLine)))
        return std::nullopt;
    std::vector<chars::LineBounds> found{caretLine};
    while (found.back().start > 0) {
        const auto previous = lineOf(found.back().start - 1);
        if (!isTableLine(body(previous)))
            break;
        found.push_back(previous);
    }
    std::reverse(found.begin(), found.end());
    while (found.back().end > found.back().contentsEnd && found.back().end < text.size()) {
        const auto next = lineOf(found.back().end);
        if (!isTableLine(body(next)))
            break;
        found.push_back(next);
    }
    if (found.size() < 2)
        return std::nullopt;
    Shape shape;
    for (const auto& line : found) {
        shape.lines.push_back(MarkdownSourceRange::fromBounds(int(line.start), int(line.contentsEnd)));
        shape.rows.push_back(rawCells(body(line)));
    }
    if (!isSeparatorRow(shape.rows[1]))
        return std::nullopt;
    for (const QString& cell : shape.rows[1])
        shape.alignments.push_back(tableAlignmentOfDelimiter(cell));
    shape.range = MarkdownSourceRange::fromBounds(int(found.front().start), int(found.back().contentsEnd));
    const auto& first = found.front();
    shape.lineBreak = first.end > first.contentsEnd ? text.mid(first.contentsEnd, first.end - first.contentsEnd).toString()
                                                    : QStringLiteral("\n");
    return shape;
}

std::optional<MarkdownTableSource> MarkdownTableSource::make(QStringView text, const Shape& shape, int caret,
                                                             std::optional<MarkdownTableCommand> command)
{
    if (shape.lines.size() < 2)
        return std::nullopt;
    MarkdownTableSource source;
    source.range = shape.range;
    source.command = command;
    source.lineBreak = shape.lineBreak;
    int caretLine = 0;
    for (std::size_t i = 0; i < shape.lines.size(); ++i) {
        const MarkdownSourceRange lineRange = shape.lines[i];
        const QStringView raw = text.mid(lineRange.location, lineRange.length);
        const QStringView t = chars::trimmed(raw);
        if (!(t.startsWith(u'|') || t.endsWith(u'|')) || !t.contains(u'|'))
            return std::nullopt;
        source.lines.push_back({raw.toString(), rawCells(raw)});
        // The end of the last line belongs to it; a caret in a terminator to the line before.
        if (lineRange.location <= caret)
            caretLine = int(i);
    }
    const int delimiter = source.delimiterIndex();
    if (caretLine == 0 || caretLine == delimiter)
        source.row = 0;
    else if (delimiter >= 0 && caretLine > delimiter)
        source.row = caretLine - delimiter;
    else
        source.row = caretLine;

    const QStringView raw = source.lines[caretLine].raw;
    const int inLine = std::clamp(caret - shape.lines[caretLine].location, 0, int(raw.size()));
    int pipes = 0;
    for (qsizetype pipe : pipePositions(raw)) {
        if (pipe < inLine)
            ++pipes;
    }
    source.column = std::max(0, pipes - (hasLeadingPipe(raw) ? 1 : 0));
    return source;
}

int MarkdownTableSource::columnCount() const
{
    std::size_t count = 0;
    for (const Line& line : lines)
        count = std::max(count, line.cells.size());
    return int(count);
}

int MarkdownTableSource::delimiterIndex() const
{
    // The header is never the delimiter row, even when it looks like one.
    for (std::size_t i = 1; i < lines.size(); ++i) {
        if (isSeparatorRow(lines[i].cells))
            return int(i);
    }
    return -1;
}

int MarkdownTableSource::rowCount() const
{
    return int(lines.size()) - (delimiterIndex() >= 0 ? 1 : 0);
}

int MarkdownTableSource::lineIndex(int forRow) const
{
    if (forRow <= 0 || lines.empty())
        return 0;
    const int delimiter = delimiterIndex();
    const int index = delimiter >= 0 ? delimiter + forRow : forRow + 1;
    return std::min(index, int(lines.size()) - 1);
}

// ---------------------------------------------------------------------------------------------
// Commands

std::pair<int, int> MarkdownTableSource::commit(int newRow, int newColumn,
                                                std::optional<std::pair<int, MarkdownTableAlignment>> override)
{
    *this = realigning(override);
    row = std::clamp(newRow, 0, std::max(0, rowCount() - 1));
    column = std::clamp(newColumn, 0, std::max(0, columnCount() - 1));
    return {row, column};
}

std::optional<std::pair<int, int>> MarkdownTableSource::apply()
{
    if (!command)
        return std::nullopt;
    const int columns = columnCount();
    const int rows = rowCount();
    const int delimiter = delimiterIndex();
    const int col = std::clamp(column, 0, std::max(0, columns - 1));
    auto forEachRowCells = [&](auto&& change) {
        for (std::size_t i = 0; i < lines.size(); ++i) {
            lines[i].cells = padded(std::move(lines[i].cells), columns);
            change(lines[i].cells, int(i) == delimiter);
        }
    };
    const bool isBodyRow = row >= 1 && row < rows;

    switch (command->kind) {
    case MarkdownTableCommand::Kind::alignColumn:
        if (columns == 0)
            return std::nullopt;
        return commit(row, col, std::pair{col, command->alignment});

    case MarkdownTableCommand::Kind::insertRowAbove:
    case MarkdownTableCommand::Kind::insertRowBelow: {
        if (columns < 1)
            return std::nullopt;
        const bool above = command->kind == MarkdownTableCommand::Kind::insertRowAbove;
        const int afterDelimiter = delimiter >= 0 ? delimiter + 1 : 1;
        int at = 0;
        int newRow = 0;
        if (row == 0) {
            at = afterDelimiter;
            newRow = 1;
        } else {
            at = lineIndex(row) + (above ? 0 : 1);
            newRow = above ? row : row + 1;
        }
        at = std::clamp(at, 0, int(lines.size()));
        lines.insert(lines.begin() + at, Line{{}, std::vector<QString>(columns, QStringLiteral("   "))});
        return commit(newRow, col);
    }

    case MarkdownTableCommand::Kind::deleteRow:
        if (!isBodyRow)
            return std::nullopt;
        lines.erase(lines.begin() + lineIndex(row));
        return commit(std::min(row, rowCount() - 1), col);

    case MarkdownTableCommand::Kind::insertColumnBefore:
    case MarkdownTableCommand::Kind::insertColumnAfter: {
        if (columns == 0)
            return std::nullopt;
        const int at = command->kind == MarkdownTableCommand::Kind::insertColumnBefore ? col : col + 1;
        forEachRowCells([&](std::vector<QString>& cells, bool isDelimiter) {
            cells.insert(cells.begin() + at, isDelimiter ? QStringLiteral("---") : QStringLiteral("   "));
        });
        return commit(row, at);
    }

    case MarkdownTableCommand::Kind::deleteColumn:
        if (columns < 2) {
            lines.clear();
            row = 0;
            column = 0;
            return std::pair{0, 0};
        }
        forEachRowCells([&](std::vector<QString>& cells, bool) { cells.erase(cells.begin() + col); });
        return commit(row, std::min(col, columns - 2));

    case MarkdownTableCommand::Kind::moveRowUp:
    case MarkdownTableCommand::Kind::moveRowDown: {
        const bool up = command->kind == MarkdownTableCommand::Kind::moveRowUp;
        if (!isBodyRow || (up && row == 1) || (!up && row == rows - 1))
            return std::nullopt;
        const int other = up ? row - 1 : row + 1;
        std::swap(lines[lineIndex(row)], lines[lineIndex(other)]);
        return commit(other, col);
    }

    case MarkdownTableCommand::Kind::moveColumnLeft:
    case MarkdownTableCommand::Kind::moveColumnRight: {
        const bool left = command->kind == MarkdownTableCommand::Kind::moveColumnLeft;
        if (columns == 0 || (left && col == 0) || (!left && col >= columns - 1))
            return std::nullopt;
        const int other = left ? col - 1 : col + 1;
        forEachRowCells([&](std::vector<QString>& cells, bool) { std::swap(cells[col], cells[other]); });
        return commit(row, other);
    }
    }
    return std::nullopt;
}

MarkdownTableSource MarkdownTableSource::realigning(std::optional<std::pair<int, MarkdownTableAlignment>> override) const
{
    MarkdownTableSource result = *this;
    const int columns = columnCount();
    const int delimiter = delimiterIndex();

    std::vector<MarkdownTableAlignment> alignments(columns, MarkdownTableAlignment::none);
    std::vector<int> widths(columns, 3);
    if (delimiter >= 0) {
        const std::vector<QString>& cells = lines[delimiter].cells;
        for (int c = 0; c < columns && c < int(cells.size()); ++c) {
            alignments[c] = tableAlignmentOfDelimiter(cells[c]);
            widths[c] = std::max(widths[c], int(chars::trimmed(cells[c]).size()));
        }
    }
    if (override && override->first >= 0 && override->first < columns)
        alignments[override->first] = override->second;
    for (std::size_t i = 0; i < lines.size(); ++i) {
        if (int(i) == delimiter)
            continue;
        const std::vector<QString>& cells = lines[i].cells;
        for (int c = 0; c < columns && c < int(cells.size()); ++c)
            widths[c] = std::max(widths[c], graphemeCount(chars::trimmed(cells[c])));
    }

    for (std::size_t i = 0; i < lines.size(); ++i) {
        QString raw = QStringLiteral("|");
        for (int c = 0; c < columns; ++c) {
            raw += u' ';
            if (int(i) == delimiter) {
                QString dashes(widths[c], u'-');
                const MarkdownTableAlignment a = alignments[c];
                if (a == MarkdownTableAlignment::left || a == MarkdownTableAlignment::center)
                    dashes[0] = u':';
                if (a == MarkdownTableAlignment::right || a == MarkdownTableAlignment::center)
                    dashes[dashes.size() - 1] = u':';
                raw += dashes;
            } else {
                const QStringView cell = c < int(lines[i].cells.size()) ? chars::trimmed(lines[i].cells[c]) : QStringView();
                const int slack = std::max(0, widths[c] - graphemeCount(cell));
                raw += QString(slack / 2, u' ');
                raw += cell;
                raw += QString(slack - slack / 2, u' ');
            }
            raw += QStringLiteral(" |");
        }
        result.lines[i].raw = raw;
        result.lines[i].cells = rawCells(raw);
    }
    return result;
}

int MarkdownTableSource::caretOffset(int forRow, int forColumn) const
{
    if (lines.empty())
        return 0;
    const int index = lineIndex(forRow);
    int offset = 0;
    for (int i = 0; i < index; ++i)
        offset += int(lines[i].raw.size() + lineBreak.size());
    const QString& raw = lines[index].raw;
    const std::vector<qsizetype> pipes = pipePositions(raw);
    // Without a leading pipe the first cell opens at the line's start.
    const int opening = forColumn - (hasLeadingPipe(raw) ? 0 : 1);
    qsizetype inLine = 0;
    if (opening >= 0 && opening < int(pipes.size()))
        inLine = pipes[opening] + 2;
    else if (opening >= int(pipes.size()) && !pipes.empty())
        inLine = pipes.back() + 2;
    return offset + int(std::min(inLine, raw.size()));
}

// ---------------------------------------------------------------------------------------------
// Renderings

QString MarkdownTableSource::markdown() const
{
    QStringList raws;
    for (const Line& line : lines)
        raws << line.raw;
    return raws.join(lineBreak);
}

std::vector<std::vector<QString>> MarkdownTableSource::contentRows() const
{
    const int columns = columnCount();
    const int delimiter = delimiterIndex();
    std::vector<std::vector<QString>> rows;
    for (std::size_t i = 0; i < lines.size(); ++i) {
        if (int(i) == delimiter)
            continue;
        std::vector<QString> cells = padded(lines[i].cells, columns);
        for (QString& cell : cells)
            cell = unescaped(chars::trimmed(cell));
        rows.push_back(std::move(cells));
    }
    return rows;
}

QString MarkdownTableSource::csv() const
{
    QStringList rows;
    for (const std::vector<QString>& cells : contentRows()) {
        QStringList fields;
        for (const QString& cell : cells)
            fields << csvField(cell);
        rows << fields.join(u',');
    }
    return rows.join(u'\n');
}

QString MarkdownTableSource::html() const
{
    const std::vector<std::vector<QString>> rows = contentRows();
    QString result = QStringLiteral("<table>\n  <thead>\n    <tr>");
    if (!rows.empty()) {
        for (const QString& cell : rows.front())
            result += QStringLiteral("<th>") + htmlEscaped(cell) + QStringLiteral("</th>");
    }
    result += QStringLiteral("</tr>\n  </thead>");
    if (rows.size() > 1) {
        result += QStringLiteral("\n  <tbody>");
        for (std::size_t r = 1; r < rows.size(); ++r) {
            result += QStringLiteral("\n    <tr>");
            for (const QString& cell : rows[r])
                result += QStringLiteral("<td>") + htmlEscaped(cell) + QStringLiteral("</td>");
            result += QStringLiteral("</tr>");
        }
        result += QStringLiteral("\n  </tbody>");
    }
    result += QStringLiteral("\n</table>");
    return result;
}

}
