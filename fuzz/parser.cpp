// Parses any input under any options and checks the tree's invariants: ranges inside the text,
// top-level inlines partitioning what they were parsed from, blocks in order without overlap,
// and the same result twice. Then edits the text and checks that the reparse after the edit,
// and the one that takes the edit back, equal full parses.
#include "MarkdownEngine/Core/MarkdownDocument.h"

#include <QString>
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstdio>

#include "FuzzCheck.h"

using namespace velmo::markdown;

namespace {

bool inside(MarkdownSourceRange r, int size)
{
    return r.location >= 0 && r.length >= 0 && r.upperBound() <= size;
}

// The first byte picks the options; the second the table width and the text's encoding, so that
// lone surrogates and CR are reachable.
MarkdownParseOptions optionsFrom(uint8_t flags, uint8_t extra)
{
    MarkdownParseOptions options;
    options.wikiLinks = !(flags & 1);
    options.footnotes = !(flags & 2);
    options.frontMatter = !(flags & 4);
    options.tables = !(flags & 8);
    options.latex = !(flags & 16);
    options.highlight = !(flags & 32);
    options.strikethrough = !(flags & 64);
    options.directives = !(flags & 128);
    options.blockHtml = extra & 1;
    options.maxTableColumns = 1 + (extra >> 3);
    return options;
}

void appendRange(QString& out, MarkdownSourceRange r)
{
    out += QString::number(r.location) + u'+' + QString::number(r.length) + u' ';
}

QString payload(const MarkdownInlineKind& kind, const MarkdownInlineList& list, QStringView text)
{
    const auto s = [&](MarkdownInlineText payload) {
        fuzzCheck(payload.isOwned() || inside(payload.range(), int(text.size())), "payload text inside the text");
        return list.string(text, payload);
    };
    return std::visit(
        [&](const auto& k) -> QString {
            using K = std::decay_t<decltype(k)>;
            if constexpr (std::is_same_v<K, inline_kind::Escape>)
                return QString(QChar(k.character));
            else if constexpr (std::is_same_v<K, inline_kind::Code>)
                return s(k.language) + QString::number(k.hasLanguage);
            else if constexpr (std::is_same_v<K, inline_kind::Emphasis>)
                return QString::number(int(k.emphasis));
            else if constexpr (std::is_same_v<K, inline_kind::Link>)
                return s(k.destination) + u'\x1f' + s(k.title) + QString::number(k.hasDestination + 2 * k.hasTitle);
            else if constexpr (std::is_same_v<K, inline_kind::WikiLink>)
                return s(k.target) + u'\x1f' + s(k.display);
            else if constexpr (std::is_same_v<K, inline_kind::Image>)
                return s(k.source) + u'\x1f' + s(k.alt) + QString::number(k.isEmbed);
            else if constexpr (std::is_same_v<K, inline_kind::Latex>)
                return s(k.source) + QString::number(k.isBlock);
            else if constexpr (std::is_same_v<K, inline_kind::FootnoteReference>)
                return s(k.label);
            else if constexpr (std::is_same_v<K, inline_kind::Html>)
                return s(k.source);
            else if constexpr (std::is_same_v<K, inline_kind::ExtensionSpan>)
                return s(k.name);
            else
                return {};
        },
        kind);
}

// Checks one block's inlines and writes them into the dump.
void walkInlines(const MarkdownBlock& block, QStringView text, QString& dump)
{
    const int size = int(text.size());
    for (const MarkdownInline& root : block.inlines) {
        root.forEach([&](const MarkdownInline& node) {
            fuzzCheck(inside(node.range, size), "inline range inside the text");
            fuzzCheck(inside(node.contentRange, size), "inline content inside the text");
            for (const MarkdownSourceRange& marker : node.markerRanges)
                fuzzCheck(inside(marker, size), "inline marker inside the text");
            for (const MarkdownInline& child : node.children())
                fuzzCheck(node.range.location <= child.range.location && child.range.upperBound() <= node.range.upperBound(),
                      "child inside its parent");
            dump += QString::number(node.kind.index()) + u':' + payload(node.kind, block.inlines, text) + u' ';
            appendRange(dump, node.range);
            appendRange(dump, node.contentRange);
            for (const MarkdownSourceRange& marker : node.markerRanges)
                appendRange(dump, marker);
            dump += QString::number(node.children().size()) + u'\n';
        });
    }
}

// The top-level inlines, taken in order, must tile each range they came from.
void checkPartition(const MarkdownBlock& block, int size)
{
    std::vector<MarkdownSourceRange> sources;
    if (const auto* table = block.as<block_kind::Table>()) {
        for (const auto& row : table->table.rows)
            for (const MarkdownTableCell& cell : row)
                sources.push_back(cell.range);
    } else if (!block.is<block_kind::Fence>() && !block.is<block_kind::FrontMatter>()
               && !block.is<block_kind::LatexBlock>() && !block.is<block_kind::HtmlBlock>()) {
        sources.push_back(block.contentRange);
    }
    size_t next = 0;
    for (MarkdownSourceRange source : sources) {
        const MarkdownSourceRange clipped = source.intersection({0, size});
        if (clipped.length < 1)
            continue;
        int cursor = clipped.location;
        while (cursor < clipped.upperBound()) {
            fuzzCheck(next < block.inlines.size(), "inlines cover their range");
            fuzzCheck(block.inlines[next].range.location == cursor, "inlines leave no gap and do not overlap");
            fuzzCheck(block.inlines[next].range.length > 0, "top-level inlines are not empty");
            cursor = block.inlines[next++].range.upperBound();
        }
        fuzzCheck(cursor == clipped.upperBound(), "inlines end with their range");
    }
    fuzzCheck(next == block.inlines.size(), "no inline beyond the parsed ranges");
}

QString verify(const MarkdownDocument& document)
{
    const int size = int(document.text.size());
    QString dump;
    int previousEnd = 0;
    for (const MarkdownBlock& block : document.blocks) {
        fuzzCheck(inside(block.range, size), "block range inside the text");
        fuzzCheck(inside(block.contentRange, size), "block content inside the text");
        fuzzCheck(block.range.location >= previousEnd, "blocks in order without overlap");
        previousEnd = block.range.upperBound();
        for (const MarkdownSourceRange& marker : block.markerRanges)
            fuzzCheck(inside(marker, size), "block marker inside the text");
        fuzzCheck(block.children.empty(), "the tokenizer builds no children");
        checkPartition(block, size);
        dump += QString::fromLatin1(blockKindName(block.kind)) + u' ';
        appendRange(dump, block.range);
        appendRange(dump, block.contentRange);
        for (const MarkdownSourceRange& marker : block.markerRanges)
            appendRange(dump, marker);
        dump += QString::number(block.quoteDepth) + u' ' + QString::number(block.listDepth) + u'\n';
        walkInlines(block, document.text, dump);
    }
    return dump;
}

}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size < 2)
        return 0;
    const MarkdownParseOptions options = optionsFrom(data[0], data[1]);
    const char* bytes = reinterpret_cast<const char*>(data + 2);
    const qsizetype length = qsizetype(size - 2);
    const QString text = (data[1] & 2) ? QString(reinterpret_cast<const QChar*>(bytes), length / 2)
                                       : QString::fromUtf8(bytes, length);
    const MarkdownDocument first = MarkdownDocument::parse(text, options);
    const MarkdownDocument second = MarkdownDocument::parse(text, options);
    fuzzCheck(verify(first) == verify(second), "the same text parses the same way twice");
    fuzzCheck(first.linkDefinitions == second.linkDefinitions && first.footnoteDefinitions == second.footnoteDefinitions,
          "the same definitions twice");

    // The edit: some of the note's own text (openers and closers are what matter) put in at a
    // point picked from the input, over a few units.
    const qsizetype n = text.size();
    const qsizetype at = qsizetype((size_t(data[0]) * 7919u + size * 31u) % size_t(n + 1));
    const qsizetype removed = std::min<qsizetype>(data[1] % 9, n - at);
    const qsizetype from = n == 0 ? 0 : qsizetype((size_t(data[1]) * 104729u + size) % size_t(n));
    const QString edited = text.left(at) + text.mid(from, data[0] % 13) + text.mid(at + removed);
    MarkdownDocumentChange change;
    MarkdownDocument reparsed = MarkdownDocument::reparse(MarkdownDocument(first), edited, change);
    fuzzCheck(reparsed.hasSameTree(MarkdownDocument::parse(edited, options)), "a reparse equals a parse");
    fuzzCheck(verify(reparsed) == verify(MarkdownDocument::parse(edited, options)), "a reparse dumps as a parse");
    reparsed = MarkdownDocument::reparse(std::move(reparsed), text, change);
    fuzzCheck(reparsed.hasSameTree(first), "reparsing the edit undone gives the first parse");
    return 0;
}
