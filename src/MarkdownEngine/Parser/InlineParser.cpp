#include "MarkdownEngine/Parser/InlineParser.h"

#include "MarkdownEngine/Core/TextCharacters.h"
#include "MarkdownEngine/Parser/InlineAtomScanner.h"
#include "MarkdownEngine/Parser/InlineCloserIndex.h"

#include <QChar>
#include <algorithm>
#include <optional>

namespace velmo::markdown {

namespace {

const MarkdownLinkDefinitions emptyDefinitions;
const QSet<QString> emptyLabels;

bool isFlankingWhitespace(char16_t unit)
{
    if (unit == 0 || unit == u'\t' || unit == u'\n' || unit == u'\r' || unit == u' ')
        return true;
    return !QChar::isSurrogate(unit) && chars::isWhitespaceOrNewline(unit);
}

bool isFlankingPunctuation(char16_t unit)
{
    if (unit < 0x80)
        return (unit >= 0x21 && unit <= 0x2F) || (unit >= 0x3A && unit <= 0x40) || (unit >= 0x5B && unit <= 0x60)
            || (unit >= 0x7B && unit <= 0x7E);
    return !QChar::isSurrogate(unit) && chars::isPunctuation(unit);
}

// The units at which some atom may start.
bool mayStartAtom(char16_t unit)
{
    switch (unit) {
    case u'!':
    case u'$':
    case u'<':
    case u'=':
    case u'[':
    case u'\\':
    case u'`':
    case u'~':
        return true;
    default:
        return false;
    }
}

// One range being walked. A link, strikethrough or highlight found by the walk waits in
// `pending` while a frame above it parses its inner text.
struct Frame {
    MarkdownSourceRange range;
    int position = 0;
    std::vector<MarkdownInline> atoms; // by location; their ranges are the claimed ones
    MarkdownInline pending;
};

struct EmphasisSpan {
    MarkdownSourceRange range;
    MarkdownSourceRange content;
    MarkdownEmphasis emphasis;
    int width;
};

// Walks the frame from where it stopped. Returns the inner range to parse when an atom needs
// its children first; nothing once the frame's end is reached.
std::optional<MarkdownSourceRange> scanAtoms(Frame& frame, InlineAtomScanner& scanner, QStringView text)
{
    const int end = frame.range.upperBound();
    for (int p = frame.position; p < end;) {
        if (!mayStartAtom(text[p].unicode())) {
            ++p;
            continue;
        }
        std::optional<InlineAtomScanner::Atom> atom = scanner.atomAt(p, end);
        if (!atom) {
            ++p;
            continue;
        }
        if (atom->parsesContent && !atom->node.contentRange.isEmpty()) {
            frame.pending = std::move(atom->node);
            return frame.pending.contentRange;
        }
        p = atom->node.range.upperBound();
        frame.atoms.push_back(std::move(atom->node));
    }
    frame.position = end;
    return std::nullopt;
}

std::vector<InlineParser::Delimiter> collectDelimiters(const Frame& frame, QStringView text)
{
    std::vector<InlineParser::Delimiter> delimiters;
    const int end = frame.range.upperBound();
    size_t next = 0; // the first atom not yet passed
    for (int i = frame.range.location; i < end;) {
        if (next < frame.atoms.size() && frame.atoms[next].range.location <= i) {
            i = std::max(i, frame.atoms[next].range.upperBound());
            ++next;
            continue;
        }
        const char16_t unit = text[i].unicode();
        if (unit != u'*' && unit != u'_') {
            ++i;
            continue;
        }
        int runEnd = i;
        while (runEnd < end && text[runEnd] == unit)
            ++runEnd;
        const char16_t before = i > 0 ? text[i - 1].unicode() : u'\n';
        const char16_t after = runEnd < end ? text[runEnd].unicode() : u'\n';
        delimiters.push_back(InlineParser::flanking(unit, i, runEnd - i, before, after));
        i = runEnd;
    }
    return delimiters;
}

// Any closer closes the opener on top of the stack; both runs are used up whole.
std::vector<EmphasisSpan> matchEmphasis(const std::vector<InlineParser::Delimiter>& delimiters)
{
    std::vector<EmphasisSpan> spans;
    std::vector<size_t> openers;
    for (size_t i = 0; i < delimiters.size(); ++i) {
        const InlineParser::Delimiter& closer = delimiters[i];
        if (closer.canClose && !openers.empty()) {
            const InlineParser::Delimiter& opener = delimiters[openers.back()];
            openers.pop_back();
            const int width = opener.count >= 2 && closer.count >= 2 ? 2 : 1;
            const MarkdownEmphasis emphasis = opener.count > 2 && closer.count > 2 ? MarkdownEmphasis::boldItalic
                : width == 2                                                      ? MarkdownEmphasis::bold
                                                                                  : MarkdownEmphasis::italic;
            const int contentStart = opener.location + opener.count;
            spans.push_back({MarkdownSourceRange::fromBounds(contentStart - width, closer.location + width),
                             MarkdownSourceRange::fromBounds(contentStart, closer.location), emphasis, width});
        } else if (closer.canOpen) {
            openers.push_back(i);
        }
    }
    // Pairs nest or are disjoint, so by location a parent stands before what it holds.
    std::sort(spans.begin(), spans.end(),
              [](const EmphasisSpan& a, const EmphasisSpan& b) { return a.range.location < b.range.location; });
    return spans;
}

void appendText(std::vector<MarkdownInline>& into, int from, int to)
{
    if (to > from)
        into.emplace_back(inline_kind::Text{}, MarkdownSourceRange::fromBounds(from, to));
}

// Atoms and emphasis in location order, each at or after the cursor of the level it falls
// in, gaps as text. An emphasis span is a level of its own: what lies in its content becomes
// its children, which is what parsing that content again would give.
std::vector<MarkdownInline> merged(std::vector<MarkdownInline>& atoms, const std::vector<EmphasisSpan>& spans,
                                   MarkdownSourceRange range)
{
    if (atoms.empty() && spans.empty()) {
        std::vector<MarkdownInline> text;
        text.emplace_back(inline_kind::Text{}, range);
        return text;
    }
    struct Level {
        std::vector<MarkdownInline> inlines;
        int cursor;
        const EmphasisSpan* span; // null for the range itself
    };
    std::vector<Level> levels;
    levels.push_back({{}, range.location, nullptr});
    // Each item brings at most one gap before it: reserving the bound spares the regrowth of a
    // large vector, and pages never written are never touched.
    levels.back().inlines.reserve(2 * (atoms.size() + spans.size()) + 1);
    const auto closeLevel = [&levels] {
        Level level = std::move(levels.back());
        levels.pop_back();
        const EmphasisSpan& span = *level.span;
        appendText(level.inlines, level.cursor, span.content.upperBound());
        Level& parent = levels.back();
        parent.inlines.emplace_back(inline_kind::Emphasis{span.emphasis}, span.range, span.content,
                                    MarkdownMarkerRanges{{span.range.location, span.width},
                                                         {span.content.upperBound(), span.width}},
                                    std::move(level.inlines));
        parent.cursor = span.range.upperBound();
    };
    size_t atom = 0;
    size_t span = 0;
    while (atom < atoms.size() || span < spans.size()) {
        // Atoms came first in the list the two are merged from, so they win ties.
        const bool takeSpan = span < spans.size()
            && (atom >= atoms.size() || spans[span].range.location < atoms[atom].range.location);
        const int location = takeSpan ? spans[span].range.location : atoms[atom].range.location;
        while (levels.back().span && location >= levels.back().span->content.upperBound())
            closeLevel();
        Level& level = levels.back();
        if (location < level.cursor) {
            // An overlap goes to the earlier start.
            ++(takeSpan ? span : atom);
            continue;
        }
        appendText(level.inlines, level.cursor, location);
        level.cursor = location;
        if (takeSpan) {
            levels.push_back({{}, spans[span].content.location, &spans[span]});
            ++span;
        } else {
            level.cursor = atoms[atom].range.upperBound();
            level.inlines.push_back(std::move(atoms[atom]));
            ++atom;
        }
    }
    while (levels.size() > 1)
        closeLevel();
    appendText(levels.back().inlines, levels.back().cursor, range.upperBound());
    return std::move(levels.back().inlines);
}

}

InlineParser::Context::Context(QStringView text, const MarkdownLinkDefinitions& linkDefinitions,
                               const QSet<QString>& footnoteLabels, const MarkdownParseOptions& options)
    : ns(text), linkDefinitions(&linkDefinitions), footnoteLabels(&footnoteLabels), options(options)
{
    for (auto it = linkDefinitions.cbegin(); it != linkDefinitions.cend(); ++it)
        longestLinkLabel = std::max(longestLinkLabel, int(it.key().size()));
}

InlineParser::Context::Context(QStringView text, const MarkdownParseOptions& options)
    : Context(text, emptyDefinitions, emptyLabels, options)
{
}

InlineParser::Delimiter InlineParser::flanking(char16_t character, int location, int count, char16_t before,
                                               char16_t after)
{
    const bool beforeSpace = isFlankingWhitespace(before);
    const bool afterSpace = isFlankingWhitespace(after);
    const bool beforePunctuation = isFlankingPunctuation(before);
    const bool afterPunctuation = isFlankingPunctuation(after);
    const bool left = !afterSpace && (!afterPunctuation || beforeSpace || beforePunctuation);
    const bool right = !beforeSpace && (!beforePunctuation || afterSpace || afterPunctuation);
    Delimiter delimiter{character, location, count, left, right};
    if (character == u'_') {
        delimiter.canOpen = left && (!right || beforePunctuation);
        delimiter.canClose = right && (!left || afterPunctuation);
    }
    return delimiter;
}

std::vector<MarkdownInline> InlineParser::parse(MarkdownSourceRange range, const Context& context)
{
    const MarkdownSourceRange clipped = range.intersection({0, int(context.ns.size())});
    if (clipped.length < 1)
        return {};
    InlineCloserIndex index(context.ns, clipped);
    InlineAtomScanner scanner(context, index);
    // Inner ranges are walked as frames on this stack; an inner range lies between its
    // opener and closer, so the walk as a whole moves forward through the text and each unit
    // is walked once.
    std::vector<Frame> frames;
    frames.push_back({clipped, clipped.location, {}, {}});
    while (true) {
        if (const std::optional<MarkdownSourceRange> inner = scanAtoms(frames.back(), scanner, context.ns)) {
            frames.push_back({*inner, inner->location, {}, {}});
            continue;
        }
        Frame& frame = frames.back();
        std::vector<MarkdownInline> inlines =
            merged(frame.atoms, matchEmphasis(collectDelimiters(frame, context.ns)), frame.range);
        frames.pop_back();
        if (frames.empty())
            return inlines;
        Frame& parent = frames.back();
        parent.pending.children = std::move(inlines);
        parent.position = parent.pending.range.upperBound();
        parent.atoms.push_back(std::move(parent.pending));
    }
}

std::vector<MarkdownInlineNode> InlineParser::nodes(MarkdownSourceRange range, const Context& context)
{
    return MarkdownInlineNode::from(parse(range, context), context.ns);
}

}
