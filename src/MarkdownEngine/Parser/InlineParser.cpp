#include "MarkdownEngine/Parser/InlineParser.h"

#include "MarkdownEngine/Core/TextCharacters.h"
#include "MarkdownEngine/Parser/InlineAtomScanner.h"
#include "MarkdownEngine/Parser/InlineCloserIndex.h"

#include <QChar>
#include <algorithm>
#include <array>
#include <optional>

namespace velmo::markdown {

namespace {

const MarkdownLinkDefinitions emptyDefinitions;
const QSet<QString> emptyLabels;

bool isFlankingWhitespace(char16_t unit)
{
    if (unit == 0 || unit == u'\t' || unit == u'\n' || unit == u'\r' || unit == u' ')
        return true;
    // Below 0x80 only VT and FF are left; the category lookup is for the rest.
    if (unit < 0x80)
        return unit == u'\v' || unit == u'\f';
    return !QChar::isSurrogate(unit) && chars::isWhitespaceOrNewline(unit);
}

bool isFlankingPunctuation(char16_t unit)
{
    if (unit < 0x80)
        return (unit >= 0x21 && unit <= 0x2F) || (unit >= 0x3A && unit <= 0x40) || (unit >= 0x5B && unit <= 0x60)
            || (unit >= 0x7B && unit <= 0x7E);
    return !QChar::isSurrogate(unit) && chars::isPunctuation(unit);
}

// What the walk stops at: units that may start an atom, and the emphasis delimiters.
enum class Stop : unsigned char { none, atom, delimiter };

constexpr std::array<Stop, 128> stopTable()
{
    std::array<Stop, 128> table{};
    for (char16_t unit : u"!$<=[\\`~")
        table[unit] = Stop::atom;
    table[u'*'] = Stop::delimiter;
    table[u'_'] = Stop::delimiter;
    table[0] = Stop::none;
    return table;
}
constexpr std::array<Stop, 128> stops = stopTable();

using Frame = InlineParser::Scratch::Frame;
using EmphasisSpan = InlineParser::Scratch::EmphasisSpan;
using Level = InlineParser::Scratch::Level;

}

// One range being walked. A link, strikethrough or highlight found by the walk waits in
// `pending` while a frame above it parses its inner text. Frames are reused from parse to
// parse, so their vectors keep their capacity.
struct InlineParser::Scratch::Frame {
    MarkdownSourceRange range;
    int position = 0;
    std::vector<MarkdownInline> atoms; // by location; their ranges are the claimed ones
    std::vector<InlineParser::Delimiter> delimiters;
    std::optional<MarkdownInline> pending;

    void start(MarkdownSourceRange walked)
    {
        range = walked;
        position = walked.location;
        atoms.clear();
        delimiters.clear();
    }
};

struct InlineParser::Scratch::EmphasisSpan {
    MarkdownSourceRange range;
    MarkdownSourceRange content;
    MarkdownEmphasis emphasis;
    int width;
};

// A level of the merge: the range itself, or an emphasis span whose children are gathered
// from `start` on in the scratch's gathered list.
struct InlineParser::Scratch::Level {
    size_t start;
    int cursor;
    const EmphasisSpan* span; // null for the range itself
};

InlineParser::Scratch::Scratch() = default;
InlineParser::Scratch::~Scratch() = default;

namespace {

// Walks the frame from where it stopped. The walk visits exactly the units outside claimed
// ranges, so it collects the emphasis delimiters on the way. Returns the inner range to parse
// when an atom needs its children first; nothing once the frame's end is reached.
std::optional<MarkdownSourceRange> scanAtoms(Frame& frame, InlineAtomScanner& scanner, QStringView text,
                                             MarkdownInlineList::Builder& builder)
{
    const int end = frame.range.upperBound();
    const char16_t* units = text.utf16();
    for (int p = frame.position; p < end;) {
        // Most units stop nothing: skip them in a tight loop.
        while (p < end && (units[p] >= 128 || stops[units[p]] == Stop::none))
            ++p;
        if (p >= end)
            break;
        const char16_t unit = units[p];
        const Stop stop = stops[unit];
        if (stop == Stop::delimiter) {
            // No atom starts with `*` or `_`, so a run never reaches into a claimed range.
            int runEnd = p + 1;
            while (runEnd < end && units[runEnd] == unit)
                ++runEnd;
            const char16_t before = p > 0 ? units[p - 1] : u'\n';
            const char16_t after = runEnd < end ? units[runEnd] : u'\n';
            // Runs are at least a unit apart, so the rest of the frame holds at most half its
            // units in runs: one reservation instead of a chain of copies on a long paragraph.
            if (frame.delimiters.size() == frame.delimiters.capacity())
                frame.delimiters.reserve(frame.delimiters.size() + size_t(end - p + 1) / 2);
            frame.delimiters.push_back(InlineParser::flanking(unit, p, runEnd - p, before, after));
            p = runEnd;
            continue;
        }
        std::optional<InlineAtomScanner::Atom> atom = scanner.atomAt(p, end);
        if (!atom) {
            ++p;
            continue;
        }
        if (atom->parsesContent && !atom->node.contentRange.isEmpty()) {
            frame.pending.emplace(std::move(atom->node));
            return frame.pending->contentRange;
        }
        if (atom->textChild)
            builder.adopt(atom->node, MarkdownInline(inline_kind::Text{}, atom->node.contentRange));
        p = atom->node.range.upperBound();
        frame.atoms.push_back(std::move(atom->node));
    }
    frame.position = end;
    return std::nullopt;
}

// Any closer closes the opener on top of the stack; both runs are used up whole.
void matchEmphasis(const std::vector<InlineParser::Delimiter>& delimiters, std::vector<EmphasisSpan>& spans,
                   std::vector<qsizetype>& openers)
{
    spans.clear();
    openers.clear();
    // Each span uses up two runs; reserving the bounds spares regrowth copies.
    spans.reserve(delimiters.size() / 2);
    openers.reserve(delimiters.size());
    for (qsizetype i = 0; i < qsizetype(delimiters.size()); ++i) {
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
    const auto byLocation = [](const EmphasisSpan& a, const EmphasisSpan& b) {
        return a.range.location < b.range.location;
    };
    if (!std::is_sorted(spans.begin(), spans.end(), byLocation))
        std::sort(spans.begin(), spans.end(), byLocation);
}

void appendText(std::vector<MarkdownInline>& into, int from, int to)
{
    if (to > from)
        into.emplace_back(inline_kind::Text{}, MarkdownSourceRange::fromBounds(from, to));
}

// Room for `more` nodes, growing at least twofold: the lists are reused and appended to, and
// exact reservations on each append would copy them over and over.
void reserveMore(std::vector<MarkdownInline>& nodes, size_t more)
{
    const size_t needed = nodes.size() + more;
    if (needed > nodes.capacity())
        nodes.reserve(std::max(needed, 2 * nodes.capacity()));
}

// Atoms and emphasis in location order, each at or after the cursor of the level it falls
// in, gaps as text, appended to `top`. An emphasis span is a level of its own: what lies in
// its content becomes its children, which is what parsing that content again would give.
void merge(std::vector<MarkdownInline>& atoms, const std::vector<EmphasisSpan>& spans, MarkdownSourceRange range,
           std::vector<Level>& levels, std::vector<MarkdownInline>& gathered, std::vector<MarkdownInline>& top,
           MarkdownInlineList::Builder& builder)
{
    if (atoms.empty() && spans.empty()) {
        top.emplace_back(inline_kind::Text{}, range);
        return;
    }
    // Each item brings at most one gap before it: reserving the bound spares the regrowth of a
    // large vector.
    reserveMore(top, 2 * (atoms.size() + spans.size()) + 1);
    levels.clear();
    gathered.clear();
    levels.push_back({0, range.location, nullptr});
    const auto inlinesOf = [&](const Level& level) -> std::vector<MarkdownInline>& {
        return level.span ? gathered : top;
    };
    // The children of an emphasis level are the tail of `gathered`.
    const auto closeLevel = [&] {
        const Level level = levels.back();
        levels.pop_back();
        const EmphasisSpan& span = *level.span;
        appendText(gathered, level.cursor, span.content.upperBound());
        MarkdownInline emphasis(inline_kind::Emphasis{span.emphasis}, span.range, span.content,
                                MarkdownInlineMarkers{{span.range.location, span.width},
                                                     {span.content.upperBound(), span.width}});
        builder.adopt(emphasis, gathered, level.start);
        Level& parent = levels.back();
        inlinesOf(parent).push_back(std::move(emphasis));
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
            if (takeSpan)
                ++span;
            else
                ++atom;
            continue;
        }
        std::vector<MarkdownInline>& into = inlinesOf(level);
        appendText(into, level.cursor, location);
        level.cursor = location;
        if (takeSpan) {
            levels.push_back({gathered.size(), spans[span].content.location, &spans[span]});
            ++span;
        } else {
            level.cursor = atoms[atom].range.upperBound();
            into.push_back(std::move(atoms[atom]));
            ++atom;
        }
    }
    while (levels.size() > 1)
        closeLevel();
    appendText(top, levels.back().cursor, range.upperBound());
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

MarkdownInlineList InlineParser::parse(MarkdownSourceRange range, const Context& context)
{
    Scratch scratch;
    return parse(range, context, scratch);
}

MarkdownInlineList InlineParser::parse(MarkdownSourceRange range, const Context& context, Scratch& scratch)
{
    parse(range, context, scratch, scratch.m_builder);
    return scratch.m_builder.take();
}

void InlineParser::parse(MarkdownSourceRange range, const Context& context, Scratch& scratch,
                         MarkdownInlineList::Builder& builder)
{
    const MarkdownSourceRange clipped = range.intersection({0, int(context.ns.size())});
    if (clipped.length < 1)
        return;
    InlineCloserIndex index(context.ns, clipped);
    InlineAtomScanner scanner(context, index, builder);
    // Inner ranges are walked as frames on this stack; an inner range lies between its
    // opener and closer, so the walk as a whole moves forward through the text and each unit
    // is walked once. Frames are addressed by depth: the vector may move them as it grows.
    std::vector<Frame>& frames = scratch.m_frames;
    size_t depth = 0;
    if (frames.empty())
        frames.emplace_back();
    frames[0].start(clipped);
    while (true) {
        if (const std::optional<MarkdownSourceRange> inner = scanAtoms(frames[depth], scanner, context.ns, builder)) {
            if (++depth == frames.size())
                frames.emplace_back();
            frames[depth].start(*inner);
            continue;
        }
        Frame& frame = frames[depth];
        matchEmphasis(frame.delimiters, scratch.m_spans, scratch.m_openers);
        std::vector<MarkdownInline>& into = depth == 0 ? builder.top() : scratch.m_inner;
        merge(frame.atoms, scratch.m_spans, frame.range, scratch.m_levels, scratch.m_gathered, into, builder);
        frame.atoms.clear();
        if (depth == 0)
            return;
        Frame& parent = frames[--depth];
        builder.adopt(*parent.pending, scratch.m_inner);
        parent.position = parent.pending->range.upperBound();
        parent.atoms.push_back(std::move(*parent.pending));
        parent.pending.reset();
    }
}

std::vector<MarkdownInlineNode> InlineParser::nodes(MarkdownSourceRange range, const Context& context)
{
    return MarkdownInlineNode::from(parse(range, context), context.ns);
}

}
