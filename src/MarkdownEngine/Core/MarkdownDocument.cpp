#include "MarkdownEngine/Core/MarkdownDocument.h"

#include "MarkdownEngine/Core/TextCharacters.h"
#include "MarkdownEngine/Parser/BlockReparser.h"
#include "MarkdownEngine/Parser/BlockTokenizer.h"

#include <algorithm>

namespace velmo::markdown {

MarkdownDocument MarkdownDocument::parse(const QString& text, const MarkdownParseOptions& options)
{
    return BlockTokenizer::document(text, options);
}

MarkdownDocument MarkdownDocument::reparse(MarkdownDocument&& old, const QString& text, MarkdownDocumentChange& change)
{
    return BlockReparser::reparse(std::move(old), text, change);
}

std::vector<const MarkdownInline*> MarkdownDocument::inlines() const
{
    std::vector<const MarkdownInline*> all;
    forEachInline([&all](const MarkdownInlineList&, const MarkdownInline& node) { all.push_back(&node); });
    // Depth-first order is already by location for a partition; the sort is a safety net.
    const auto byLocation = [](const MarkdownInline* a, const MarkdownInline* b) {
        return a->range.location < b->range.location;
    };
    if (!std::is_sorted(all.begin(), all.end(), byLocation))
        std::stable_sort(all.begin(), all.end(), byLocation);
    return all;
}

const MarkdownBlock* MarkdownDocument::block(int at) const
{
    const MarkdownBlock* found = nullptr;
    forEachBlock([&](const MarkdownBlock& block) {
        if (found)
            return;
        const int length = std::max(block.range.length, 1);
        if (block.range.location <= at && at < block.range.location + length)
            found = &block;
    });
    return found;
}

const MarkdownInline* MarkdownDocument::token(int at) const
{
    const MarkdownInline* best = nullptr;
    for (const MarkdownInline* node : inlines()) {
        if (node->range.contains(at) && (!best || node->range.length < best->range.length))
            best = node;
    }
    return best;
}

std::vector<MarkdownOutlineItem> MarkdownDocument::outline() const
{
    std::vector<MarkdownOutlineItem> items;
    forEachBlock([&](const MarkdownBlock& block) {
        const std::optional<int> level = block.headingLevel();
        if (!level)
            return;
        const MarkdownSourceRange content = block.contentRange.intersection({0, int(text.size())});
        const QString source = chars::trimmed(QStringView(text).mid(content.location, content.length)).toString();
        QString title = chars::trimmed(plainText(source)).toString();
        if (title.isEmpty())
            title = QStringLiteral("Untitled");
        items.push_back({block.id, *level, title});
    });
    return items;
}

MarkdownTextStatistics MarkdownDocument::statistics(MarkdownSourceRange range, bool isSelection) const
{
    return MarkdownTextStatistics::measure(text, range, isSelection);
}

std::vector<MarkdownDocument::WikiLinkReference> MarkdownDocument::wikiLinks() const
{
    std::vector<WikiLinkReference> links;
    forEachInline([&](const MarkdownInlineList& list, const MarkdownInline& node) {
        if (const auto* link = node.as<inline_kind::WikiLink>())
            links.push_back({list.string(text, link->target), list.string(text, link->display), node.range});
    });
    return links;
}

QStringList MarkdownDocument::footnoteReferences() const
{
    QStringList labels;
    forEachInline([&](const MarkdownInlineList& list, const MarkdownInline& node) {
        if (const auto* reference = node.as<inline_kind::FootnoteReference>())
            labels.append(list.string(text, reference->label));
    });
    return labels;
}

bool MarkdownDocument::hasSameTree(const MarkdownDocument& other) const
{
    if (text != other.text || options != other.options || linkDefinitions != other.linkDefinitions
        || footnoteDefinitions != other.footnoteDefinitions)
        return false;
    std::vector<const MarkdownBlock*> mine, theirs;
    forEachBlock([&mine](const MarkdownBlock& b) { mine.push_back(&b); });
    other.forEachBlock([&theirs](const MarkdownBlock& b) { theirs.push_back(&b); });
    const auto sameBlock = [](const MarkdownBlock* a, const MarkdownBlock* b) {
        return a->kind == b->kind && a->range == b->range && a->contentRange == b->contentRange
            && a->markerRanges == b->markerRanges && a->quoteDepth == b->quoteDepth && a->listDepth == b->listDepth
            && a->children.size() == b->children.size() && a->inlines.size() == b->inlines.size();
    };
    if (!std::equal(mine.begin(), mine.end(), theirs.begin(), theirs.end(), sameBlock))
        return false;
    std::vector<const MarkdownInline*> a = inlines(), b = other.inlines();
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](const MarkdownInline* x, const MarkdownInline* y) {
        return x->kind == y->kind && x->range == y->range && x->contentRange == y->contentRange
            && x->markerRanges == y->markerRanges && x->children().size() == y->children().size();
    });
}

QString MarkdownDocument::plainText(const QString& text)
{
    const MarkdownDocument document = parse(text);
    QString result;
    bool appended = false;
    int runningEnd = 0;
    for (const MarkdownInline* node : document.inlines()) {
        const bool takesText = node->is<inline_kind::Code>() || node->is<inline_kind::Emphasis>()
            || node->is<inline_kind::Link>() || node->is<inline_kind::WikiLink>() || node->is<inline_kind::Text>()
            || node->is<inline_kind::Strikethrough>() || node->is<inline_kind::Highlight>();
        if (!takesText || node->range.location < runningEnd)
            continue;
        const MarkdownSourceRange content = node->contentRange.intersection({0, int(text.size())});
        result += QStringView(text).mid(content.location, content.length);
        appended = true;
        runningEnd = node->range.upperBound();
    }
    if (!appended)
        result = text;
    result.replace(u'\n', u' ');
    return result;
}

}
