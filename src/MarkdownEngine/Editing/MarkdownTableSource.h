#pragma once

#include "MarkdownEngine/Core/MarkdownSourceRange.h"
#include "MarkdownEngine/Core/MarkdownTableAlignment.h"
#include "MarkdownEngine/Editing/MarkdownTableCommand.h"

#include <QString>
#include <QStringView>
#include <optional>
#include <utility>
#include <vector>

namespace velmo::markdown {

// A pipe table as source text: its lines with their raw cells, the caret's cell, and the
// command to apply. A command rewrites the whole table, so that the result is one replacement
// of `range` and one undo step.
//
// Rows: 0 is the header; body row n is the n-th line after the delimiter row. Cells keep their
// spacing and their escapes ("\|" stays two units) until a rendering for the clipboard
// unescapes them.
class MarkdownTableSource {
public:
    struct Line {
        QString raw;
        std::vector<QString> cells;
    };

    // The lines around a selection that look like table lines, the second a delimiter row.
    struct Shape {
        MarkdownSourceRange range;                  // first line's start to last line's content end
        std::vector<MarkdownSourceRange> lines;     // each line's content, without terminator
        std::vector<std::vector<QString>> rows;     // raw cells, the delimiter row included
        std::vector<MarkdownTableAlignment> alignments;
        QString lineBreak;                          // the first line's terminator, LF when none
    };

    MarkdownSourceRange range;
    std::vector<Line> lines;
    int row = 0;
    int column = 0;
    std::optional<MarkdownTableCommand> command;
    QString lineBreak = QStringLiteral("\n");

    // Nothing when the lines are not a table: fewer than two, or one that neither begins nor
    // ends with "|". `caret` is an offset in `text`.
    [[nodiscard]] static std::optional<MarkdownTableSource> make(QStringView text, const Shape& shape, int caret,
                                                                 std::optional<MarkdownTableCommand> command = {});
    [[nodiscard]] static std::optional<Shape> tableShape(QStringView text, MarkdownSourceRange selection);

    [[nodiscard]] int columnCount() const;
    [[nodiscard]] int rowCount() const; // header and body rows
    [[nodiscard]] int delimiterIndex() const; // -1 when there is none
    [[nodiscard]] int lineIndex(int forRow) const;

    // Applies `command`; the new caret cell, or nothing when the command does not apply (the
    // table is then unchanged). With no lines left the table was removed.
    std::optional<std::pair<int, int>> apply();
    // Every line re-spaced: columns as wide as their widest cell (at least 3), cells centred in
    // the source, the delimiter row rebuilt from the alignments, `override` replacing one.
    [[nodiscard]] MarkdownTableSource realigning(
        std::optional<std::pair<int, MarkdownTableAlignment>> override = std::nullopt) const;
    // The offset, from the table's start, of the first unit after the space that opens a cell.
    [[nodiscard]] int caretOffset(int row, int column) const;

    [[nodiscard]] QString markdown() const;
    [[nodiscard]] QString csv() const;
    [[nodiscard]] QString html() const;
    // Header and body rows, padded to the column count, trimmed and unescaped.
    [[nodiscard]] std::vector<std::vector<QString>> contentRows() const;

    [[nodiscard]] static bool isTableLine(QStringView line);
    [[nodiscard]] static bool isSeparatorRow(const std::vector<QString>& cells);
    // Split at every "|" not preceded by a backslash; an empty first and last piece are dropped.
    [[nodiscard]] static std::vector<QString> rawCells(QStringView line);
    // rawCells, each trimmed.
    [[nodiscard]] static std::vector<QString> splitRow(QStringView line);
    // "\|" becomes "|"; every other backslash stays.
    [[nodiscard]] static QString unescaped(QStringView cell);
    [[nodiscard]] static std::vector<QString> padded(std::vector<QString> cells, int to);

private:
    std::pair<int, int> commit(int newRow, int newColumn,
                               std::optional<std::pair<int, MarkdownTableAlignment>> override = std::nullopt);
};

}
