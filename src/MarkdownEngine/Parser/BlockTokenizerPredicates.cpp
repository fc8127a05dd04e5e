// The line predicates of the block tokenizer. Each looks at one line (the table check at the
// delimiter line) and allocates nothing unless it accepts.

#include "MarkdownEngine/Core/MarkdownOutline.h"
#include "MarkdownEngine/Core/TextCharacters.h"
#include "MarkdownEngine/Parser/BlockTokenizer.h"
#include "MarkdownEngine/Parser/GraphemeCount.h"

#include <limits>

namespace velmo::markdown {

namespace {

bool isBlank(QChar c)
{
    return c == u' ' || c == u'\t';
}

}

std::optional<BlockTokenizer::FenceMatch> BlockTokenizer::fenceMarker(QStringView trimmed)
{
    trimmed = chars::trimmedHorizontal(trimmed);
    if (trimmed.isEmpty())
        return std::nullopt;
    const char16_t c = trimmed[0].unicode();
    if (c != u'`' && c != u'~')
        return std::nullopt;
    qsizetype run = 1;
    while (run < trimmed.size() && trimmed[run] == c)
        ++run;
    if (run < 3)
        return std::nullopt;
    const QStringView info = trimmed.mid(run);
    if (c == u'`' && info.contains(u'`'))
        return std::nullopt;
    return FenceMatch{c, int(run), info};
}

std::optional<int> BlockTokenizer::setextLevel(QStringView trimmed)
{
    trimmed = chars::trimmedHorizontal(trimmed);
    if (trimmed.size() < 2 || (trimmed[0] != u'=' && trimmed[0] != u'-'))
        return std::nullopt;
    const QChar c = trimmed[0];
    for (QChar unit : trimmed) {
        if (unit != c)
            return std::nullopt;
    }
    return c == u'=' ? 1 : 2;
}

std::optional<MarkdownListMarker> BlockTokenizer::listMarker(QStringView line)
{
    qsizetype i = 0;
    int indent = 0;
    while (i < line.size() && isBlank(line[i])) {
        indent += line[i] == u'\t' ? 4 : 1;
        ++i;
    }
    if (i >= line.size())
        return std::nullopt;
    const qsizetype size = line.size();
    const char16_t c = line[i].unicode();
    if (c == u'*' || c == u'+' || c == u'-') {
        if (i + 1 == size)
            return MarkdownListMarker{list_kind::Bullet{c}, {int(i), 1}, int(i + 1), indent};
        if (!isBlank(line[i + 1]))
            return std::nullopt;
        return MarkdownListMarker{list_kind::Bullet{c}, {int(i), 2}, int(i + 2), indent};
    }
    qsizetype j = i;
    qint64 number = 0;
    bool overflow = false;
    while (j < size && line[j] >= u'0' && line[j] <= u'9') {
        const int digit = line[j].unicode() - u'0';
        if (number > (std::numeric_limits<qint64>::max() - digit) / 10)
            overflow = true;
        else
            number = number * 10 + digit;
        ++j;
    }
    if (j == i || j >= size || (line[j] != u'.' && line[j] != u')'))
        return std::nullopt;
    const qsizetype after = j + 1;
    if (after < size && !isBlank(line[after]))
        return std::nullopt;
    const list_kind::Ordered kind{overflow ? 1 : number, line[j].unicode()};
    return MarkdownListMarker{kind, {int(i), int(after - i)}, int(after < size ? after + 1 : after), indent};
}

std::optional<char16_t> BlockTokenizer::thematicBreakCharacter(QStringView text)
{
    int weight = 0;
    for (QChar c : text) {
        if (!isBlank(c))
            break;
        weight += c == u'\t' ? 4 : 1;
        if (weight > 3)
            return std::nullopt;
    }
    const QStringView t = chars::trimmedHorizontal(text);
    if (t.size() < 3)
        return std::nullopt;
    for (char16_t candidate : {u'-', u'*', u'_'}) {
        int count = 0;
        bool onlyThat = true;
        for (QChar c : t) {
            if (c == candidate)
                ++count;
            else if (!isBlank(c)) {
                onlyThat = false;
                break;
            }
        }
        if (onlyThat && count >= 3)
            return candidate;
    }
    return std::nullopt;
}

std::optional<std::vector<MarkdownTableAlignment>> BlockTokenizer::tableAlignments(QStringView text, int limit)
{
    const QStringView t = chars::trimmedHorizontal(text);
    if (!t.contains(u'-') || !t.contains(u'|'))
        return std::nullopt;
    QVarLengthArray<QStringView, 16> pieces;
    qsizetype start = 0;
    for (qsizetype i = 0; i <= t.size(); ++i) {
        if (i == t.size() || t[i] == u'|') {
            pieces.append(chars::trimmedHorizontal(t.mid(start, i - start)));
            start = i + 1;
            // Beyond the limit plus the two edge pieces nothing can pass.
            if (pieces.size() > qsizetype(limit) + 2)
                return std::nullopt;
        }
    }
    qsizetype first = 0, last = pieces.size();
    if (first < last && pieces[first].isEmpty())
        ++first;
    if (first < last && pieces[last - 1].isEmpty())
        --last;
    if (first == last || last - first > limit)
        return std::nullopt;
    std::vector<MarkdownTableAlignment> alignments;
    alignments.reserve(last - first);
    for (qsizetype p = first; p < last; ++p) {
        QChar firstUnit, lastUnit;
        bool any = false;
        for (QChar c : pieces[p]) {
            if (c == u' ')
                continue;
            if (c != u'-' && c != u':')
                return std::nullopt;
            if (!any)
                firstUnit = c;
            lastUnit = c;
            any = true;
        }
        if (!any)
            return std::nullopt;
        const bool leading = firstUnit == u':', trailing = lastUnit == u':';
        alignments.push_back(leading && trailing ? MarkdownTableAlignment::center
                             : leading           ? MarkdownTableAlignment::left
                             : trailing          ? MarkdownTableAlignment::right
                                                 : MarkdownTableAlignment::none);
    }
    return alignments;
}

std::optional<BlockTokenizer::FootnoteMatch> BlockTokenizer::footnoteDefinition(QStringView text)
{
    const QStringView t = chars::trimmedHorizontal(text);
    if (!t.startsWith(u"[^"))
        return std::nullopt;
    const qsizetype close = t.indexOf(u']', 2);
    if (close < 0 || close + 1 >= t.size() || t[close + 1] != u':' || close == 2)
        return std::nullopt;
    const QStringView label = t.mid(2, close - 2);
    int offset = graphemeCount(t.left(close + 2));
    if (close + 2 < t.size() && t[close + 2] == u' ')
        ++offset;
    return FootnoteMatch{label.toString(), offset};
}

std::optional<BlockTokenizer::DirectiveOpener> BlockTokenizer::directiveOpener(QStringView text)
{
    const QStringView t = chars::trimmedHorizontal(text);
    if (!t.startsWith(u"::"))
        return std::nullopt;
    qsizetype colons = 2;
    while (colons < t.size() && t[colons] == u':')
        ++colons;
    if (colons > 3)
        return std::nullopt;
    const QStringView rest = t.mid(colons);
    qsizetype nameStart = 0;
    while (nameStart < rest.size() && rest[nameStart] == u' ')
        ++nameStart;
    if (nameStart == rest.size())
        return std::nullopt;
    qsizetype nameEnd = rest.indexOf(u' ', nameStart);
    if (nameEnd < 0)
        nameEnd = rest.size();
    const QStringView piece = rest.mid(nameStart, nameEnd - nameStart);
    // The arguments start as many characters after the colons as the name has, so a space
    // between colons and name shifts them into the name's tail.
    const qsizetype argumentStart = graphemeAdvance(rest, graphemeCount(piece));

    DirectiveOpener opener;
    opener.name = piece.toString().toLower();
    opener.form = colons == 2 ? DirectiveSyntax::Form::leaf : DirectiveSyntax::Form::container;
    DirectiveSyntax syntax;
    syntax.name = opener.name;
    syntax.form = opener.form;
    syntax.marker = u':';
    opener.arguments = DirectiveArguments::parse(rest.mid(argumentStart), syntax);
    opener.markerRange = {0, int(colons)};
    opener.contentRange = {int(colons), int(t.size() - colons)};
    return opener;
}

}
