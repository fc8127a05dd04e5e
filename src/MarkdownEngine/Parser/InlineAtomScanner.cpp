#include "MarkdownEngine/Parser/InlineAtomScanner.h"

#include "MarkdownEngine/Core/MarkdownDocument.h"
#include "MarkdownEngine/Core/TextCharacters.h"

#include <QChar>

namespace velmo::markdown {

namespace {

bool isAsciiPunctuation(char16_t unit)
{
    return (unit >= 0x21 && unit <= 0x2F) || (unit >= 0x3A && unit <= 0x40) || (unit >= 0x5B && unit <= 0x60)
        || (unit >= 0x7B && unit <= 0x7E);
}

MarkdownSourceRange between(int from, int to)
{
    return MarkdownSourceRange::fromBounds(from, to);
}

QStringView trimmedOf(QStringView text, QStringView units)
{
    qsizetype start = 0;
    qsizetype end = text.size();
    while (start < end && units.contains(text[start]))
        ++start;
    while (end > start && units.contains(text[end - 1]))
        --end;
    return text.mid(start, end - start);
}

// Set while an image's alt text is being worked out. Images met inside that parse are
// dropped by the plain text walk, so their own alt texts are never seen: skipping them keeps
// nested images to one extra parse of the outermost one's text, not one per level.
thread_local bool computingAltText = false;

}

InlineAtomScanner::InlineAtomScanner(const InlineParser::Context& context, InlineCloserIndex& index,
                                     MarkdownInlineList::Builder& builder)
    : m_context(context), m_text(context.ns), m_index(index), m_builder(builder)
{
}

std::optional<InlineAtomScanner::Atom> InlineAtomScanner::atomAt(int p, int end)
{
    const MarkdownParseOptions& options = m_context.options;
    switch (m_text[p].unicode()) {
    case u'!':
        if (p + 1 < end && m_text[p + 1] == u'[')
            return image(p, end);
        return std::nullopt;
    case u'$':
        return latex(p, end);
    case u'<':
        return angleConstruct(p, end);
    case u'=':
        if (p + 1 < end && m_text[p + 1] == u'=' && options.highlight)
            return pair(p, end);
        return std::nullopt;
    case u'[':
        return bracketConstruct(p, end);
    case u'\\':
        if (auto escaped = escape(p, end))
            return escaped;
        return latex(p, end);
    case u'`':
        return codeSpan(p, end);
    case u'~':
        if (p + 1 < end && m_text[p + 1] == u'~' && options.strikethrough)
            return pair(p, end);
        return std::nullopt;
    default:
        return std::nullopt;
    }
}

std::optional<InlineAtomScanner::Atom> InlineAtomScanner::escape(int p, int end) const
{
    if (p + 1 >= end)
        return std::nullopt;
    const char16_t unit = m_text[p + 1].unicode();
    if (QChar::isSurrogate(unit))
        return std::nullopt;
    if (unit < 0x80 ? !isAsciiPunctuation(unit) : !chars::isPunctuation(unit))
        return std::nullopt;
    return Atom{{inline_kind::Escape{unit}, {p, 2}, MarkdownSourceRange{p + 1, 1}, {{p, 1}}}};
}

std::optional<InlineAtomScanner::Atom> InlineAtomScanner::codeSpan(int p, int end)
{
    int runEnd = p;
    while (runEnd < end && m_text[runEnd] == u'`')
        ++runEnd;
    if (runEnd >= end)
        return std::nullopt;
    const int count = runEnd - p;
    // An opener without a partner fails here, and the walk retries one unit later with a
    // shorter run: the index keeps each retry a lookup.
    const std::optional<int> closer = m_index.backtickRun(runEnd, count, end);
    if (!closer)
        return std::nullopt;
    inline_kind::Code code;
    int contentStart = runEnd;
    if (count >= 3) {
        const QStringView inner = slice(runEnd, *closer);
        const QStringView trimmed = chars::trimmed(inner);
        if (!trimmed.isEmpty()) {
            const qsizetype lineEnd = trimmed.indexOf(u'\n');
            // The first line, trimmed: newlines too, so a CRLF note gives no CR in the name.
            const QStringView language = chars::trimmed(lineEnd < 0 ? trimmed : trimmed.left(lineEnd));
            code.language = textOf(language);
            code.hasLanguage = true;
            // Its first occurrence in the inner text is where the trimmed text starts.
            contentStart = runEnd + int(trimmed.data() - inner.data()) + int(language.size());
        }
    }
    return Atom{{std::move(code), between(p, *closer + count), between(contentStart, *closer),
                 {{p, count}, {*closer, count}}}};
}

std::optional<InlineAtomScanner::Atom> InlineAtomScanner::latex(int p, int end)
{
    if (!m_context.options.latex)
        return std::nullopt;
    int delimiter = 0;
    int contentStart = 0;
    bool isBlock = false;
    std::optional<int> closer;
    if (m_text[p] == u'\\') {
        // Reached only when `escape` refused, which `\(` and `\[` never make it do; kept so
        // that the order of the two stays the one rule.
        if (p + 1 >= end || (m_text[p + 1] != u'(' && m_text[p + 1] != u'['))
            return std::nullopt;
        isBlock = m_text[p + 1] == u'[';
        const char16_t close = isBlock ? u']' : u')';
        delimiter = 2;
        contentStart = p + 2;
        for (int i = contentStart; i + 1 < end; ++i) {
            if (m_text[i] == u'\\' && m_text[i + 1] == close) {
                closer = i;
                break;
            }
        }
    } else {
        int run = p;
        while (run < end && m_text[run] == u'$')
            ++run;
        if (run - p == 1) {
            if (p + 1 >= end)
                return std::nullopt;
            const char16_t next = m_text[p + 1].unicode();
            if (next == u' ' || next == u'\t' || next == u'\n' || chars::isDecimalDigit(next))
                return std::nullopt;
            delimiter = 1;
            contentStart = p + 1;
            closer = m_index.dollar(contentStart, end);
        } else {
            delimiter = 2;
            isBlock = true;
            contentStart = p + 2;
            closer = m_index.doubled(u'$', contentStart, end);
        }
        if (closer && *closer == contentStart)
            return std::nullopt;
    }
    if (!closer)
        return std::nullopt;
    return Atom{{inline_kind::Latex{{contentStart, *closer - contentStart}, isBlock},
                 between(p, *closer + delimiter), between(contentStart, *closer),
                 {{p, delimiter}, {*closer, delimiter}}}};
}

std::optional<InlineAtomScanner::Atom> InlineAtomScanner::bracketConstruct(int p, int end)
{
    if (p + 1 < end && m_text[p + 1] == u'[' && m_context.options.wikiLinks)
        return wikiLink(p, end);
    if (p + 1 < end && m_text[p + 1] == u'^')
        return footnoteReference(p, end);
    const std::optional<int> close = m_index.matchingBracket(p, end);
    if (!close)
        return std::nullopt;
    const int q = *close;
    MarkdownInlineMarkers markers{{p, 1}, {q, 1}};
    const MarkdownSourceRange text = between(p + 1, q);
    if (q + 1 < end && m_text[q + 1] == u'(') {
        // No fallback to a reference once a parenthesis follows.
        const std::optional<int> paren = m_index.matchingParen(q + 1, end);
        if (!paren)
            return std::nullopt;
        const Destination destination = splitDestination(slice(q + 2, *paren));
        markers.append(between(q + 1, *paren + 1));
        const inline_kind::Link link{textOf(destination.destination),
                                     destination.title ? textOf(*destination.title) : MarkdownInlineText(), true,
                                     destination.title.has_value()};
        return Atom{{link, between(p, *paren + 1), text, markers}, true};
    }
    QStringView label = slice(p + 1, q);
    int last = q;
    if (q + 1 < end && m_text[q + 1] == u'[') {
        if (const std::optional<int> labelEnd = m_index.matchingBracket(q + 1, end)) {
            if (*labelEnd > q + 2)
                label = slice(q + 2, *labelEnd);
            markers.append(between(q + 1, *labelEnd + 1));
            last = *labelEnd;
        }
    }
    std::optional<QString> destination = referenceDestination(label);
    if (!destination)
        return std::nullopt;
    const inline_kind::Link link{m_builder.own(std::move(*destination)), {}, true, false};
    return Atom{{link, between(p, last + 1), text, markers}, true};
}

std::optional<QString> InlineAtomScanner::referenceDestination(QStringView label) const
{
    // Lower-casing never shrinks a label below half its units (a surrogate pair maps to at
    // least one unit), so a longer label cannot be defined: this keeps hostile nests of
    // undefined brackets from lower-casing the whole text once per bracket.
    if (label.size() > 2 * qsizetype(m_context.longestLinkLabel))
        return std::nullopt;
    const auto found = m_context.linkDefinitions->constFind(label.toString().toLower());
    if (found == m_context.linkDefinitions->constEnd())
        return std::nullopt;
    return *found;
}

std::optional<InlineAtomScanner::Atom> InlineAtomScanner::image(int p, int end)
{
    std::optional<Atom> link = bracketConstruct(p + 1, end);
    if (!link || !link->node.is<inline_kind::Link>())
        return std::nullopt;
    const MarkdownInline& node = link->node;
    const MarkdownInlineText source = node.as<inline_kind::Link>()->destination;
    MarkdownInlineText alt;
    if (!computingAltText) {
        computingAltText = true;
        struct Reset {
            ~Reset() { computingAltText = false; }
        } reset;
        alt = m_builder.own(
            MarkdownDocument::plainText(slice(node.contentRange.location, node.contentRange.upperBound()).toString()));
    }
    MarkdownInlineMarkers markers{{p, 2}};
    markers.append(node.markerRanges.constData(), node.markerRanges.size());
    const bool isEmbed = source.isOwned() ? !m_builder.owned(source).isEmpty() : source.length > 0;
    return Atom{{inline_kind::Image{source, alt, isEmbed}, between(p, node.range.upperBound()), node.contentRange,
                 markers}};
}

std::optional<InlineAtomScanner::Atom> InlineAtomScanner::wikiLink(int p, int end)
{
    const std::optional<int> close = m_index.matchingBracket(p + 1, end);
    // The unit after the closing `]` belongs to the marker whatever it is, but it has to lie
    // inside the range like every other closer.
    if (!close || *close + 2 > end)
        return std::nullopt;
    const int q = *close;
    if (q == p + 2 || m_index.lineFeed(p + 2, q))
        return std::nullopt;
    const QStringView inner = slice(p + 2, q);
    const qsizetype bar = inner.indexOf(u'|');
    const QStringView target = chars::trimmed(bar < 0 ? inner : inner.left(bar));
    if (target.isEmpty())
        return std::nullopt;
    const MarkdownInlineText targetText = textOf(target);
    const MarkdownInlineText display = bar < 0 ? targetText : textOf(chars::trimmed(inner.mid(bar + 1)));
    const MarkdownSourceRange content = between(p + 2, q);
    return Atom{{inline_kind::WikiLink{targetText, display}, between(p, q + 2), content,
                 {{p, 2}, {q, 2}}},
                false, true};
}

std::optional<InlineAtomScanner::Atom> InlineAtomScanner::footnoteReference(int p, int end)
{
    const std::optional<int> close = m_index.matchingBracket(p, end);
    if (!close || *close == p + 2)
        return std::nullopt;
    const int q = *close;
    return Atom{{inline_kind::FootnoteReference{{p + 2, q - p - 2}}, between(p, q + 1), between(p + 2, q),
                 {{p, 2}, {q, 1}}}};
}

std::optional<InlineAtomScanner::Atom> InlineAtomScanner::angleConstruct(int p, int end) const
{
    // Stopping at `<` and LF, which would fail the construct anyway, keeps the scans of
    // successive openers disjoint, so `<` before every word stays linear.
    int q = p + 1;
    for (; q < end; ++q) {
        const char16_t unit = m_text[q].unicode();
        if (unit == u'>')
            break;
        if (unit == u'<' || unit == u'\n')
            return std::nullopt;
    }
    if (q >= end)
        return std::nullopt;
    const QStringView inner = slice(p + 1, q);
    const MarkdownSourceRange content = between(p + 1, q);
    const MarkdownInlineMarkers markers{{p, 1}, {q, 1}};
    static constexpr QStringView mailto = u"mailto:";
    if (inner.contains(u"://") || inner.startsWith(mailto)) {
        const QStringView destination = inner.startsWith(mailto) ? inner.mid(mailto.size()) : inner;
        return Atom{{inline_kind::Link{textOf(destination), {}, true, false}, between(p, q + 1), content,
                     markers},
                    false, true};
    }
    // The first word is what precedes the first space; `< b >` has an empty one.
    const bool startsWithLetter = !inner.isEmpty() && QChar::isLetter(chars::scalarAt(inner, 0));
    if (inner.startsWith(u'/') || startsWithLetter)
        return Atom{{inline_kind::Html{textOf(inner)}, between(p, q + 1), content, markers}};
    return std::nullopt;
}

std::optional<InlineAtomScanner::Atom> InlineAtomScanner::pair(int p, int end)
{
    const char16_t unit = m_text[p].unicode();
    const std::optional<int> closer = m_index.doubled(unit, p + 2, end);
    if (!closer || *closer == p + 2)
        return std::nullopt;
    MarkdownInlineKind kind = unit == u'~' ? MarkdownInlineKind(inline_kind::Strikethrough{})
                                           : MarkdownInlineKind(inline_kind::Highlight{});
    return Atom{{std::move(kind), between(p, *closer + 2), between(p + 2, *closer), {{p, 2}, {*closer, 2}}}, true};
}

InlineAtomScanner::Destination InlineAtomScanner::splitDestination(QStringView text)
{
    const QStringView trimmed = chars::trimmed(text);
    if (trimmed.isEmpty())
        return {};
    if (trimmed.startsWith(u'<')) {
        if (const qsizetype close = trimmed.indexOf(u'>'); close >= 0) {
            const QStringView rest = chars::trimmed(trimmed.mid(close + 1));
            Destination result{trimmed.mid(1, close - 1), std::nullopt};
            if (!rest.isEmpty())
                result.title = trimmedOf(rest, u"\"'");
            return result;
        }
    }
    // One pass for the three searches: destinations are short, and most hold none of them.
    qsizetype doubleQuote = -1;
    qsizetype singleQuote = -1;
    qsizetype open = -1;
    for (qsizetype i = 0; i < trimmed.size() && doubleQuote < 0; ++i) {
        const char16_t unit = trimmed[i].unicode();
        if (unit == u'"')
            doubleQuote = i;
        else if (unit == u'\'' && singleQuote < 0)
            singleQuote = i;
        else if (unit == u'(' && open < 0)
            open = i;
    }
    const qsizetype quote = doubleQuote >= 0 ? doubleQuote : singleQuote;
    if (quote >= 0) {
        Destination result{chars::trimmed(trimmed.left(quote)), std::nullopt};
        const QStringView second = trimmed.mid(quote + 1);
        if (!second.isEmpty())
            result.title = trimmedOf(second, u"\"' ");
        return result;
    }
    if (open >= 0 && trimmed.endsWith(u')'))
        return {chars::trimmed(trimmed.left(open)), trimmed.mid(open + 1, trimmed.size() - open - 2)};
    return {trimmed, std::nullopt};
}

}
