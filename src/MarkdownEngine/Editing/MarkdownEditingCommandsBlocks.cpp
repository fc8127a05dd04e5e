// The commands on lines and blocks: Return in lists and quotes, auto-pairing, insertion of
// tables, callouts, front matter and footnotes, footnote renumbering, moving lines.

#include "MarkdownEngine/Core/MarkdownParseOptions.h"
#include "MarkdownEngine/Core/TextCharacters.h"
#include "MarkdownEngine/Editing/MarkdownEditingCommands.h"
#include "MarkdownEngine/Editing/EditingText.h"
#include "MarkdownEngine/Parser/BlockTokenizer.h"

#include <QHash>
#include <QSet>
#include <algorithm>
#include <limits>

namespace velmo::markdown {

using Edit = MarkdownEditingCommands::Edit;

namespace {

using editing_text::isBlank;
using editing_text::leadingBlanks;
using editing_text::outerQuotePrefix;
using editing_text::quotePrefixLength;

// Several replacements, sorted and apart, made as one: the mutation spans from the first to the
// last. `selection` is in the new text.
Edit replacingAll(const QString& text, const std::vector<MarkdownTextMutation>& changes, MarkdownSourceRange selection)
{
    if (changes.empty())
        return MarkdownEditingCommands::replacing(text, {0, 0}, {}, selection);
    const int start = changes.front().range.location;
    const int end = changes.back().range.upperBound();
    QString replacement;
    int cursor = start;
    for (const MarkdownTextMutation& change : changes) {
        replacement += QStringView(text).mid(cursor, change.range.location - cursor);
        replacement += change.replacement;
        cursor = change.range.upperBound();
    }
    return MarkdownEditingCommands::replacing(text, MarkdownSourceRange::fromBounds(start, end), replacement, selection);
}

// Where an offset of the old text lands after the changes; inside a change it stays at the same
// distance from the change's start, within the new text of it.
int mappedOffset(const std::vector<MarkdownTextMutation>& changes, int position)
{
    int delta = 0;
    for (const MarkdownTextMutation& change : changes) {
        if (change.range.upperBound() <= position && !(change.range.length == 0 && change.range.location == position)) {
            delta += int(change.replacement.size()) - change.range.length;
            continue;
        }
        if (change.range.location < position)
            return change.range.location + delta + std::min(position - change.range.location, int(change.replacement.size()));
        break;
    }
    return position + delta;
}

struct FootnoteMatch {
    MarkdownSourceRange range; // "[^label]"
    QString label;
};

// Every "[^label]" with a non-empty label that holds no "]", scanning left to right as the
// pattern \[\^([^\]]+)\] would: linear, since a failed opener gives up at once.
std::vector<FootnoteMatch> footnoteMatches(QStringView text)
{
    std::vector<FootnoteMatch> matches;
    qsizetype from = 0;
    while (true) {
        const qsizetype open = text.indexOf(u"[^", from);
        if (open < 0)
            break;
        const qsizetype close = text.indexOf(u']', open + 2);
        if (close < 0)
            break;
        if (close == open + 2) {
            from = open + 1;
            continue;
        }
        matches.push_back({MarkdownSourceRange::fromBounds(int(open), int(close + 1)),
                           text.mid(open + 2, close - open - 2).toString()});
        from = close + 1;
    }
    return matches;
}

std::optional<qint64> decimalLabel(const QString& label)
{
    if (label.isEmpty() || label.size() > 15)
        return std::nullopt;
    for (QChar c : label) {
        if (c < u'0' || c > u'9')
            return std::nullopt;
    }
    return label.toLongLong();
}

}

// ---------------------------------------------------------------------------------------------
// Return

std::optional<QString> MarkdownEditingCommands::nextOrderedMarker(QStringView indentationText, QStringView line)
{
    const QStringView after = line.mid(std::min(indentationText.size(), line.size()));
    qsizetype i = 0;
    while (i < after.size()) {
        int length = 1;
        if (!QChar::isNumber(chars::scalarAt(after, i, &length)))
            break;
        i += length;
    }
    bool ok = false;
    const qint64 number = after.left(i).toLongLong(&ok);
    if (!ok || number == std::numeric_limits<qint64>::max())
        return std::nullopt;
    const QString delimiter = i < after.size() ? after.mid(i, 1).toString() : QStringLiteral(".");
    return QString::number(number + 1) + delimiter + u' ';
}

std::optional<Edit> MarkdownEditingCommands::newline(const QString& text, MarkdownSourceRange selection)
{
    if (selection.length != 0 || selection.location < 0 || selection.location > text.size())
        return std::nullopt;
    const int caret = selection.location;
    const auto bounds = chars::lineAt(text, caret);
    if (caret > bounds.contentsEnd)
        return std::nullopt; // between the CR and LF of a terminator
    const int lineStart = int(bounds.start);
    const QStringView line = QStringView(text).mid(bounds.start, bounds.contentsEnd - bounds.start);
    const QStringView head = line.left(caret - lineStart);

    // A quote's markers come first; the list rules then apply to what follows them.
    const qsizetype quoteLength = quotePrefixLength(line);
    if (quoteLength > head.size())
        return std::nullopt;
    const QStringView quote = line.left(quoteLength);
    const QStringView body = line.mid(quoteLength);
    const QStringView bodyHead = head.mid(quoteLength);

    if (BlockTokenizer::thematicBreakCharacter(body))
        return std::nullopt;

    const auto prefix = bulletPrefix(bodyHead);
    if (!prefix) {
        if (quoteLength == 0 && line.startsWith(u"```") && head.startsWith(u"```")) {
            // Only a fence that nothing closes yet gets a closer.
            const std::optional<MarkdownBlock> block = blockAt(text, lineStart);
            const auto* fence = block ? block->as<block_kind::Fence>() : nullptr;
            if (!fence || fence->closed || block->range.location != lineStart)
                return std::nullopt;
            return replacing(text, {int(bounds.contentsEnd), 0}, QStringLiteral("\n\n```"),
                             {int(bounds.contentsEnd) + 1, 0});
        }
        if (quoteLength == 0)
            return std::nullopt;
        if (chars::trimmed(body).isEmpty()) {
            // An empty quoted line steps out of one level of quoting.
            const QString outer = outerQuotePrefix(quote).toString();
            return replacing(text, MarkdownSourceRange::fromBounds(lineStart, int(bounds.contentsEnd)), outer,
                             {lineStart + int(outer.size()), 0});
        }
        const QString insertion = u'\n' + quote.toString();
        return replacing(text, {caret, 0}, insertion, {caret + int(insertion.size()), 0});
    }

    const auto task = taskPrefix(body);
    const auto bullet = bulletPrefix(body);
    const QString itemText = task ? task->rest : bullet ? bullet->rest : prefix->rest;
    const QString& ind = prefix->indentation;
    const int bodyStart = lineStart + int(quoteLength);

    if (chars::trimmed(itemText).isEmpty()) {
        // An empty item ends the list one level at a time.
        if (ind.startsWith(u'\t'))
            return replacing(text, {bodyStart, 1}, {}, {caret - 1, 0});
        if (ind.startsWith(u' ')) {
            int spaces = 0;
            while (spaces < ind.size() && ind[spaces] == u' ')
                ++spaces;
            const int removed = std::min(spaces, 4);
            return replacing(text, {bodyStart, removed}, {}, {caret - removed, 0});
        }
        return replacing(text, MarkdownSourceRange::fromBounds(bodyStart, int(bounds.contentsEnd)), {}, {bodyStart, 0});
    }

    const std::optional<QString> ordered = task ? std::nullopt : nextOrderedMarker(ind, body);
    const QString marker = task ? QStringLiteral("- [ ] ") : ordered ? *ordered : QStringLiteral("- ");
    const QString insertion = u'\n' + quote.toString() + ind + marker;
    std::vector<MarkdownTextMutation> changes{{{caret, 0}, insertion}};

    // The items after this one at the same depth move up by one where the new number would
    // clash, until the list is in order again.
    if (ordered && prefix->isOrdered) {
        qint64 expected = marker.left(marker.size() - 2).toLongLong() + 1;
        for (qsizetype next = bounds.end; next < text.size();) {
            const auto nextBounds = chars::lineAt(text, next);
            const QStringView nextLine = QStringView(text).mid(nextBounds.start, nextBounds.contentsEnd - nextBounds.start);
            next = nextBounds.end;
            if (!nextLine.startsWith(quote) || quotePrefixLength(nextLine) != quoteLength)
                break;
            const QStringView nextBody = nextLine.mid(quoteLength);
            if (chars::trimmed(nextBody).isEmpty())
                break;
            const qsizetype nextBlanks = leadingBlanks(nextBody);
            if (nextBlanks > ind.size())
                continue; // nested content of an item
            const auto sibling = bulletPrefix(nextBody);
            if (nextBlanks < ind.size() || !sibling || !sibling->isOrdered)
                break;
            const qsizetype digits = nextBody.size() - sibling->rest.size() - 2 - nextBlanks;
            bool ok = false;
            const qint64 number = nextBody.mid(nextBlanks, digits).toLongLong(&ok);
            if (!ok || number >= expected || expected == std::numeric_limits<qint64>::max())
                break;
            changes.push_back({{int(nextBounds.start + quoteLength + nextBlanks), int(digits)}, QString::number(expected)});
            ++expected;
        }
    }
    return replacingAll(text, changes, {caret + int(insertion.size()), 0});
}

// ---------------------------------------------------------------------------------------------
// Typing

std::optional<Edit> MarkdownEditingCommands::pair(const QString& text, QChar character, MarkdownSourceRange selection,
                                                  bool closePairs)
{
    selection = clamped(text, selection);
    if (!closePairs || selection.length < 1)
        return std::nullopt;
    QString open;
    std::optional<QString> close;
    switch (character.unicode()) {
    case u'*': open = QStringLiteral("*"); break;
    case u'_': open = QStringLiteral("_"); break;
    case u'`': open = QStringLiteral("`"); break;
    case u'~': open = QStringLiteral("~~"); break;
    case u'=': open = QStringLiteral("=="); break;
    case u'$': open = QStringLiteral("$"); break;
    case u'(': open = QStringLiteral("("); close = QStringLiteral(")"); break;
    case u'[': open = QStringLiteral("["); close = QStringLiteral("]"); break;
    case u'"': open = QStringLiteral("\""); break;
    default: return std::nullopt;
    }
    return toggleWrap(text, selection, open, close, QStringLiteral("text"));
}

Edit MarkdownEditingCommands::insert(const QString& text, MarkdownSourceRange selection, const QString& literal)
{
    selection = clamped(text, selection);
    return replacing(text, selection, literal, {selection.location + int(literal.size()), 0});
}

QString MarkdownEditingCommands::indentation(QStringView text, int at)
{
    if (text.isEmpty())
        return {};
    const auto bounds = chars::lineAt(text, std::clamp<qsizetype>(at, 0, text.size()));
    const QStringView line = text.mid(bounds.start, bounds.contentsEnd - bounds.start);
    return line.left(leadingBlanks(line)).toString();
}

QString MarkdownEditingCommands::contentIndentation(QStringView text, int at)
{
    if (text.isEmpty())
        return {};
    const auto bounds = chars::lineAt(text, std::clamp<qsizetype>(at, 0, text.size()));
    const QStringView line = text.mid(bounds.start, bounds.contentsEnd - bounds.start);
    const qsizetype quoteLength = quotePrefixLength(line);
    const QStringView body = line.mid(quoteLength);
    const qsizetype blanks = leadingBlanks(body);
    QString result = line.left(quoteLength + blanks).toString();
    if (const auto bullet = bulletPrefix(body)) {
        const qsizetype markerWidth = body.size() - blanks - bullet->rest.size();
        result += QString(markerWidth, u' ');
        if (taskPrefix(body))
            result += QStringLiteral("    ");
    }
    return result;
}

QString MarkdownEditingCommands::reindent(const QString& text, const QString& to, const QString& firstLine)
{
    if (to.isEmpty() && firstLine.isEmpty())
        return text;
    const QStringList lines = text.split(u'\n');
    QString result;
    for (qsizetype i = 0; i < lines.size(); ++i) {
        if (i > 0)
            result += u'\n';
        if (!lines[i].isEmpty())
            result += (i == 0 ? firstLine : to) + lines[i];
    }
    return result;
}

// ---------------------------------------------------------------------------------------------
// Insertions

std::optional<Edit> MarkdownEditingCommands::table(const QString& text, MarkdownSourceRange selection, int rows,
                                                   int columns)
{
    selection = clamped(text, selection);
    // Bounds that keep a stray request from building a table no one could edit; wider than
    // the parser's widest delimiter row would not be a table at all.
    rows = std::clamp(rows, 1, 1000);
    columns = std::clamp(columns, 1, MarkdownParseOptions{}.maxTableColumns);

    if (const auto block = blockAt(text, selection.location); block && block->is<block_kind::Table>())
        return std::nullopt;

    auto row = [columns](const QString& cell) {
        QStringList cells;
        for (int c = 0; c < columns; ++c)
            cells << cell;
        return QStringLiteral("| ") + cells.join(QStringLiteral(" | ")) + QStringLiteral(" |");
    };
    const QString emptyRow = row(QStringLiteral("   "));
    QString body = emptyRow + u'\n' + row(QStringLiteral("---"));
    for (int r = 1; r < rows; ++r)
        body += u'\n' + emptyRow;

    // The table stands between blank lines, with as few added as that takes.
    const QStringView before = QStringView(text).left(selection.location);
    QString leading;
    if (!before.isEmpty()) {
        if (chars::terminatorLength(before, before.size() - 1) == 0)
            leading = QStringLiteral("\n\n");
        else {
            const auto previous = chars::lineAt(before, before.size() - 1);
            if (!chars::trimmed(before.mid(previous.start, previous.contentsEnd - previous.start)).isEmpty())
                leading = QStringLiteral("\n");
        }
    }
    const QStringView after = QStringView(text).mid(selection.upperBound());
    QString trailing;
    const int afterBreak = chars::terminatorLength(after, 0);
    if (after.isEmpty())
        trailing = QStringLiteral("\n");
    else if (afterBreak == 0)
        trailing = QStringLiteral("\n\n");
    else {
        const auto next = chars::lineAt(after, afterBreak);
        const bool nextBlank = afterBreak >= after.size()
                               || chars::trimmed(after.mid(next.start, next.contentsEnd - next.start)).isEmpty();
        if (!nextBlank)
            trailing = QStringLiteral("\n");
    }
    return replacing(text, selection, leading + body + trailing,
                     {selection.location + int(leading.size()) + 2, 0});
}

std::optional<Edit> MarkdownEditingCommands::frontMatter(const QString& text, MarkdownSourceRange selection,
                                                         const QString& fields)
{
    selection = clamped(text, selection);
    QStringList wanted;
    for (const QString& field : fields.split(u'\n')) {
        QString line = field;
        if (line.endsWith(u'\r'))
            line.chop(1);
        if (!chars::trimmed(line).isEmpty())
            wanted << line;
    }
    auto keyOf = [](QStringView line) {
        const qsizetype colon = line.indexOf(u':');
        return chars::trimmed(colon < 0 ? line : line.left(colon)).toString();
    };

    // An existing block: "---" alone on the first line and a later "---" or "...".
    const auto first = chars::lineAt(text, 0);
    const QStringView firstLine = QStringView(text).left(first.contentsEnd);
    if (firstLine.startsWith(u"---") && chars::trimmedHorizontal(firstLine) == u"---") {
        QSet<QString> keys;
        for (qsizetype at = first.end; at < text.size();) {
            const auto bounds = chars::lineAt(text, at);
            const QStringView line = QStringView(text).mid(bounds.start, bounds.contentsEnd - bounds.start);
            const QStringView trimmedLine = chars::trimmed(line);
            if (trimmedLine == u"---" || trimmedLine == u"...") {
                QString added;
                for (const QString& field : wanted) {
                    const QString key = keyOf(field);
                    if (!keys.contains(key)) {
                        added += field + u'\n';
                        keys.insert(key);
                    }
                }
                if (added.isEmpty())
                    return std::nullopt;
                const int insertAt = int(bounds.start);
                MarkdownSourceRange moved = selection;
                if (moved.location >= insertAt)
                    moved.location += int(added.size());
                else if (moved.upperBound() > insertAt)
                    moved.length += int(added.size());
                return replacing(text, {insertAt, 0}, added, moved);
            }
            keys.insert(keyOf(line));
            if (bounds.end <= at)
                break;
            at = bounds.end;
        }
    }

    QString block = QStringLiteral("---\n");
    for (const QString& field : wanted)
        block += field + u'\n';
    block += QStringLiteral("---\n");
    if (chars::terminatorLength(text, 0) == 0)
        block += u'\n';
    return replacing(text, {0, 0}, block,
                     {selection.location + int(block.size()), selection.length});
}

Edit MarkdownEditingCommands::footnote(const QString& text, MarkdownSourceRange selection)
{
    selection = clamped(text, selection);
    qint64 largest = 0;
    for (const FootnoteMatch& match : footnoteMatches(text)) {
        if (const auto number = decimalLabel(match.label))
            largest = std::max(largest, *number);
    }
    const QString label = QStringLiteral("[^") + QString::number(largest + 1) + u']';
    QString definition;
    if (!text.endsWith(u'\n'))
        definition += u'\n';
    definition += u'\n' + label + QStringLiteral(": ");
    const std::vector<MarkdownTextMutation> changes{{{selection.upperBound(), 0}, label},
                                                    {{int(text.size()), 0}, definition}};
    const int newSize = int(text.size() + label.size() + definition.size());
    if (selection.upperBound() == text.size())
        return replacing(text, {int(text.size()), 0}, label + definition, {newSize, 0});
    return replacingAll(text, changes, {newSize, 0});
}

std::optional<Edit> MarkdownEditingCommands::renumberFootnotes(const QString& text, MarkdownSourceRange selection)
{
    selection = clamped(text, selection);
    const std::vector<FootnoteMatch> matches = footnoteMatches(text);
    if (matches.empty())
        return std::nullopt;
    auto isDefinition = [&](const FootnoteMatch& match) {
        return match.range.upperBound() < text.size() && text[match.range.upperBound()] == u':';
    };
    QHash<QString, int> numbers;
    int next = 1;
    for (bool definitions : {false, true}) {
        for (const FootnoteMatch& match : matches) {
            if (isDefinition(match) == definitions && !numbers.contains(match.label))
                numbers.insert(match.label, next++);
        }
    }
    std::vector<MarkdownTextMutation> changes;
    for (const FootnoteMatch& match : matches) {
        const QString number = QString::number(numbers.value(match.label));
        if (number != match.label)
            changes.push_back({match.range, QStringLiteral("[^") + number + u']'});
    }
    if (changes.empty())
        return std::nullopt;
    const int location = mappedOffset(changes, selection.location);
    const int end = mappedOffset(changes, selection.upperBound());
    return replacingAll(text, changes, {location, std::max(0, end - location)});
}

Edit MarkdownEditingCommands::callout(const QString& text, MarkdownSourceRange selection, MarkdownCallout kind)
{
    selection = clamped(text, selection);
    const QString header = QStringLiteral("> [!") + kind.marker() + u']';
    if (selection.length == 0) {
        // A new callout on lines of its own, the caret in its first line.
        const auto bounds = chars::lineAt(text, selection.location);
        const bool lineBlank = chars::trimmed(QStringView(text).mid(bounds.start, bounds.contentsEnd - bounds.start)).isEmpty();
        if (lineBlank) {
            const QString replacement = header + QStringLiteral("\n> ");
            const MarkdownSourceRange line = MarkdownSourceRange::fromBounds(int(bounds.start), int(bounds.contentsEnd));
            return replacing(text, line, replacement, {line.location + int(replacement.size()), 0});
        }
        const QString insertion = QStringLiteral("\n\n") + header + QStringLiteral("\n> ");
        const QString tail = bounds.contentsEnd == text.size() ? QString() : QStringLiteral("\n");
        const int at = int(bounds.contentsEnd);
        return replacing(text, {at, 0}, insertion + tail, {at + int(insertion.size()), 0});
    }
    const std::vector<MarkdownSourceRange> lines = lineRanges(text, selection);
    QString replacement = header + u'\n';
    for (const MarkdownSourceRange range : lines) {
        const auto bounds = chars::lineAt(text, range.location);
        QStringView body = QStringView(text).mid(range.location, bounds.contentsEnd - range.location);
        if (body.startsWith(u"> "))
            body = body.mid(2);
        else if (body.startsWith(u'>'))
            body = body.mid(1);
        replacement += QStringLiteral("> ") + body.toString();
        replacement += QStringView(text).mid(bounds.contentsEnd, range.upperBound() - bounds.contentsEnd);
    }
    const MarkdownSourceRange covered = MarkdownSourceRange::fromBounds(lines.front().location, lines.back().upperBound());
    int caret = covered.location + int(replacement.size());
    while (caret > covered.location && chars::terminatorLength(replacement, caret - covered.location - 1) > 0)
        --caret;
    return replacing(text, covered, replacement, {caret, 0});
}

std::optional<Edit> MarkdownEditingCommands::moveLines(const QString& text, MarkdownSourceRange selection, int offset)
{
    if (text.isEmpty() || (offset != -1 && offset != 1))
        return std::nullopt;
    selection = clamped(text, selection);
    const std::vector<MarkdownSourceRange> lines = lineRanges(text, selection);
    const MarkdownSourceRange block = MarkdownSourceRange::fromBounds(lines.front().location, lines.back().upperBound());

    MarkdownSourceRange first, second; // in text order
    if (offset < 0) {
        if (block.location == 0)
            return std::nullopt;
        const auto previous = chars::lineAt(text, block.location - 1);
        first = MarkdownSourceRange::fromBounds(int(previous.start), block.location);
        second = block;
    } else {
        if (block.upperBound() >= text.size())
            return std::nullopt;
        const auto next = chars::lineAt(text, block.upperBound());
        first = block;
        second = MarkdownSourceRange::fromBounds(block.upperBound(), int(next.end));
    }
    // Only the second piece can lack a terminator (it ends the text); it takes the first's,
    // so the lines do not run together.
    QString firstText = text.mid(first.location, first.length);
    QString secondText = text.mid(second.location, second.length);
    const int secondTerminator = second.length > 0
        ? int(second.upperBound() - chars::lineAt(text, second.upperBound() - 1).contentsEnd) : 0;
    if (secondTerminator == 0) {
        const auto firstBounds = chars::lineAt(text, first.upperBound() - 1);
        const int firstTerminator = int(first.upperBound() - firstBounds.contentsEnd);
        secondText += firstText.right(firstTerminator);
        firstText.chop(firstTerminator);
    }
    const QString replacement = secondText + firstText;
    const int newBlockStart = offset < 0 ? first.location : first.location + int(secondText.size());
    const int shift = newBlockStart - block.location;
    return replacing(text, MarkdownSourceRange::fromBounds(first.location, second.upperBound()), replacement,
                     {selection.location + shift, selection.length});
}

}
