#include "MarkdownEngine/Parser/BlockTokenizer.h"

#include "MarkdownEngine/Core/MarkdownOutline.h"
#include "MarkdownEngine/Core/TextCharacters.h"
#include "MarkdownEngine/Parser/GraphemeCount.h"

#include <QSet>
#include <algorithm>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace velmo::markdown {

namespace {

QStringView trimmedLine(const BlockTokenizer::SourceLine& line)
{
    return line.trimmed;
}

// Tried in this order: a line starting with "<details" is not taken for a shorter tag.
constexpr QStringView htmlBlockTags[] = {u"div", u"table", u"script", u"style", u"section", u"article", u"details"};

// The cheap half of directiveOpener: the same yes or no, without building the arguments.
bool looksLikeDirectiveOpener(QStringView trimmed)
{
    if (!trimmed.startsWith(u"::"))
        return false;
    qsizetype colons = 2;
    while (colons < trimmed.size() && trimmed[colons] == u':')
        ++colons;
    if (colons > 3)
        return false;
    for (qsizetype i = colons; i < trimmed.size(); ++i) {
        if (trimmed[i] != u' ')
            return true;
    }
    return false;
}

// QStringView::count walks unit by unit; this runs once over every note on every parse.
qsizetype countLineFeeds(QStringView text)
{
    const char16_t* p = text.utf16();
    const char16_t* const end = p + text.size();
    qsizetype count = 0;
#ifdef __SSE2__
    // A matching lane compares to -1, so subtracting the comparison counts per lane. A lane
    // holds at most 65535 before the sums are folded in.
    constexpr qsizetype lanes = 8;
    constexpr qsizetype foldEvery = 0xFFFF;
    const __m128i lineFeed = _mm_set1_epi16(u'\n');
    while (end - p >= lanes) {
        __m128i sums = _mm_setzero_si128();
        for (qsizetype round = 0; round < foldEvery && end - p >= lanes; ++round, p += lanes) {
            const __m128i units = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
            sums = _mm_sub_epi16(sums, _mm_cmpeq_epi16(units, lineFeed));
        }
        alignas(16) quint16 perLane[lanes];
        _mm_store_si128(reinterpret_cast<__m128i*>(perLane), sums);
        for (quint16 lane : perLane)
            count += lane;
    }
#endif
    for (; p < end; ++p)
        count += *p == u'\n';
    return count;
}

bool isFenceCloser(QStringView trimmed, const BlockTokenizer::FenceMatch& fence)
{
    if (trimmed.size() < fence.length)
        return false;
    for (QChar c : trimmed) {
        if (c != fence.character)
            return false;
    }
    return true;
}

}

BlockTokenizer::BlockTokenizer(const QString& text, const MarkdownParseOptions& options)
    : m_text(text)
    , m_ns(m_text)
    , m_options(options)
    , m_lines(split(m_ns))
{
}

BlockTokenizer::BlockTokenizer(const QString& text, const MarkdownParseOptions& options, qsizetype from, qsizetype to)
    : m_text(text)
    , m_ns(m_text)
    , m_options(options)
    , m_lines(split(m_ns, from, to))
{
}

MarkdownDocument BlockTokenizer::document(const QString& text, const MarkdownParseOptions& options)
{
    BlockTokenizer tokenizer(text, options);
    MarkdownDocument document;
    document.text = tokenizer.m_text;
    document.options = options;
    document.blocks = tokenizer.parseBlocks();
    attachQuoteMarkers(document.blocks, tokenizer.m_lines, tokenizer.m_ns);
    document.footnoteDefinitions = std::move(tokenizer.m_footnoteDefinitions);
    document.linkDefinitions = std::move(tokenizer.m_linkDefinitions);
    document.unclosedOpenerAt = tokenizer.m_unclosedOpenerAt;
    attachInlines(document.blocks, document);
    return document;
}

std::vector<BlockTokenizer::SourceLine> BlockTokenizer::split(QStringView text)
{
    return split(text, 0, text.size());
}

std::vector<BlockTokenizer::SourceLine> BlockTokenizer::split(QStringView text, qsizetype from, qsizetype to)
{
    std::vector<SourceLine> lines;
    const qsizetype size = to;
    // Counted exactly: a guess from the size regrows many times on a text of short lines, and
    // each regrowth moves every line and touches fresh pages.
    lines.reserve(size_t(countLineFeeds(text.mid(from, to - from))) + 2);
    qsizetype start = from;
    while (true) {
        qsizetype newline = text.indexOf(u'\n', start);
        if (newline >= size)
            newline = -1;
        const qsizetype end = newline < 0 ? size : newline + 1;
        qsizetype contentEnd = end;
        while (contentEnd > start && (text[contentEnd - 1] == u'\n' || text[contentEnd - 1] == u'\r'))
            --contentEnd;

        SourceLine line;
        line.fullRange = MarkdownSourceRange::fromBounds(int(start), int(end));
        qsizetype p = start;
        while (p < contentEnd && text[p] == u'>') {
            p += p + 1 < contentEnd && text[p + 1] == u' ' ? 2 : 1;
            ++line.quoteDepth;
        }
        line.contentRange = MarkdownSourceRange::fromBounds(int(p), int(contentEnd));
        line.text = text.mid(p, contentEnd - p);
        for (QChar c : line.text) {
            if (c == u' ')
                line.indent += 1;
            else if (c == u'\t')
                line.indent += 4;
            else
                break;
        }
        line.trimmed = chars::trimmedHorizontal(line.text);
        line.isBlank = line.trimmed.isEmpty();
        lines.push_back(std::move(line));

        if (newline < 0)
            break;
        start = newline + 1;
        if (start == size && size < text.size())
            break;
        if (start == size) {
            SourceLine last;
            last.fullRange = last.contentRange = {int(size), 0};
            last.text = last.trimmed = text.mid(size);
            lines.push_back(std::move(last));
            break;
        }
    }
    return lines;
}

MarkdownBlock BlockTokenizer::makeBlock(MarkdownBlockKind kind, int firstLine, int lastLine,
                                        std::optional<MarkdownSourceRange> contentRange,
                                        MarkdownMarkerRanges markers) const
{
    const MarkdownSourceRange range = MarkdownSourceRange::fromBounds(
        m_lines[firstLine].fullRange.location, m_lines[lastLine].fullRange.upperBound());
    if (contentRange && contentRange->length < 0)
        contentRange->length = 0;
    return MarkdownBlock(std::move(kind), range, contentRange, std::move(markers), {}, m_lines[firstLine].quoteDepth);
}

template<typename IsCloser>
int BlockTokenizer::findCloser(int after, CloserMemo& memo, IsCloser&& isCloser) const
{
    // Lines between the memo's search start and its find hold no closer, so a later search
    // starting among them ends at the same line.
    if (memo.valid && after >= memo.searchedAfter && (memo.foundAt < 0 || after < memo.foundAt))
        return memo.foundAt;
    int found = -1;
    for (int k = after + 1; k < int(m_lines.size()); ++k) {
        if (isCloser(m_lines[k])) {
            found = k;
            break;
        }
    }
    memo = {true, after, found};
    return found;
}

std::vector<MarkdownBlock> BlockTokenizer::parseBlocks()
{
    return parseBlocks({});
}

std::vector<MarkdownBlock> BlockTokenizer::parseBlocks(const StopPredicate& stop)
{
    std::vector<MarkdownBlock> blocks;
    // Every block starts on a line of its own that is not blank: the bound spares the moves
    // of regrowth, and the pages of a large reservation that stay unused are never touched.
    blocks.reserve(size_t(std::count_if(m_lines.begin(), m_lines.end(),
                                        [](const SourceLine& line) { return !line.isBlank; })));
    m_cursor = 0;
    if (m_options.frontMatter && !m_lines.empty() && m_lines.front().fullRange.location == 0) {
        if (auto block = parseFrontMatter())
            blocks.push_back(std::move(*block));
    }
    const int count = int(m_lines.size());
    while (m_cursor < count) {
        if (m_lines[m_cursor].isBlank) {
            ++m_cursor;
            continue;
        }
        if (stop && stop(m_cursor))
            break;
        std::optional<MarkdownBlock> block;
        if (m_options.directives)
            block = parseDirective();
        if (!block)
            block = parseFence();
        if (!block && m_options.latex)
            block = parseLatexBlock();
        if (!block && m_options.footnotes)
            block = parseFootnoteDefinition();
        if (!block)
            block = parseHeading();
        if (!block && m_options.tables)
            block = parseTable();
        if (!block)
            block = parseThematicBreak();
        if (!block && parseLinkDefinition())
            continue;
        if (!block && m_options.blockHtml)
            block = parseHTMLBlock();
        if (!block)
            block = parseListItem();
        if (block)
            blocks.push_back(std::move(*block));
        else
            parseParagraph(blocks);
    }
    return blocks;
}

std::optional<MarkdownBlock> BlockTokenizer::parseFrontMatter()
{
    if (m_cursor != 0 || m_lines.size() < 2)
        return std::nullopt;
    const SourceLine& opener = m_lines[0];
    if (opener.quoteDepth != 0 || opener.indent != 0 || trimmedLine(opener) != u"---")
        return std::nullopt;
    for (int k = 1; k < int(m_lines.size()); ++k) {
        const QStringView t = trimmedLine(m_lines[k]);
        if (t != u"---" && t != u"...")
            continue;
        const int contentStart = opener.fullRange.upperBound();
        MarkdownBlock block = makeBlock(block_kind::FrontMatter{}, 0, k,
                                        MarkdownSourceRange{contentStart, m_lines[k].fullRange.location - contentStart},
                                        {opener.contentRange, m_lines[k].contentRange});
        m_cursor = k + 1;
        return block;
    }
    m_unclosedOpenerAt = 0;
    return std::nullopt;
}

std::optional<MarkdownBlock> BlockTokenizer::parseDirective()
{
    const SourceLine& line = m_lines[m_cursor];
    const QStringView trimmed = trimmedLine(line);
    if (!looksLikeDirectiveOpener(trimmed))
        return std::nullopt;
    std::optional<DirectiveOpener> opener = directiveOpener(trimmed);
    if (!opener)
        return std::nullopt;
    const int first = m_cursor;
    if (opener->form == DirectiveSyntax::Form::leaf) {
        MarkdownBlock block = makeBlock(block_kind::Directive{opener->name, std::move(opener->arguments), false},
                                        first, first, line.contentRange, {opener->markerRange});
        m_cursor = first + 1;
        return block;
    }
    const int closer = findCloser(first, m_containerCloser, [](const SourceLine& candidate) {
        return trimmedLine(candidate).endsWith(u":::");
    });
    const int last = closer >= 0 ? closer : int(m_lines.size()) - 1;
    const int contentStart = line.fullRange.upperBound();
    MarkdownMarkerRanges markers{opener->markerRange};
    if (closer >= 0)
        markers.append(m_lines[closer].contentRange);
    MarkdownBlock block = makeBlock(block_kind::Directive{opener->name, std::move(opener->arguments), true}, first,
                                    last, MarkdownSourceRange{contentStart, m_lines[last].contentRange.location - contentStart},
                                    std::move(markers));
    m_cursor = last + 1;
    return block;
}

std::optional<MarkdownBlock> BlockTokenizer::parseFence()
{
    const SourceLine& line = m_lines[m_cursor];
    const std::optional<FenceMatch> fence = fenceMarker(trimmedLine(line));
    if (!fence)
        return std::nullopt;
    const int first = m_cursor;
    int closer = -1;
    for (int k = first + 1; k < int(m_lines.size()); ++k) {
        if (m_lines[k].quoteDepth == line.quoteDepth && isFenceCloser(trimmedLine(m_lines[k]), *fence)) {
            closer = k;
            break;
        }
    }
    const int last = closer >= 0 ? closer : int(m_lines.size()) - 1;
    const QStringView info = chars::trimmedHorizontal(fence->info);
    std::optional<QString> language;
    for (QStringView word : info.tokenize(u' ', Qt::SkipEmptyParts)) {
        language = word.toString();
        break;
    }
    const int contentStart = line.fullRange.upperBound();
    const int contentEnd = closer >= 0 ? m_lines[closer].fullRange.location : int(m_ns.size());
    MarkdownMarkerRanges markers{line.contentRange};
    if (closer >= 0)
        markers.append(m_lines[closer].contentRange);
    MarkdownBlock block = makeBlock(block_kind::Fence{std::move(language), info.toString(), closer >= 0}, first, last,
                                    MarkdownSourceRange::fromBounds(contentStart, contentEnd), std::move(markers));
    m_cursor = last + 1;
    return block;
}

std::optional<MarkdownBlock> BlockTokenizer::parseLatexBlock()
{
    const SourceLine& line = m_lines[m_cursor];
    const QStringView trimmed = trimmedLine(line);
    const bool dollars = trimmed == u"$$";
    if (!dollars && !trimmed.startsWith(u"\\["))
        return std::nullopt;
    if (m_cursor + 1 >= int(m_lines.size())) {
        m_unclosedOpenerAt = std::min(m_unclosedOpenerAt, line.fullRange.location);
        return std::nullopt;
    }
    const QStringView closing = dollars ? QStringView(u"$$") : QStringView(u"\\]");
    const int closer = findCloser(m_cursor, dollars ? m_dollarCloser : m_bracketCloser,
                                  [closing](const SourceLine& candidate) {
                                      return trimmedLine(candidate).endsWith(closing);
                                  });
    if (closer < 0) {
        m_unclosedOpenerAt = std::min(m_unclosedOpenerAt, line.fullRange.location);
        return std::nullopt;
    }
    const int contentStart = line.fullRange.upperBound();
    MarkdownBlock block = makeBlock(block_kind::LatexBlock{}, m_cursor, closer,
                                    MarkdownSourceRange{contentStart, m_lines[closer].contentRange.location - contentStart},
                                    {line.contentRange, m_lines[closer].contentRange});
    m_cursor = closer + 1;
    return block;
}

std::optional<MarkdownBlock> BlockTokenizer::parseFootnoteDefinition()
{
    const SourceLine& line = m_lines[m_cursor];
    std::optional<FootnoteMatch> match = footnoteDefinition(trimmedLine(line));
    if (!match)
        return std::nullopt;
    QString body = line.text.mid(graphemeAdvance(line.text, match->contentOffset)).toString();
    int last = m_cursor;
    while (last + 1 < int(m_lines.size()) && !m_lines[last + 1].isBlank && m_lines[last + 1].indent >= 2) {
        ++last;
        body += u'\n';
        body += trimmedLine(m_lines[last]);
    }
    m_footnoteDefinitions.insert(match->label.toLower(), body);
    // Grapheme counts added to UTF-16 offsets as they stand: a label outside the BMP shifts
    // these ranges, which the styler expects.
    const int contentStart = line.contentRange.location + match->contentOffset;
    const int markerLength = std::min(graphemeCount(match->label) + 4, line.contentRange.length);
    MarkdownBlock block = makeBlock(block_kind::FootnoteDefinition{match->label}, m_cursor, last,
                                    MarkdownSourceRange{contentStart, m_lines[last].contentRange.upperBound() - contentStart},
                                    {MarkdownSourceRange{line.contentRange.location, markerLength}});
    m_cursor = last + 1;
    return block;
}

std::optional<MarkdownBlock> BlockTokenizer::parseHeading()
{
    const SourceLine& line = m_lines[m_cursor];
    const QStringView trimmed = trimmedLine(line);
    if (const std::optional<int> level = MarkdownOutline::headingLevel(trimmed)) {
        const int base = line.contentRange.location;
        const int end = line.contentRange.upperBound();
        int openEnd = base + int(line.text.indexOf(u'#')) + *level;
        while (openEnd < end && m_ns[openEnd] == u' ')
            ++openEnd;
        const int openStart = base + int(line.text.indexOf(u'#'));
        int walk = end;
        while (walk > openEnd && (m_ns[walk - 1] == u'#' || m_ns[walk - 1] == u' '))
            --walk;
        MarkdownMarkerRanges markers{MarkdownSourceRange::fromBounds(openStart, openEnd)};
        MarkdownSourceRange content = MarkdownSourceRange::fromBounds(openEnd, end);
        if (walk > openEnd && walk < end) {
            markers.append(MarkdownSourceRange::fromBounds(walk, end));
            content = MarkdownSourceRange::fromBounds(openEnd, walk);
        }
        MarkdownBlock block = makeBlock(block_kind::Heading{*level, false}, m_cursor, m_cursor, content,
                                        std::move(markers));
        ++m_cursor;
        return block;
    }
    if (m_cursor + 1 >= int(m_lines.size()))
        return std::nullopt;
    const SourceLine& next = m_lines[m_cursor + 1];
    const std::optional<int> level = setextLevel(trimmedLine(next));
    if (!level || next.indent > 3 || next.quoteDepth != line.quoteDepth || line.isBlank || listMarker(line.text)
        || thematicBreakCharacter(line.text))
        return std::nullopt;
    MarkdownBlock block = makeBlock(block_kind::Heading{*level, true}, m_cursor, m_cursor + 1, line.contentRange,
                                    {next.contentRange});
    m_cursor += 2;
    return block;
}

std::vector<MarkdownTableCell> BlockTokenizer::tableCells(const SourceLine& line, int row,
                                                          const std::vector<MarkdownTableAlignment>& alignments) const
{
    std::vector<MarkdownTableCell> cells;
    cells.reserve(alignments.size());
    const int lineStart = line.contentRange.location;
    const int end = line.contentRange.upperBound();
    const auto addCell = [&](int start, int stop) {
        while (start < stop && m_ns[start] == u' ')
            ++start;
        while (stop > start && m_ns[stop - 1] == u' ')
            --stop;
        const int column = int(cells.size());
        const MarkdownTableAlignment alignment =
            column < int(alignments.size()) ? alignments[column] : MarkdownTableAlignment::none;
        cells.push_back({MarkdownSourceRange::fromBounds(start, stop), column, row, row == 0, alignment});
    };
    int p = lineStart;
    if (p < end && m_ns[p] == u'|')
        ++p;
    int cellStart = p;
    for (int i = p; i < end && cells.size() < alignments.size(); ++i) {
        if (m_ns[i] == u'|' && !(i > lineStart && m_ns[i - 1] == u'\\')) {
            addCell(cellStart, i);
            cellStart = i + 1;
        }
    }
    if (cells.size() < alignments.size() && cellStart < end && m_ns[end - 1] != u'\\')
        addCell(cellStart, end);
    while (cells.size() < alignments.size()) {
        const int column = int(cells.size());
        cells.push_back({{end, 0}, column, row, row == 0, alignments[column]});
    }
    return cells;
}

std::optional<MarkdownBlock> BlockTokenizer::parseTable()
{
    const SourceLine& line = m_lines[m_cursor];
    if (m_cursor + 1 >= int(m_lines.size()) || !line.text.contains(u'|'))
        return std::nullopt;
    std::optional<std::vector<MarkdownTableAlignment>> alignments =
        tableAlignments(m_lines[m_cursor + 1].text, m_options.maxTableColumns);
    if (!alignments)
        return std::nullopt;
    int last = m_cursor + 1;
    while (last + 1 < int(m_lines.size()) && !m_lines[last + 1].isBlank && m_lines[last + 1].text.contains(u'|'))
        ++last;

    MarkdownTable table;
    table.separatorRange = m_lines[m_cursor + 1].contentRange;
    table.rows.push_back(tableCells(line, 0, *alignments));
    table.rowRanges.push_back(line.contentRange);
    table.rowRanges.push_back(table.separatorRange);
    for (int k = m_cursor + 2; k <= last; ++k) {
        table.rows.push_back(tableCells(m_lines[k], k - m_cursor - 1, *alignments));
        table.rowRanges.push_back(m_lines[k].contentRange);
    }
    table.alignments = std::move(*alignments);
    MarkdownMarkerRanges markers;
    markers.append(table.rowRanges.data(), qsizetype(table.rowRanges.size()));
    MarkdownBlock block = makeBlock(block_kind::Table{}, m_cursor, last, std::nullopt, std::move(markers));
    table.range = block.range;
    std::get<block_kind::Table>(block.kind).table = std::move(table);
    m_cursor = last + 1;
    return block;
}

std::optional<MarkdownBlock> BlockTokenizer::parseThematicBreak()
{
    const SourceLine& line = m_lines[m_cursor];
    const std::optional<char16_t> character = thematicBreakCharacter(line.text);
    if (!character)
        return std::nullopt;
    MarkdownBlock block = makeBlock(block_kind::ThematicBreak{*character}, m_cursor, m_cursor, line.contentRange,
                                    {line.contentRange});
    ++m_cursor;
    return block;
}

bool BlockTokenizer::parseLinkDefinition()
{
    const QStringView t = trimmedLine(m_lines[m_cursor]);
    if (!t.startsWith(u'[') || t.startsWith(u"[^"))
        return false;
    const qsizetype close = t.indexOf(u']');
    if (close < 0 || close + 1 >= t.size() || t[close + 1] != u':')
        return false;
    QStringView value = chars::trimmedHorizontal(t.mid(close + 2));
    const qsizetype quote = value.indexOf(u'"');
    if (quote >= 0)
        value = chars::trimmedHorizontal(value.left(quote));
    // The last definition of a label wins.
    m_linkDefinitions.insert(t.mid(1, close - 1).toString().toLower(), value.toString());
    m_readLinkDefinition = true;
    ++m_cursor;
    return true;
}

std::optional<MarkdownBlock> BlockTokenizer::parseHTMLBlock()
{
    const SourceLine& line = m_lines[m_cursor];
    const QStringView trimmed = trimmedLine(line);
    if (!trimmed.startsWith(u'<'))
        return std::nullopt;
    for (size_t tag = 0; tag < std::size(htmlBlockTags); ++tag) {
        if (!trimmed.mid(1).startsWith(htmlBlockTags[tag], Qt::CaseInsensitive))
            continue;
        const QString closing = QStringLiteral("</") + htmlBlockTags[tag].toString();
        const int closer = findCloser(m_cursor - 1, m_htmlClosers[tag], [&closing](const SourceLine& candidate) {
            return candidate.text.contains(closing, Qt::CaseInsensitive);
        });
        const int last = closer >= 0 ? closer : int(m_lines.size()) - 1;
        MarkdownBlock block = makeBlock(block_kind::HtmlBlock{}, m_cursor, last, line.contentRange, {});
        m_cursor = last + 1;
        return block;
    }
    return std::nullopt;
}

std::optional<MarkdownBlock> BlockTokenizer::parseListItem()
{
    const SourceLine& line = m_lines[m_cursor];
    std::optional<MarkdownListMarker> marker = listMarker(line.text);
    if (!marker)
        return std::nullopt;
    const int base = line.contentRange.location;
    marker->markerRange.location += base;
    marker->contentStart += base;
    int last = m_cursor;
    while (last + 1 < int(m_lines.size())) {
        const SourceLine& next = m_lines[last + 1];
        if (next.isBlank || fenceMarker(trimmedLine(next)) || thematicBreakCharacter(next.text)
            || listMarker(next.text) || (next.indent <= marker->indent && next.quoteDepth <= line.quoteDepth))
            break;
        ++last;
    }
    const MarkdownSourceRange content =
        MarkdownSourceRange::fromBounds(marker->contentStart, m_lines[last].contentRange.upperBound());
    const int listDepth = marker->indent / 2;
    const MarkdownSourceRange markerRange = marker->markerRange;
    MarkdownBlock block = makeBlock(block_kind::ListItem{*marker}, m_cursor, last, content, {markerRange});
    block.listDepth = listDepth;
    m_cursor = last + 1;
    return block;
}

bool BlockTokenizer::startsNewBlock(int index) const
{
    const SourceLine& line = m_lines[index];
    const QStringView trimmed = trimmedLine(line);
    if (fenceMarker(trimmed) || MarkdownOutline::headingLevel(trimmed) || thematicBreakCharacter(line.text)
        || listMarker(line.text))
        return true;
    if (m_options.directives && looksLikeDirectiveOpener(trimmed))
        return true;
    if (m_options.footnotes && footnoteDefinition(trimmed))
        return true;
    if (m_options.tables && index + 1 < int(m_lines.size()) && line.text.contains(u'|')
        && tableAlignments(m_lines[index + 1].text, m_options.maxTableColumns))
        return true;
    return trimmed == u"$$";
}

void BlockTokenizer::parseParagraph(std::vector<MarkdownBlock>& into)
{
    const int first = m_cursor;
    int end = first + 1;
    while (end < int(m_lines.size()) && !m_lines[end].isBlank && !startsNewBlock(end))
        ++end;
    // One paragraph per run of equal quote depth.
    int runStart = first;
    for (int k = first + 1; k <= end; ++k) {
        if (k < end && m_lines[k].quoteDepth == m_lines[runStart].quoteDepth)
            continue;
        const MarkdownSourceRange content = MarkdownSourceRange::fromBounds(
            m_lines[runStart].contentRange.location, m_lines[k - 1].contentRange.upperBound());
        into.push_back(makeBlock(block_kind::Paragraph{}, runStart, k - 1, content, {}));
        runStart = k;
    }
    m_cursor = end;
}

BlockTokenizer::QuoteMarkers BlockTokenizer::quoteMarkers(const SourceLine& line, QStringView text)
{
    QuoteMarkers markers;
    const int contentStart = line.contentRange.location;
    // The prefix ends where the content starts, so a space belongs to a marker exactly when it
    // lies before that point.
    for (int p = line.fullRange.location; p < contentStart;) {
        const int length = p + 1 < contentStart && text[p + 1] == u' ' ? 2 : 1;
        markers.append({p, length});
        p += length;
    }
    return markers;
}

void BlockTokenizer::attachQuoteMarkers(std::vector<MarkdownBlock>& blocks, const std::vector<SourceLine>& lines,
                                        QStringView text)
{
    // Most notes quote nothing: the lines say so without a walk over every block.
    if (std::none_of(lines.begin(), lines.end(), [](const SourceLine& line) { return line.quoteDepth > 0; }))
        return;
    size_t lineIndex = 0;
    std::vector<MarkdownSourceRange> sortedOwn;
    for (MarkdownBlock& block : blocks) {
        if (!block.children.empty())
            attachQuoteMarkers(block.children, lines, text);
        while (lineIndex < lines.size() && lines[lineIndex].fullRange.location < block.range.location)
            ++lineIndex;
        const qsizetype own = block.markerRanges.size();
        // A quote marker is skipped when it equals one of the block's own markers (a directive's
        // relative marker can); quote markers never equal each other. Long own lists (tables)
        // are searched sorted.
        const bool searchSorted = own > 8;
        if (searchSorted) {
            sortedOwn.assign(block.markerRanges.begin(), block.markerRanges.end());
            std::sort(sortedOwn.begin(), sortedOwn.end(), [](auto a, auto b) {
                return std::pair(a.location, a.length) < std::pair(b.location, b.length);
            });
        }
        const auto isOwn = [&](MarkdownSourceRange r) {
            if (searchSorted)
                return std::binary_search(sortedOwn.begin(), sortedOwn.end(), r, [](auto a, auto b) {
                    return std::pair(a.location, a.length) < std::pair(b.location, b.length);
                });
            return std::find(block.markerRanges.begin(), block.markerRanges.begin() + own, r)
                != block.markerRanges.begin() + own;
        };
        size_t k = lineIndex;
        for (; k < lines.size() && lines[k].fullRange.location < block.range.upperBound(); ++k) {
            if (lines[k].quoteDepth == 0)
                continue;
            for (const MarkdownSourceRange& marker : quoteMarkers(lines[k], text)) {
                if (!isOwn(marker))
                    block.markerRanges.append(marker);
            }
        }
        lineIndex = k;
        const auto byLocation = [](const MarkdownSourceRange& a, const MarkdownSourceRange& b) {
            return a.location < b.location;
        };
        if (!std::is_sorted(block.markerRanges.begin(), block.markerRanges.end(), byLocation))
            std::stable_sort(block.markerRanges.begin(), block.markerRanges.end(), byLocation);
    }
}

void BlockTokenizer::attachInlines(std::vector<MarkdownBlock>& blocks, const MarkdownDocument& definitions)
{
    QSet<QString> footnoteLabels;
    for (auto it = definitions.footnoteDefinitions.cbegin(); it != definitions.footnoteDefinitions.cend(); ++it)
        footnoteLabels.insert(it.key());
    attachInlines(blocks, InlineParser::Context(definitions.text, definitions.linkDefinitions, footnoteLabels,
                                                definitions.options));
}

void BlockTokenizer::attachInlines(std::vector<MarkdownBlock>& blocks, const InlineParser::Context& context)
{
    const MarkdownSourceRange whole{0, int(context.ns.size())};
    InlineParser::Scratch scratch;
    MarkdownInlineList::Builder builder;
    const auto parse = [&](MarkdownSourceRange range) {
        const MarkdownSourceRange clipped = range.intersection(whole);
        if (clipped.length >= 1)
            InlineParser::parse(clipped, context, scratch, builder);
    };
    for (MarkdownBlock& block : blocks) {
        if (block.is<block_kind::Fence>() || block.is<block_kind::FrontMatter>() || block.is<block_kind::LatexBlock>()
            || block.is<block_kind::HtmlBlock>())
            continue;
        if (const auto* table = block.as<block_kind::Table>()) {
            for (const auto& row : table->table.rows) {
                for (const MarkdownTableCell& cell : row)
                    parse(cell.range);
            }
        } else {
            parse(block.contentRange);
        }
        block.inlines = builder.take();
    }
}

}
