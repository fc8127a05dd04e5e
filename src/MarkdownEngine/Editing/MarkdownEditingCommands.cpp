#include "MarkdownEngine/Editing/MarkdownEditingCommands.h"
#include "MarkdownEngine/Editing/EditingText.h"

#include "MarkdownEngine/Core/MarkdownTextColor.h"
#include "MarkdownEngine/Core/TextCharacters.h"
#include "MarkdownEngine/Parser/BlockTokenizer.h"
#include "MarkdownEngine/Parser/GraphemeCount.h"
#include "MarkdownEngine/Parser/InlineParser.h"

#include <QRegularExpression>
#include <algorithm>

namespace velmo::markdown {

using Edit = MarkdownEditingCommands::Edit;

namespace {

using editing_text::isBlank;
using editing_text::leadingBlanks;


bool isLowSurrogateAt(QStringView text, qsizetype i)
{
    return i > 0 && i < text.size() && text[i].isLowSurrogate() && text[i - 1].isHighSurrogate();
}

std::optional<MarkdownTextColor> namedColor(QStringView name)
{
    for (int k = MarkdownTextColor::red; k <= MarkdownTextColor::gray; ++k) {
        const MarkdownTextColor color(static_cast<MarkdownTextColor::Kind>(k));
        if (chars::trimmed(name).compare(color.rawValue(), Qt::CaseInsensitive) == 0)
            return color;
    }
    return std::nullopt;
}

// Drops every pairing of `delimiter` in order: the first with the second, the third with the
// fourth; an odd one out stays.
QString strippingPairs(const QString& text, QStringView delimiter)
{
    std::vector<qsizetype> hits;
    for (qsizetype i = text.indexOf(delimiter); i >= 0; i = text.indexOf(delimiter, i + delimiter.size()))
        hits.push_back(i);
    if (hits.size() % 2)
        hits.pop_back();
    if (hits.empty())
        return text;
    QString result;
    result.reserve(text.size());
    qsizetype from = 0;
    for (qsizetype hit : hits) {
        result += QStringView(text).mid(from, hit - from);
        from = hit + delimiter.size();
    }
    result += QStringView(text).mid(from);
    return result;
}

}

// ---------------------------------------------------------------------------------------------
// Helpers

MarkdownSourceRange MarkdownEditingCommands::clamped(QStringView text, MarkdownSourceRange selection)
{
    const int size = int(text.size());
    const int location = std::clamp(selection.location, 0, size);
    const int length = std::clamp(selection.length, 0, size - location);
    return {location, length};
}

std::optional<MarkdownBlock> MarkdownEditingCommands::blockAt(const QString& text, int offset, bool withInlines)
{
    const MarkdownParseOptions options;
    BlockTokenizer tokenizer(text, options);
    std::vector<MarkdownBlock> blocks = tokenizer.parseBlocks();
    for (MarkdownBlock& block : blocks) {
        const int length = std::max(block.range.length, 1);
        if (block.range.location <= offset && offset < block.range.location + length) {
            if (withInlines) {
                QSet<QString> labels;
                for (auto it = tokenizer.footnoteDefinitions().cbegin(); it != tokenizer.footnoteDefinitions().cend(); ++it)
                    labels.insert(it.key());
                const InlineParser::Context context(text, tokenizer.linkDefinitions(), labels, options);
                block.inlines = InlineParser::parse(block.contentRange, context);
            }
            return std::move(block);
        }
    }
    return std::nullopt;
}

Edit MarkdownEditingCommands::replacing(const QString& text, MarkdownSourceRange range, const QString& replacement,
                                        MarkdownSourceRange selection)
{
    Edit edit;
    edit.text = text;
    edit.text.replace(range.location, range.length, replacement);
    edit.selection = clamped(edit.text, selection);

    // Narrow the mutation to what really changes, never splitting a surrogate pair, so that a
    // view restyles and records as little as possible.
    const QStringView old = QStringView(text).mid(range.location, range.length);
    qsizetype prefix = 0;
    const qsizetype limit = std::min(old.size(), replacement.size());
    while (prefix < limit && old[prefix] == replacement[prefix])
        ++prefix;
    qsizetype suffix = 0;
    while (suffix < limit - prefix && old[old.size() - 1 - suffix] == replacement[replacement.size() - 1 - suffix])
        ++suffix;
    if (prefix > 0 && isLowSurrogateAt(text, range.location + prefix))
        --prefix;
    if (suffix > 0 && isLowSurrogateAt(text, range.location + old.size() - suffix))
        --suffix;
    edit.mutation.range = {int(range.location + prefix), int(old.size() - prefix - suffix)};
    edit.mutation.replacement = replacement.mid(prefix, replacement.size() - prefix - suffix);
    return edit;
}

// ---------------------------------------------------------------------------------------------
// Dispatch, in three groups: wraps and inline constructs, line-wise and block commands, and
// structure (tables, footnotes, moving lines).

namespace {

using Commands = MarkdownEditingCommands;
using namespace editor_command;

std::optional<Edit> inlineEdit(const MarkdownEditorCommand& command, const QString& text, MarkdownSourceRange sel,
                               const QString& placeholder)
{
    if (const auto* color = std::get_if<TextColor>(&command))
        return Commands::textColor(text, sel, color->color, placeholder);
    if (const auto* insertion = std::get_if<InsertText>(&command))
        return Commands::insert(text, sel, insertion->text);
    const auto* simple = std::get_if<Simple>(&command);
    if (!simple)
        return std::nullopt;
    switch (*simple) {
    case Simple::bold: return Commands::bold(text, sel, placeholder);
    case Simple::italic: return Commands::italic(text, sel, placeholder);
    case Simple::strikethrough: return Commands::strikethrough(text, sel, placeholder);
    case Simple::highlight: return Commands::highlight(text, sel, placeholder);
    case Simple::inlineCode: return Commands::inlineCode(text, sel, placeholder);
    case Simple::inlineLatex: return Commands::inlineLatex(text, sel, placeholder);
    case Simple::link: return Commands::link(text, sel, {});
    case Simple::wikiLink: return Commands::wikiLink(text, sel, {});
    case Simple::image: return Commands::image(text, sel, {});
    case Simple::clearFormatting: return Commands::clearFormatting(text, sel);
    default: return std::nullopt;
    }
}

std::optional<Edit> blockEdit(const MarkdownEditorCommand& command, const QString& text, MarkdownSourceRange sel,
                              const QString& indentation)
{
    if (const auto* heading = std::get_if<Heading>(&command))
        return Commands::heading(text, sel, heading->level);
    if (const auto* callout = std::get_if<Callout>(&command))
        return Commands::callout(text, sel, callout->kind);
    if (const auto* front = std::get_if<FrontMatter>(&command))
        return Commands::frontMatter(text, sel, front->fields);
    const auto* simple = std::get_if<Simple>(&command);
    if (!simple)
        return std::nullopt;
    switch (*simple) {
    case Simple::blockLatex: return Commands::blockLatex(text, sel);
    case Simple::blockquote: return Commands::blockquote(text, sel);
    case Simple::bulletList: return Commands::bulletList(text, sel);
    case Simple::orderedList: return Commands::orderedList(text, sel);
    case Simple::taskList: return Commands::taskList(text, sel);
    case Simple::indent: return Commands::indent(text, sel, Commands::IndentDirection::inward, indentation);
    case Simple::outdent: return Commands::indent(text, sel, Commands::IndentDirection::outward, indentation);
    case Simple::codeBlock: return Commands::codeBlock(text, sel, {});
    case Simple::thematicBreak: return Commands::thematicBreak(text, sel);
    case Simple::toggleTaskCheckbox: {
        // The box keeps its width, so the selection stays where it was.
        auto result = Commands::toggleTaskCheckbox(text, sel.location);
        if (result)
            result->selection = sel;
        return result;
    }
    default: return std::nullopt;
    }
}

std::optional<Edit> structureEdit(const MarkdownEditorCommand& command, const QString& text, MarkdownSourceRange sel)
{
    if (const auto* table = std::get_if<Table>(&command))
        return Commands::table(text, sel, table->rows, table->columns);
    if (const auto* tableCommand = std::get_if<TableCommand>(&command))
        return Commands::tableEdit(text, sel, tableCommand->command);
    const auto* simple = std::get_if<Simple>(&command);
    if (!simple)
        return std::nullopt;
    switch (*simple) {
    case Simple::tableEdit: return Commands::tidyTable(text, sel);
    case Simple::footnote: return Commands::footnote(text, sel);
    case Simple::renumberFootnotes: return Commands::renumberFootnotes(text, sel);
    case Simple::moveLinesUp: return Commands::moveLines(text, sel, -1);
    case Simple::moveLinesDown: return Commands::moveLines(text, sel, 1);
    // The view copies the table itself; the text does not change.
    case Simple::copyTable:
    default: return std::nullopt;
    }
}

}

std::optional<Edit> MarkdownEditingCommands::edit(const MarkdownEditorCommand& command, const QString& text,
                                                  MarkdownSourceRange selection, const QString& placeholder,
                                                  const QString& indentation)
{
    selection = clamped(text, selection);
    if (auto result = inlineEdit(command, text, selection, placeholder))
        return result;
    if (auto result = blockEdit(command, text, selection, indentation))
        return result;
    return structureEdit(command, text, selection);
}

// ---------------------------------------------------------------------------------------------
// Wraps

Edit MarkdownEditingCommands::toggleWrap(const QString& text, MarkdownSourceRange selection, const QString& open,
                                         const std::optional<QString>& closeOrSame, const QString& placeholder)
{
    selection = clamped(text, selection);
    const QString& close = closeOrSame ? *closeOrSame : open;
    const QStringView selected = QStringView(text).mid(selection.location, selection.length);

    // The delimiters are inside the selection. Counted in characters, so that a lone "*" is
    // never taken for an opening and a closing one.
    if (graphemeCount(selected) >= graphemeCount(open) + graphemeCount(close)
        && selected.size() >= open.size() + close.size() && selected.startsWith(open) && selected.endsWith(close)) {
        const QString inner = selected.mid(open.size(), selected.size() - open.size() - close.size()).toString();
        return replacing(text, selection, inner, {selection.location, int(inner.size())});
    }

    // The delimiters stand around the selection.
    const int before = selection.location - int(open.size());
    if (before >= 0 && QStringView(text).mid(before, open.size()) == open
        && QStringView(text).mid(selection.upperBound()).startsWith(close)) {
        const MarkdownSourceRange whole{before, int(open.size() + selection.length + close.size())};
        return replacing(text, whole, selected.toString(), {before, selection.length});
    }

    QString inner = selected.toString();
    if (inner.isEmpty())
        inner = placeholder.isEmpty() ? QStringLiteral("text") : placeholder;
    return replacing(text, selection, open + inner + close,
                     {selection.location + int(open.size()), int(inner.size())});
}

Edit MarkdownEditingCommands::bold(const QString& text, MarkdownSourceRange selection, const QString& placeholder)
{
    return toggleWrap(text, selection, QStringLiteral("**"), std::nullopt, placeholder);
}

Edit MarkdownEditingCommands::italic(const QString& text, MarkdownSourceRange selection, const QString& placeholder)
{
    return toggleWrap(text, selection, QStringLiteral("*"), std::nullopt, placeholder);
}

Edit MarkdownEditingCommands::strikethrough(const QString& text, MarkdownSourceRange selection,
                                            const QString& placeholder)
{
    return toggleWrap(text, selection, QStringLiteral("~~"), std::nullopt, placeholder);
}

Edit MarkdownEditingCommands::highlight(const QString& text, MarkdownSourceRange selection, const QString& placeholder)
{
    return toggleWrap(text, selection, QStringLiteral("=="), std::nullopt, placeholder);
}

Edit MarkdownEditingCommands::inlineCode(const QString& text, MarkdownSourceRange selection, const QString& placeholder)
{
    return toggleWrap(text, selection, QStringLiteral("`"), std::nullopt, placeholder);
}

Edit MarkdownEditingCommands::inlineLatex(const QString& text, MarkdownSourceRange selection,
                                          const QString& placeholder)
{
    return toggleWrap(text, selection, QStringLiteral("$"), std::nullopt, placeholder);
}

// ---------------------------------------------------------------------------------------------
// Text colour

std::optional<Edit> MarkdownEditingCommands::textColor(const QString& text, MarkdownSourceRange selection,
                                                       const std::optional<QString>& color,
                                                       const QString& placeholder)
{
    selection = clamped(text, selection);
    QString openTag;
    if (color) {
        if (const auto named = namedColor(*color))
            openTag = named->openTag();
        else if (MarkdownTextColor::parse(*color))
            openTag = QStringLiteral("<span style=\"color:") + chars::trimmed(*color).toString() + QStringLiteral("\">");
        else
            return std::nullopt;
    }

    // Spans never cross a line, so only the lines of the selection can hold one that matters.
    // The open tag is matched on its own and its closer found with a plain search, which keeps
    // the cost linear on lines full of unclosed tags.
    static const QRegularExpression openPattern(
        QStringLiteral("<span\\s+style\\s*=\\s*[\"']\\s*color\\s*:\\s*([^;\"'<>\\n]+?)\\s*;?\\s*[\"']\\s*>"),
        QRegularExpression::CaseInsensitiveOption);
    static const QString closeTag = QStringLiteral("</span>");
    const auto first = chars::lineAt(text, selection.location);
    const auto last = chars::lineAt(text, selection.upperBound());
    struct Span {
        MarkdownSourceRange whole;
        MarkdownSourceRange inner;
    };
    std::vector<Span> spans;
    qsizetype from = first.start;
    // The first closer after the last search's start: -2 before any search, -1 when none is
    // left. Searched again only once passed, so unclosed tags cost one scan in all.
    qsizetype nextClose = -2;
    // The end of the line that holds the last match, found forward so that many tags on one
    // long line do not each walk back to its start.
    qsizetype lineEnd = -1;
    // One global match over the lines: a fresh match per tag would check the whole subject
    // again each time.
    auto matches = openPattern.globalMatch(QStringView(text).mid(first.start, last.contentsEnd - first.start));
    while (matches.hasNext()) {
        const QRegularExpressionMatch match = matches.next();
        if (first.start + match.capturedStart(0) < from)
            continue;
        const qsizetype tagStart = first.start + match.capturedStart(0);
        const qsizetype innerStart = first.start + match.capturedEnd(0);
        if (innerStart > lineEnd) {
            lineEnd = innerStart;
            while (lineEnd < text.size() && chars::terminatorLength(text, lineEnd) == 0)
                ++lineEnd;
        }
        if (nextClose == -2 || (nextClose >= 0 && nextClose < innerStart)) {
            nextClose = QStringView(text).left(last.contentsEnd).indexOf(closeTag, innerStart, Qt::CaseInsensitive);
        }
        const qsizetype close = nextClose;
        if (close < 0 || close + closeTag.size() > lineEnd || match.capturedView(0).contains(u'\n')) {
            continue;
        }
        spans.push_back(Span{MarkdownSourceRange::fromBounds(int(tagStart), int(close + closeTag.size())),
                             MarkdownSourceRange::fromBounds(int(innerStart), int(close))});
        from = close + closeTag.size();
    }

    // The selection lies in one span: recolour it, or take its tags away.
    for (const Span& span : spans) {
        if (span.whole.location <= selection.location && selection.upperBound() <= span.whole.upperBound()) {
            const QString inner = QStringView(text).mid(span.inner.location, span.inner.length).toString();
            if (!color)
                return replacing(text, span.whole, inner, {span.whole.location, int(inner.size())});
            return replacing(text, span.whole, openTag + inner + closeTag,
                             {span.whole.location + int(openTag.size()), int(inner.size())});
        }
    }

    // Otherwise the spans inside the selection lose their tags; with a colour the result is
    // wrapped in one new span.
    QString inner;
    qsizetype cursor = selection.location;
    for (const Span& span : spans) {
        if (span.whole.location < selection.location || span.whole.upperBound() > selection.upperBound())
            continue;
        inner += QStringView(text).mid(cursor, span.whole.location - cursor);
        inner += QStringView(text).mid(span.inner.location, span.inner.length);
        cursor = span.whole.upperBound();
    }
    inner += QStringView(text).mid(cursor, selection.upperBound() - cursor);
    if (!color) {
        if (inner.size() == selection.length)
            return std::nullopt;
        return replacing(text, selection, inner, {selection.location, int(inner.size())});
    }
    if (inner.isEmpty())
        inner = placeholder.isEmpty() ? QStringLiteral("text") : placeholder;
    return replacing(text, selection, openTag + inner + closeTag,
                     {selection.location + int(openTag.size()), int(inner.size())});
}

// ---------------------------------------------------------------------------------------------
// Links, images, blocks

Edit MarkdownEditingCommands::link(const QString& text, MarkdownSourceRange selection, const QString& destination)
{
    selection = clamped(text, selection);
    // Only the block of the selection can hold a link around it.
    const std::optional<MarkdownBlock> block = blockAt(text, selection.location, true);
    std::vector<const MarkdownInline*> nodes;
    if (block) {
        for (const MarkdownInline& top : block->inlines)
            top.forEach([&](const MarkdownInline& node) { nodes.push_back(&node); });
        std::stable_sort(nodes.begin(), nodes.end(), [](const MarkdownInline* a, const MarkdownInline* b) {
            return a->range.location < b->range.location;
        });
    }
    for (const MarkdownInline* node : nodes) {
        if (!node->is<inline_kind::Link>())
            continue;
        const MarkdownSourceRange range = node->range;
        if (range.location > selection.location || range.upperBound() < selection.upperBound()
            || range.upperBound() <= selection.location)
            continue;
        if (node->markerRanges.isEmpty())
            break;
        const MarkdownSourceRange marker = node->markerRanges.last();
        if (marker.length < 2 || text[marker.location] != u'(')
            break;
        const MarkdownSourceRange inside{marker.location + 1, marker.length - 2};
        if (destination.isEmpty())
            return replacing(text, {0, 0}, {}, inside);
        return replacing(text, inside, destination, {inside.location, int(destination.size())});
    }

    const QString label = selection.length > 0 ? text.mid(selection.location, selection.length) : QStringLiteral("text");
    const QString construct = u'[' + label + QStringLiteral("](") + destination + u')';
    const int caret = destination.isEmpty() ? selection.location + int(construct.size()) - 1
                                            : selection.location + int(construct.size());
    return replacing(text, selection, construct, {caret, 0});
}

Edit MarkdownEditingCommands::wikiLink(const QString& text, MarkdownSourceRange selection, const QString& target)
{
    selection = clamped(text, selection);
    const QString selected = text.mid(selection.location, selection.length);
    QString inside;
    if (!selected.isEmpty() && !target.isEmpty())
        inside = target + u'|' + selected;
    else
        inside = target.isEmpty() ? selected : target;
    return replacing(text, selection, QStringLiteral("[[") + inside + QStringLiteral("]]"),
                     {selection.location + 2, int(inside.size())});
}

Edit MarkdownEditingCommands::image(const QString& text, MarkdownSourceRange selection, const QString& source)
{
    selection = clamped(text, selection);
    const QString alt = selection.length > 0 ? text.mid(selection.location, selection.length) : QStringLiteral("alt");
    const QString construct = QStringLiteral("![") + alt + QStringLiteral("](") + source + u')';
    const int caret = source.isEmpty() ? selection.location + int(construct.size()) - 1
                                       : selection.location + int(construct.size());
    return replacing(text, selection, construct, {caret, 0});
}

Edit MarkdownEditingCommands::codeBlock(const QString& text, MarkdownSourceRange selection, const QString& language)
{
    selection = clamped(text, selection);
    const QString fence = QStringLiteral("```");
    QString selected = text.mid(selection.location, selection.length);
    if (selected.contains(fence)) {
        selected.remove(fence);
        qsizetype start = 0;
        qsizetype end = selected.size();
        while (start < end && chars::isNewline(selected[start].unicode()))
            ++start;
        while (end > start && chars::isNewline(selected[end - 1].unicode()))
            --end;
        const QString inner = selected.mid(start, end - start);
        return replacing(text, selection, inner, {selection.location, int(inner.size())});
    }
    const QString opener = fence + language + u'\n';
    const QString block = opener + selected + u'\n' + fence;
    const int caret = selected.isEmpty() ? selection.location + int(opener.size())
                                         : selection.location + int(block.size());
    return replacing(text, selection, block, {caret, 0});
}

Edit MarkdownEditingCommands::blockLatex(const QString& text, MarkdownSourceRange selection)
{
    selection = clamped(text, selection);
    const QString block = QStringLiteral("$$\n") + text.mid(selection.location, selection.length) + QStringLiteral("\n$$");
    return replacing(text, selection, block, {selection.location + int(block.size()), 0});
}

Edit MarkdownEditingCommands::thematicBreak(const QString& text, MarkdownSourceRange selection)
{
    selection = clamped(text, selection);
    const auto line = chars::lineAt(text, selection.location);
    const QStringView body = QStringView(text).mid(line.start, line.contentsEnd - line.start);
    if (chars::trimmed(body).isEmpty()) {
        // Under a paragraph line the break would underline it as a heading: keep a blank line.
        bool underText = false;
        if (line.start > 0) {
            const auto previous = chars::lineAt(text, line.start - 1);
            underText = !chars::trimmed(QStringView(text).mid(previous.start, previous.contentsEnd - previous.start)).isEmpty();
        }
        const QString insertion = underText ? QStringLiteral("\n---\n") : QStringLiteral("---\n");
        return replacing(text, {int(line.start), 0}, insertion, {int(line.start + insertion.size()), 0});
    }
    // A blank line first, so the paragraph above does not become a heading underlined by it.
    const bool endsInLF = line.end > line.contentsEnd && text[line.end - 1] == u'\n';
    const QString insertion = endsInLF ? QStringLiteral("\n---\n") : QStringLiteral("\n\n---\n");
    return replacing(text, {int(line.end), 0}, insertion, {int(line.end + insertion.size()), 0});
}

Edit MarkdownEditingCommands::clearFormatting(const QString& text, MarkdownSourceRange selection)
{
    selection = clamped(text, selection);
    if (selection.length == 0) {
        const auto line = chars::lineAt(text, selection.location);
        selection = MarkdownSourceRange::fromBounds(int(line.start), int(line.contentsEnd));
    }
    QString result = text.mid(selection.location, selection.length);
    for (const char* delimiter : {"**", "__", "==", "~~"})
        result.remove(QLatin1String(delimiter));
    for (const char* delimiter : {"*", "_", "`", "$"})
        result = strippingPairs(result, QString::fromLatin1(delimiter));
    return replacing(text, selection, result, {selection.location, int(result.size())});
}

std::optional<Edit> MarkdownEditingCommands::toggleTaskCheckbox(const QString& text, int at)
{
    const int offset = std::clamp(at, 0, int(text.size()));
    const auto line = chars::lineAt(text, offset);
    const QStringView body = QStringView(text).mid(line.start, line.contentsEnd - line.start);
    const auto task = taskPrefix(body);
    if (!task)
        return std::nullopt;
    // The box of the prefix, not a bracket pair further along in the item's text.
    const int box = int(line.start) + task->boxOffset;
    const QString mark = text[box + 1] == u' ' ? QStringLiteral("x") : QStringLiteral(" ");
    return replacing(text, {box + 1, 1}, mark, clamped(text, {at, 0}));
}

// ---------------------------------------------------------------------------------------------
// Line-wise commands

std::vector<MarkdownSourceRange> MarkdownEditingCommands::lineRanges(QStringView text, MarkdownSourceRange selection)
{
    selection = clamped(text, selection);
    std::vector<MarkdownSourceRange> ranges;
    // A selection's last unit decides its last line, so one that ends at a line's start does
    // not take that line in.
    const qsizetype last = selection.length > 0 ? selection.upperBound() - 1 : selection.location;
    qsizetype start = chars::lineAt(text, selection.location).start;
    while (true) {
        const auto line = chars::lineAt(text, start);
        ranges.push_back(MarkdownSourceRange::fromBounds(int(line.start), int(line.end)));
        if (line.end > last || line.end >= text.size())
            break;
        start = line.end;
    }
    return ranges;
}

std::optional<Edit> MarkdownEditingCommands::mapLines(const QString& text, MarkdownSourceRange selection,
                                                      const LineTransform& transform)
{
    selection = clamped(text, selection);
    const std::vector<MarkdownSourceRange> lines = lineRanges(text, selection);
    if (lines.empty())
        return std::nullopt;
    QString replacement;
    std::vector<LineOrigin> origins;
    origins.reserve(lines.size());
    const int coveredStart = lines.front().location;
    for (std::size_t index = 0; index < lines.size(); ++index) {
        const MarkdownSourceRange line = lines[index];
        const auto bounds = chars::lineAt(text, line.location);
        const QStringView body = QStringView(text).mid(line.location, bounds.contentsEnd - line.location);
        const QStringView terminator = QStringView(text).mid(bounds.contentsEnd, line.upperBound() - bounds.contentsEnd);
        const int newStart = coveredStart + int(replacement.size());
        if (auto changed = transform(body, int(index)))
            replacement += *changed;
        else
            replacement += body;
        replacement += terminator;
        origins.push_back({line.location, line.length, newStart, coveredStart + int(replacement.size()) - newStart});
    }
    const MarkdownSourceRange covered = MarkdownSourceRange::fromBounds(coveredStart, lines.back().upperBound());
    const int newTextSize = int(text.size()) - covered.length + int(replacement.size());

    // A position keeps its distance from its line's end, so a prefix added in front moves it.
    // An end exactly at a line's start belongs to the line before it.
    auto map = [&](int position, bool strictlyBefore) {
        const LineOrigin* origin = &origins.front();
        for (const LineOrigin& candidate : origins) {
            if (strictlyBefore ? candidate.start < position : candidate.start <= position)
                origin = &candidate;
        }
        const int mapped = origin->newStart + (position - origin->start) + (origin->newLength - origin->oldLength);
        return std::clamp(mapped, origin->newStart, std::min(origin->newStart + origin->newLength, newTextSize));
    };
    const int location = map(selection.location, false);
    MarkdownSourceRange newSelection{location, 0};
    if (selection.length > 0)
        newSelection.length = std::max(0, map(selection.upperBound(), true) - location);
    return replacing(text, covered, replacement, newSelection);
}

QStringView MarkdownEditingCommands::stripHeadingPrefix(QStringView line)
{
    qsizetype i = 0;
    while (i < line.size() && line[i] == u'#')
        ++i;
    if (i < line.size() && line[i] == u' ')
        ++i;
    return line.mid(i);
}

std::optional<Edit> MarkdownEditingCommands::heading(const QString& text, MarkdownSourceRange selection, int level)
{
    // Beyond six "#" a line is no heading at all.
    level = std::min(level, 6);
    const QString prefix = level >= 1 ? QString(level, u'#') + u' ' : QString();
    return mapLines(text, selection, [&](QStringView body, int) -> std::optional<QString> {
        const qsizetype blanks = leadingBlanks(body);
        const QStringView rest = body.mid(blanks);
        if (level < 1)
            return body.left(blanks).toString() + stripHeadingPrefix(rest).toString();
        if (rest.startsWith(prefix))
            return rest.mid(prefix.size()).toString();
        return body.left(blanks).toString() + prefix + stripHeadingPrefix(rest).toString();
    });
}

std::optional<Edit> MarkdownEditingCommands::blockquote(const QString& text, MarkdownSourceRange selection)
{
    selection = clamped(text, selection);
    bool allQuoted = true;
    for (const MarkdownSourceRange line : lineRanges(text, selection)) {
        if (line.length == 0 || text[line.location] != u'>') {
            allQuoted = false;
            break;
        }
    }
    if (allQuoted) {
        return mapLines(text, selection, [](QStringView body, int) -> std::optional<QString> {
            const qsizetype blanks = leadingBlanks(body);
            const QStringView rest = body.mid(blanks);
            if (rest.startsWith(u"> "))
                return rest.mid(2).toString();
            if (rest.startsWith(u'>'))
                return rest.mid(1).toString();
            return std::nullopt;
        });
    }
    return mapLines(text, selection,
                    [](QStringView body, int) -> std::optional<QString> { return QStringLiteral("> ") + body.toString(); });
}

std::optional<MarkdownEditingCommands::BulletPrefix> MarkdownEditingCommands::bulletPrefix(QStringView line)
{
    const qsizetype blanks = leadingBlanks(line);
    const QStringView after = line.mid(blanks);
    if (after.size() >= 2 && (after[0] == u'-' || after[0] == u'*' || after[0] == u'+') && after[1] == u' ')
        return BulletPrefix{line.left(blanks).toString(), after.mid(2).toString(), false};
    qsizetype i = 0;
    while (i < after.size()) {
        int length = 1;
        const char32_t c = chars::scalarAt(after, i, &length);
        if (!QChar::isNumber(c))
            break;
        i += length;
    }
    if (i == 0 || i + 1 >= after.size() || (after[i] != u'.' && after[i] != u')') || after[i + 1] != u' ')
        return std::nullopt;
    return BulletPrefix{line.left(blanks).toString(), after.mid(i + 2).toString(), true};
}

std::optional<MarkdownEditingCommands::TaskPrefix> MarkdownEditingCommands::taskPrefix(QStringView line)
{
    QString indentationText;
    qsizetype restStart = 0;
    if (const auto bullet = bulletPrefix(line)) {
        indentationText = bullet->indentation;
        restStart = line.size() - bullet->rest.size();
    } else {
        restStart = leadingBlanks(line);
        indentationText = line.left(restStart).toString();
    }
    const QStringView rest = line.mid(restStart);
    if (!(rest.startsWith(u"[ ] ") || rest.startsWith(u"[x] ") || rest.startsWith(u"[X] ")))
        return std::nullopt;
    return TaskPrefix{indentationText, rest.mid(4).toString(), int(restStart)};
}

std::optional<Edit> MarkdownEditingCommands::list(const QString& text, MarkdownSourceRange selection, ListKind kind)
{
    selection = clamped(text, selection);
    auto hasKind = [kind](QStringView body) {
        if (kind == ListKind::task)
            return taskPrefix(body).has_value();
        const auto bullet = bulletPrefix(body);
        if (!bullet || taskPrefix(body))
            return false;
        return bullet->isOrdered == (kind == ListKind::ordered);
    };
    // Remove only when there is something to remove: a blank selection always gets a marker.
    bool anyContent = false;
    bool removing = true;
    for (const MarkdownSourceRange line : lineRanges(text, selection)) {
        const auto bounds = chars::lineAt(text, line.location);
        const QStringView body = QStringView(text).mid(bounds.start, bounds.contentsEnd - bounds.start);
        if (chars::trimmed(body).isEmpty())
            continue;
        anyContent = true;
        if (!hasKind(body)) {
            removing = false;
            break;
        }
    }
    removing = removing && anyContent;

    int number = 1;
    return mapLines(text, selection, [&](QStringView body, int index) -> std::optional<QString> {
        if (index > 0 && chars::trimmed(body).isEmpty())
            return std::nullopt;
        const auto task = taskPrefix(body);
        const auto bullet = bulletPrefix(body);
        if (removing) {
            if (kind == ListKind::task && task)
                return task->indentation + task->rest;
            if (kind != ListKind::task && bullet)
                return bullet->indentation + bullet->rest;
            return std::nullopt;
        }
        QString indentationText;
        QString content;
        if (task) {
            indentationText = task->indentation;
            content = task->rest;
        } else if (bullet) {
            indentationText = bullet->indentation;
            content = bullet->rest;
        } else {
            const qsizetype blanks = leadingBlanks(body);
            indentationText = body.left(blanks).toString();
            content = body.mid(blanks).toString();
        }
        QString marker;
        switch (kind) {
        case ListKind::bullet: marker = QStringLiteral("- "); break;
        case ListKind::ordered: marker = QString::number(number) + QStringLiteral(". "); break;
        case ListKind::task:
            if (task) {
                ++number;
                return std::nullopt;
            }
            marker = QStringLiteral("- [ ] ");
            break;
        }
        ++number;
        return indentationText + marker + content;
    });
}

std::optional<Edit> MarkdownEditingCommands::bulletList(const QString& text, MarkdownSourceRange selection)
{
    return list(text, selection, ListKind::bullet);
}

std::optional<Edit> MarkdownEditingCommands::orderedList(const QString& text, MarkdownSourceRange selection)
{
    return list(text, selection, ListKind::ordered);
}

std::optional<Edit> MarkdownEditingCommands::taskList(const QString& text, MarkdownSourceRange selection)
{
    return list(text, selection, ListKind::task);
}

std::optional<Edit> MarkdownEditingCommands::indent(const QString& text, MarkdownSourceRange selection,
                                                    IndentDirection direction, const QString& unit)
{
    if (direction == IndentDirection::inward)
        return mapLines(text, selection, [&](QStringView body, int) -> std::optional<QString> { return unit + body.toString(); });
    return mapLines(text, selection, [&](QStringView body, int) -> std::optional<QString> {
        if (!unit.isEmpty() && body.startsWith(unit))
            return body.mid(unit.size()).toString();
        if (body.startsWith(u'\t'))
            return body.mid(1).toString();
        return std::nullopt;
    });
}

}
