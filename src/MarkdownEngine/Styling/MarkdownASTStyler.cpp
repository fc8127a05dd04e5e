#include "MarkdownEngine/Styling/MarkdownASTStyler.h"

#include "MarkdownEngine/Core/TextCharacters.h"
#include "MarkdownEngine/Directives/DirectiveRegistryError.h"
#include "MarkdownEngine/Parser/MarkdownTagScanner.h"
#include "MarkdownEngine/Styling/MarkdownInlineStyler.h"

#include <algorithm>
#include <iterator>

namespace velmo::markdown {

// The whole pass, in order:
// 1. Active lines from the selection; the predicates that say which markers and formulas show.
// 2. The block step for every block of the flat list (children are not descended into).
// 3. The inline step for every block with inlines, then its text colours.
// 4. The tag pass over the text outside code, formulas and front matter.
// 5. The store, and the styled text: base attributes, then the fragments by priority.
// 6. Table columns lined up, once every font is known.

namespace {

using Role = MarkdownEditorFragmentRole;

bool excludesTags(Role role)
{
    switch (role) {
    case Role::fence: case Role::fenceMarker: case Role::fenceInfo: case Role::inlineCode: case Role::latex:
    case Role::frontMatter:
        return true;
    default:
        return false;
    }
}

// The keys of one list in store order. Lists come nearly in order (a node before its
// markers): an insertion sort moves each key the few places it is out, and gives way to a
// full sort when a list is more disordered than that.
void sortKeys(std::vector<MarkdownEditorFragmentStore::OrderKey>& keys)
{
    size_t moves = 0;
    const size_t budget = 8 * keys.size() + 64;
    for (size_t i = 1; i < keys.size(); ++i) {
        const MarkdownEditorFragmentStore::OrderKey key = keys[i];
        size_t j = i;
        while (j > 0 && key < keys[j - 1]) {
            keys[j] = keys[j - 1];
            --j;
            if (++moves > budget) {
                keys[j] = key;
                std::sort(keys.begin(), keys.end());
                return;
            }
        }
        keys[j] = key;
    }
}

}

size_t MarkdownASTStyler::firstBlockEndingAfter(const std::vector<MarkdownBlock>& blocks, int location)
{
    // Blocks are in source order and do not overlap.
    return size_t(std::upper_bound(blocks.begin(), blocks.end(), location,
                                   [](int at, const MarkdownBlock& b) { return at < b.range.upperBound(); })
                  - blocks.begin());
}

DirectiveRegistry MarkdownASTStyler::directiveRegistry(const MarkdownEditorConfiguration& config)
{
    try {
        return DirectiveRegistry(config.directives, config.directiveSettings);
    } catch (const DirectiveRegistryError&) {
        return DirectiveRegistry();
    }
}

MarkdownTextAttributes MarkdownASTStyler::BlockContext::base(const MarkdownParagraphMetrics& paragraph) const
{
    MarkdownTextAttributes a;
    a.setFont(bodyFont);
    a.setForeground(request->config->theme.bodyText);
    a.setParagraph(paragraph);
    return a;
}

std::vector<MarkdownSourceRange> MarkdownASTStyler::activeLineRanges(const MarkdownSourceEditorState& state,
                                                                     const QString& text)
{
    std::vector<MarkdownSourceRange> lines = state.selectedLineRanges;
    for (const MarkdownSourceRange& r : state.selectedRanges) {
        if (r.length != 0)
            continue;
        const auto bounds = chars::lineAt(text, std::clamp<qsizetype>(r.location, 0, text.size()));
        lines.push_back(MarkdownSourceRange::fromBounds(int(bounds.start), int(bounds.end)));
    }
    return lines;
}

MarkdownASTStyler::RangePredicate MarkdownASTStyler::markerVisibility(const Request& request,
                                                                      const std::vector<MarkdownSourceRange>& activeLines)
{
    // The flag turns hiding on: without it every marker shows everywhere.
    if (!request.config->markers.revealsMarkersOnActiveLine)
        return [](MarkdownSourceRange) { return true; };
    return [activeLines](MarkdownSourceRange r) {
        return std::any_of(activeLines.begin(), activeLines.end(),
                           [r](MarkdownSourceRange line) { return line.intersection(r).length > 0; });
    };
}

namespace {

// A selection of positive length must overlap; a caret must lie strictly inside, so a caret
// at a formula's first position leaves it rendered.
bool touches(const std::vector<MarkdownSourceRange>& selections, MarkdownSourceRange r)
{
    return std::any_of(selections.begin(), selections.end(), [r](MarkdownSourceRange s) {
        if (s.length > 0)
            return s.intersection(r).length >= 1;
        return s.location > r.location && s.location < r.upperBound();
    });
}

}

MarkdownASTStyler::RangePredicate MarkdownASTStyler::formulaVisibility(const Request& request)
{
    if (!request.config->markers.revealsMarkersOnActiveLine || request.config->rawSourceMode)
        return [](MarkdownSourceRange) { return false; };
    return [selections = request.selection.selectedRanges](MarkdownSourceRange r) { return touches(selections, r); };
}

std::optional<MarkdownSourceRange> MarkdownASTStyler::formulaUnderSelection(const MarkdownSourceEditorState& state,
                                                                            const MarkdownEditorFragmentStore& store)
{
    // Fragments are in location order: the first touched is the lowest. Each selection asks
    // the store for its own stretch rather than walking every fragment of the note.
    const MarkdownEditorFragment* first = nullptr;
    for (const MarkdownSourceRange& s : state.selectedRanges) {
        const MarkdownSourceRange near = s.length > 0 ? s : MarkdownSourceRange{s.location, 1};
        for (const MarkdownEditorFragment* f : store.fragments(near)) {
            if (f->role == Role::latex && touches(state.selectedRanges, f->range) && (!first || f < first)) {
                first = f;
                break;
            }
        }
    }
    return first ? std::optional(first->range) : std::nullopt;
}

MarkdownASTStyler::BlockContext MarkdownASTStyler::makeContext(const Request& request,
                                                               const std::vector<MarkdownSourceRange>& activeLines,
                                                               const MarkdownExtensionRegistry& registry,
                                                               const DirectiveRegistry& directives)
{
    BlockContext context;
    context.request = &request;
    context.registry = &registry;
    context.directives = &directives;
    context.bodyFont = request.config->bodyFont();
    context.text = &request.document->text;
    context.showsMarkers = markerVisibility(request, activeLines);
    context.revealsFormula = formulaVisibility(request);
    context.attachments = request.attachments;
    MarkdownInlineStyler::Environment& env = context.inlines;
    env.config = request.config;
    env.registry = &registry;
    env.baseFont = context.bodyFont;
    env.baseAttributes.setFont(context.bodyFont);
    env.baseAttributes.setForeground(request.config->theme.bodyText);
    env.showsMarkers = context.showsMarkers;
    env.revealsFormula = context.revealsFormula;
    env.attachments = request.attachments;
    env.maximumEmbedWidth = request.maximumEmbedWidth;
    env.note = request.document->text;
    return context;
}

void MarkdownASTStyler::inlinePass(const MarkdownBlock& block, const BlockContext& context,
                                   std::vector<MarkdownEditorFragment>& into)
{
    if (block.inlines.empty())
        return;
    const MarkdownInlineStyler::Environment& env = context.inlines;
    env.list = &block.inlines;
    for (const MarkdownInline& node : block.inlines)
        MarkdownInlineStyler::visit(node, env.baseAttributes, env.baseFont, env, into);
    // Coloured spans are HTML tags: most blocks hold none, and are spared the second walk.
    if (block.inlines.contains<inline_kind::Html>())
        MarkdownInlineStyler::applyTextColors(block.inlines, env, into);
}

void MarkdownASTStyler::tagPass(const BlockContext& context, std::optional<MarkdownSourceRange> within,
                                std::span<const MarkdownEditorFragment> fragments,
                                std::vector<MarkdownEditorFragment>& into)
{
    const QString& text = *context.text;
    const MarkdownSourceRange whole{0, int(text.size())};
    const MarkdownSourceRange asked = within ? within->intersection(whole) : whole;
    // Most stretches of a note hold no "#" at all.
    const qsizetype hashAt = asked.length > 0 ? QStringView(text).mid(asked.location, asked.length).indexOf(u'#') : -1;
    if (hashAt < 0)
        return;
    // The scan starts at the line of the first "#": a tag never crosses a line end, and the
    // scanner starts afresh after one, so the tags found are the same.
    const qsizetype lineStart = text.lastIndexOf(u'\n', asked.location + hashAt) + 1;
    const MarkdownSourceRange scope =
        MarkdownSourceRange::fromBounds(std::max(asked.location, int(lineStart)), asked.upperBound());
    std::vector<MarkdownSourceRange> excluding, tags;
    for (const MarkdownEditorFragment& f : fragments) {
        if (!excludesTags(f.role))
            continue;
        const MarkdownSourceRange clipped = f.range.intersection(scope);
        if (clipped.length > 0)
            excluding.push_back({clipped.location - scope.location, clipped.length});
    }
    MarkdownTagScanner::bodyTagRanges(QStringView(text).mid(scope.location, scope.length), excluding, tags);
    if (tags.empty())
        return;
    MarkdownTextAttributes a;
    a.setForeground(context.request->config->theme.tag);
    a.setRole(Role::tag);
    for (const MarkdownSourceRange& tag : tags)
        MarkdownEditorFragment::add(into, {tag.location + scope.location, tag.length}, Role::tag, a, 6);
}

void MarkdownASTStyler::styleTile(const BlockContext& context, size_t b, Tile& tile,
                                  std::vector<MarkdownEditorFragment>& into)
{
    // The store orders by location, then priority, then the order of the whole pass: every
    // block step, then every inline step, then the tags. Blocks are in source order and their
    // fragments stay inside them, so each block's fragments, with the tags of the text up to
    // the next block, are ordered on their own.
    const std::vector<MarkdownBlock>& blocks = context.request->document->blocks;
    const int textLength = int(context.text->size());
    using Key = MarkdownEditorFragmentStore::OrderKey;
    const size_t start = into.size();
    if (!blocks.empty())
        style(blocks[b], context, into);
    const size_t inlinesAt = into.size();
    if (!blocks.empty())
        inlinePass(blocks[b], context, into);
    const size_t tagsAt = into.size();
    // The tags of the text from this block's start (the note's for the first) to the next's.
    const int tileStart = b == 0 ? 0 : blocks[b].range.location;
    const int tileEnd = b + 1 < blocks.size() ? blocks[b + 1].range.location : textLength;
    tagPass(context, MarkdownSourceRange::fromBounds(tileStart, std::max(tileStart, tileEnd)),
            std::span(into).subspan(start, tagsAt - start), into);

    // Each list is nearly in order on its own (the inline walk puts a node before its
    // markers), while the block's own fragments, its inlines and its tags interleave:
    // three small sorts and two merges, rather than one sort of everything.
    // The index is the fragment's place in the tile: its own, its inlines, its tags.
    const size_t bounds[4] = {start, inlinesAt, tagsAt, into.size()};
    for (size_t l = 0; l < 3; ++l) {
        std::vector<Key>& sorted = tile.lists[l];
        sorted.clear();
        for (size_t i = bounds[l]; i < bounds[l + 1]; ++i)
            sorted.push_back({into[i].range.location, into[i].priority, int(i - start)});
        sortKeys(sorted);
    }
    // Merged into sized buffers: a back inserter's checks cost more than the merge.
    tile.merged.resize(tile.lists[0].size() + tile.lists[1].size());
    std::merge(tile.lists[0].begin(), tile.lists[0].end(), tile.lists[1].begin(), tile.lists[1].end(),
               tile.merged.begin());
    std::vector<Key>* keys = &tile.merged;
    if (!tile.lists[2].empty()) {
        tile.keys.resize(tile.merged.size() + tile.lists[2].size());
        std::merge(tile.merged.begin(), tile.merged.end(), tile.lists[2].begin(), tile.lists[2].end(),
                   tile.keys.begin());
        keys = &tile.keys;
    }

    // Each fragment to its place by following the cycles of the order: one move each, and
    // none for those already in place. A key whose index is its own place is done.
    MarkdownEditorFragment* const v = into.data() + start;
    std::vector<Key>& order = *keys;
    for (size_t k = 0; k < order.size(); ++k) {
        if (size_t(order[k].index) == k)
            continue;
        MarkdownEditorFragment held = std::move(v[k]);
        size_t j = k;
        for (size_t from = size_t(order[j].index); from != k; from = size_t(order[j].index)) {
            v[j] = std::move(v[from]);
            order[j].index = int(j);
            j = from;
        }
        v[j] = std::move(held);
        order[j].index = int(j);
    }
}

bool MarkdownASTStyler::followsPrevious(const std::vector<MarkdownEditorFragment>& fragments, size_t at)
{
    using Key = MarkdownEditorFragmentStore::OrderKey;
    return at == 0 || at >= fragments.size() || Key::of(fragments[at - 1]).precedes(Key::of(fragments[at]));
}

bool MarkdownASTStyler::styleInStoreOrder(const BlockContext& context, MarkdownEditorFragmentStore::Builder& into)
{
    // Tiles are appended one after another; the note is then in store order as long as no
    // tile's first fragment ties with or precedes its predecessor's last.
    const size_t tiles = std::max<size_t>(context.request->document->blocks.size(), 1);
    std::vector<MarkdownEditorFragment>& fragments = into.tail();
    Tile tile;
    for (size_t b = 0; b < tiles; ++b) {
        const size_t start = fragments.size();
        styleTile(context, b, tile, fragments);
        if (!followsPrevious(fragments, start))
            return false;
        into.endTile();
    }
    return true;
}

std::vector<MarkdownSourceRange> MarkdownASTStyler::selectionRecord(const Request& request,
                                                                     const std::vector<MarkdownSourceRange>& activeLines)
{
    std::vector<MarkdownSourceRange> ranges = activeLines;
    ranges.insert(ranges.end(), request.selection.selectedRanges.begin(), request.selection.selectedRanges.end());
    return ranges;
}

MarkdownStyledNote MarkdownASTStyler::styledNote(const Request& request, const MarkdownEditorFragmentStore& fragments)
{
    const MarkdownEditorConfiguration& config = *request.config;
    const MarkdownFontDescriptor bodyFont = config.bodyFont();
    MarkdownParagraphMetrics paragraph = baseParagraphStyle(config, bodyFont.pointSize);
    if (config.paragraph.blankLineFactor >= 0 && config.paragraph.blankLineFactor < 1)
        paragraph.paragraphSpacing *= float(std::max(config.paragraph.blankLineFactor - 0.7, 0.0) / 0.3);
    MarkdownTextAttributes base;
    base.setFont(bodyFont);
    base.setForeground(config.theme.bodyText);
    base.setParagraph(paragraph);
    std::vector<MarkdownTable> tables;
    request.document->forEachBlock([&tables](const MarkdownBlock& block) {
        if (const auto* table = block.as<block_kind::Table>())
            tables.push_back(table->table);
    });
    return MarkdownStyledNote(request.document->text, base, fragments, std::move(tables));
}

MarkdownASTStyler::Result MarkdownASTStyler::style(const Request& request)
{
    const MarkdownEditorConfiguration& config = *request.config;
    const QString& text = request.document->text;
    const MarkdownFontDescriptor bodyFont = config.bodyFont();
    Result result;

    if (config.rawSourceMode) {
        MarkdownTextAttributes a;
        a.setFont(MarkdownFont::monospaced(bodyFont.pointSize));
        a.setForeground(config.theme.bodyText);
        a.setParagraph(baseParagraphStyle(config, bodyFont.pointSize));
        result.attributedString = MarkdownStyledNote(text, a, {}, {});
        return result;
    }

    result.activeLines = activeLineRanges(request.selection, text);
    const MarkdownExtensionRegistry registry(config.extensions);
    const DirectiveRegistry directives = directiveRegistry(config);
    BlockContext context = makeContext(request, result.activeLines, registry, directives);
    context.listGutters = listGutters(request, text, bodyFont);

    MarkdownEditorFragmentStore::Builder builder(request.document->blocks.size() * 4 + size_t(text.size()) / 6);
    builder.setSelection(selectionRecord(request, result.activeLines));
    if (styleInStoreOrder(context, builder)) {
        result.fragments = std::move(builder).finish();
    } else {
        // A fragment outside its block: the whole pass in its own order, for the store to sort.
        std::vector<MarkdownEditorFragment> fragments;
        for (const MarkdownBlock& block : request.document->blocks)
            style(block, context, fragments);
        for (const MarkdownBlock& block : request.document->blocks)
            inlinePass(block, context, fragments);
        std::vector<MarkdownEditorFragment> tags;
        tagPass(context, std::nullopt, fragments, tags);
        fragments.insert(fragments.end(), std::make_move_iterator(tags.begin()), std::make_move_iterator(tags.end()));
        result.fragments = MarkdownEditorFragmentStore(std::move(fragments));
    }

    result.attributedString = styledNote(request, result.fragments);
    result.styledBlocks = request.document->blocks.size();
    return result;
}

MarkdownASTStyler::SelectionFragments
MarkdownASTStyler::selectionFragments(const Request& request, const std::vector<MarkdownSourceRange>& affectedLines)
{
    const MarkdownEditorConfiguration& config = *request.config;
    const QString& text = request.document->text;
    const std::vector<MarkdownBlock>& blocks = request.document->blocks;
    SelectionFragments out;

    // Indices of the blocks touched by an affected line, each once, in order.
    std::vector<size_t> touched;
    for (const MarkdownSourceRange& line : affectedLines) {
        for (size_t i = firstBlockEndingAfter(blocks, line.location);
             i < blocks.size() && blocks[i].range.location < line.upperBound(); ++i) {
            if (blocks[i].range.intersection(line).length > 0)
                touched.push_back(i);
        }
    }
    std::sort(touched.begin(), touched.end());
    touched.erase(std::unique(touched.begin(), touched.end()), touched.end());

    if (!touched.empty()) {
        const std::vector<MarkdownSourceRange> activeLines = activeLineRanges(request.selection, text);
        const MarkdownExtensionRegistry registry(config.extensions);
        const DirectiveRegistry directives = directiveRegistry(config);
        BlockContext context = makeContext(request, activeLines, registry, directives);
        for (size_t i : touched)
            addRunGutters(context, i);
        for (size_t i : touched)
            style(blocks[i], context, out.fragments);
        for (size_t i : touched)
            inlinePass(blocks[i], context, out.fragments);
        // Tags never cross a line end and blocks are whole lines, so neighbouring blocks are
        // scanned as one span; only the fragments that exclude tags are looked at.
        std::vector<MarkdownEditorFragment> excluding;
        for (const MarkdownEditorFragment& f : out.fragments) {
            if (excludesTags(f.role))
                excluding.push_back(f);
        }
        // Between two consecutive blocks lie only blank lines, which hold no tag.
        std::vector<MarkdownSourceRange> spans;
        for (size_t k = 0; k < touched.size(); ++k) {
            const size_t i = touched[k];
            if (k > 0 && touched[k - 1] + 1 == i)
                spans.back() = spans.back().united(blocks[i].range);
            else
                spans.push_back(blocks[i].range);
        }
        for (const MarkdownSourceRange& span : spans)
            tagPass(context, span, excluding, out.fragments);
    }

    std::vector<MarkdownSourceRange> ranges;
    for (size_t i : touched)
        ranges.push_back(blocks[i].range);
    ranges.insert(ranges.end(), affectedLines.begin(), affectedLines.end());
    ranges.erase(std::remove_if(ranges.begin(), ranges.end(), [](MarkdownSourceRange r) { return r.length <= 0; }),
                 ranges.end());
    std::sort(ranges.begin(), ranges.end(), [](auto a, auto b) { return a.location < b.location; });
    for (const MarkdownSourceRange& r : ranges) {
        if (!out.ranges.empty() && r.location <= out.ranges.back().upperBound())
            out.ranges.back() = out.ranges.back().united(r);
        else
            out.ranges.push_back(r);
    }
    return out;
}

void MarkdownASTStyler::addRunGutters(BlockContext& context, size_t i)
{
    // Gutters are shared within a run of list items only (any other block ends every group),
    // so the run around an item gives the same widths as the whole note.
    const MarkdownDocument& document = *context.request->document;
    const std::vector<MarkdownBlock>& blocks = document.blocks;
    if (!blocks[i].is<block_kind::ListItem>() || context.listGutters.contains(blocks[i].range.location))
        return;
    size_t first = i, last = i + 1;
    while (first > 0 && blocks[first - 1].is<block_kind::ListItem>())
        --first;
    while (last < blocks.size() && blocks[last].is<block_kind::ListItem>())
        ++last;
    context.listGutters.insert(listGutters(document, first, last, *context.text, context.bodyFont));
}

QHash<int, double> MarkdownASTStyler::listGutters(const Request& request, const QString& text,
                                                  const MarkdownFontDescriptor& font)
{
    return listGutters(*request.document, 0, request.document->blocks.size(), text, font);
}

QHash<int, double> MarkdownASTStyler::listGutters(const MarkdownDocument& document, size_t first, size_t last,
                                                  const QString& text, const MarkdownFontDescriptor& font)
{
    struct Group {
        int indent = 0;
        int quoteDepth = 0;
        bool ordered = false;
        std::vector<int> items;
        double width = 0;
    };
    QHash<int, double> gutters;
    std::vector<Group> stack;
    auto finish = [&] {
        for (int item : stack.back().items)
            gutters.insert(item, stack.back().width);
        stack.pop_back();
    };
    const MarkdownFontDescriptor tabular = MarkdownFont::tabularDigits(font);
    for (size_t i = first; i < last; ++i) {
        const MarkdownBlock& block = document.blocks[i];
        const auto* item = block.as<block_kind::ListItem>();
        if (!item) {
            while (!stack.empty())
                finish();
            continue;
        }
        const MarkdownListMarker& m = item->marker;
        const bool ordered = std::holds_alternative<list_kind::Ordered>(m.kind);
        while (!stack.empty() && (stack.back().quoteDepth != block.quoteDepth || m.indent < stack.back().indent))
            finish();
        if (!stack.empty() && stack.back().indent == m.indent && stack.back().ordered != ordered)
            finish();
        if (stack.empty() || stack.back().indent != m.indent)
            stack.push_back({m.indent, block.quoteDepth, ordered, {}, 0});
        int prefixEnd = m.contentStart;
        if (document.options.taskCheckboxes) {
            if (auto box = taskCheckboxRange(block, text)) {
                prefixEnd = box->range.upperBound();
                if (prefixEnd < text.size() && chars::isWhitespace(text.at(prefixEnd).unicode()))
                    ++prefixEnd;
            }
        }
        const QString prefix = text.mid(m.markerRange.location, std::max(0, prefixEnd - m.markerRange.location));
        const double width = (ordered ? tabular : font).width(prefix);
        stack.back().items.push_back(block.range.location);
        stack.back().width = std::max(stack.back().width, width);
    }
    while (!stack.empty())
        finish();
    return gutters;
}

}
