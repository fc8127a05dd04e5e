// Runs the inline parser alone on any text, range and options, and checks what the block
// pass cannot see: every level of the tree partitions its parent's content, markers and
// contents stay inside their node, and the range-free conversion holds the same shape.
#include "MarkdownEngine/Core/MarkdownInlineNode.h"
#include "MarkdownEngine/Parser/InlineParser.h"

#include <QString>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

#include "FuzzCheck.h"

using namespace velmo::markdown;

namespace {

bool within(MarkdownSourceRange inner, MarkdownSourceRange outer)
{
    return inner.length >= 0 && inner.location >= outer.location && inner.upperBound() <= outer.upperBound();
}

// Levels are checked with a worklist: fuzzed input nests deep.
void checkTree(std::span<const MarkdownInline> top, MarkdownSourceRange range)
{
    std::vector<std::pair<std::span<const MarkdownInline>, MarkdownSourceRange>> pending{{top, range}};
    while (!pending.empty()) {
        const auto [inlines, over] = pending.back();
        pending.pop_back();
        int cursor = over.location;
        for (const MarkdownInline& node : inlines) {
            fuzzCheck(node.range.location == cursor, "inlines tile their range");
            fuzzCheck(node.range.length > 0, "no empty inline");
            fuzzCheck(within(node.contentRange, node.range), "content inside the node");
            for (const MarkdownSourceRange marker : node.markerRanges)
                fuzzCheck(marker.length > 0 && within(marker, node.range), "markers inside the node");
            if (node.is<inline_kind::Text>())
                fuzzCheck(node.contentRange == node.range && node.markerRanges.isEmpty(), "text is bare");
            const bool parsesContent = node.is<inline_kind::Emphasis>() || node.is<inline_kind::Strikethrough>()
                || node.is<inline_kind::Highlight>() || (node.is<inline_kind::Link>() && node.markerRanges.size() > 2);
            if (parsesContent || node.hasChildren())
                pending.emplace_back(node.children(), node.contentRange);
            cursor = node.range.upperBound();
        }
        fuzzCheck(cursor == over.upperBound(), "inlines end with their range");
    }
}

}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size < 4)
        return 0;
    MarkdownParseOptions options;
    options.wikiLinks = !(data[0] & 1);
    options.latex = !(data[0] & 2);
    options.highlight = !(data[0] & 4);
    options.strikethrough = !(data[0] & 8);
    const QString text = (data[0] & 16) ? QString(reinterpret_cast<const QChar*>(data + 4), qsizetype(size - 4) / 2)
                                        : QString::fromUtf8(reinterpret_cast<const char*>(data + 4), qsizetype(size - 4));
    const int length = int(text.size());
    // A range that may start and end anywhere, even beyond the text.
    const int start = length ? data[1] % (length + 2) : 0;
    const int end = length ? std::max(start, length + 1 - data[2] % (length + 2)) : data[2] % 3;
    const MarkdownLinkDefinitions links{{QStringLiteral("a"), QStringLiteral("/a")}, {QStringLiteral("b c"), QString()}};
    const QSet<QString> labels;
    const InlineParser::Context context(text, links, labels, options);
    const MarkdownSourceRange range = MarkdownSourceRange::fromBounds(start, end);
    const MarkdownInlineList inlines = InlineParser::parse(range, context);
    const MarkdownSourceRange clipped = range.intersection({0, length});
    if (clipped.length < 1) {
        fuzzCheck(inlines.empty(), "nothing outside the text");
        return 0;
    }
    checkTree(inlines, clipped);
    const std::vector<MarkdownInlineNode> nodes = InlineParser::nodes(range, context);
    fuzzCheck(nodes == MarkdownInlineNode::from(inlines, text), "nodes convert the same parse");
    return 0;
}
