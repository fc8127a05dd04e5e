#include "MarkdownEngine/Parser/InlineParser.h"

namespace velmo::markdown {

namespace {
const MarkdownLinkDefinitions emptyDefinitions;
const QSet<QString> emptyLabels;
}

InlineParser::Context::Context(QStringView text, const MarkdownLinkDefinitions& linkDefinitions,
                               const QSet<QString>& footnoteLabels, const MarkdownParseOptions& options)
    : ns(text), linkDefinitions(&linkDefinitions), footnoteLabels(&footnoteLabels), options(options)
{
}

InlineParser::Context::Context(QStringView text, const MarkdownParseOptions& options)
    : Context(text, emptyDefinitions, emptyLabels, options)
{
}

std::vector<MarkdownInline> InlineParser::parse(MarkdownSourceRange range, const Context& context)
{
    const MarkdownSourceRange clipped = range.intersection({0, int(context.ns.size())});
    if (clipped.length < 1)
        return {};
    MarkdownInline text{inline_kind::Text{}, clipped, clipped, {}, {}};
    return {text};
}

}
