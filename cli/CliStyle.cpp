#include "CliCommand.h"

#include "MarkdownEngine/Configuration/HighlighterSyntaxHighlighter.h"
#include "MarkdownEngine/Configuration/MarkdownEditorConfiguration.h"
#include "MarkdownEngine/Core/TextCharacters.h"
#include "MarkdownEngine/Directives/DirectiveRegistry.h"
#include "MarkdownEngine/Styling/MarkdownASTStyler.h"
#include "MarkdownEngine/Styling/MarkdownFragmentDump.h"

#include <QJsonArray>
#include <QJsonObject>

namespace velmo::cli {

using namespace velmo::markdown;

namespace {

// The lines a selection covers, as the coordinator reports them.
MarkdownSourceRange lineRange(const QString& text, MarkdownSourceRange r)
{
    const auto first = chars::lineAt(text, std::clamp<qsizetype>(r.location, 0, text.size()));
    const qsizetype lastAt = std::clamp<qsizetype>(r.location + std::max(r.length - 1, 0), 0, text.size());
    const auto last = chars::lineAt(text, lastAt);
    return MarkdownSourceRange::fromBounds(int(first.start), int(std::max(first.end, last.end)));
}

}

int runStyle(const QStringList& arguments)
{
    std::optional<QString> path;
    std::optional<MarkdownSourceRange> selection;
    bool raw = false, reveal = true, runs = false, highlight = false;
    for (qsizetype i = 0; i < arguments.size(); ++i) {
        const QString& argument = arguments[i];
        if (argument == QLatin1String("--raw")) {
            raw = true;
        } else if (argument == QLatin1String("--highlight")) {
            highlight = true;
        } else if (argument == QLatin1String("--runs")) {
            runs = true;
        } else if (argument == QLatin1String("--no-reveal")) {
            reveal = false;
        } else if (argument == QLatin1String("--caret") || argument == QLatin1String("--select")) {
            if (selection || i + 1 >= arguments.size())
                return usageError(QStringLiteral("style takes one --caret N or --select LOC,LEN"));
            const QStringList parts = arguments[++i].split(u',');
            bool ok1 = false, ok2 = true;
            const int location = parts.value(0).toInt(&ok1);
            const int length = argument == QLatin1String("--select") ? parts.value(1).toInt(&ok2) : 0;
            const bool shapeOk = argument == QLatin1String("--select") ? parts.size() == 2 : parts.size() == 1;
            if (!ok1 || !ok2 || !shapeOk || location < 0 || length < 0)
                return usageError(argument + QStringLiteral(" needs ") + (length ? "LOC,LEN" : "a location"));
            selection = MarkdownSourceRange{location, length};
        } else if (!path && (argument == QLatin1String("-") || !argument.startsWith(u'-'))) {
            path = argument;
        } else {
            return usageError(QStringLiteral("style: unknown argument ") + argument);
        }
    }
    if (!path)
        return usageError(QStringLiteral("style needs FILE or -"));
    const std::optional<QString> text = readInput(*path);
    if (!text)
        return 1;

    MarkdownEditorConfiguration config;
    config.rawSourceMode = raw;
    config.markers.revealsMarkersOnActiveLine = reveal;
    MarkdownParseOptions options;
    options.directiveNames = DirectiveRegistry::builtIn().names();
    const MarkdownDocument document = MarkdownDocument::parse(*text, options);
    MarkdownEditorAttachmentFactory attachments(config.services);

    MarkdownASTStyler::Request request;
    request.document = &document;
    request.config = &config;
    request.attachments = &attachments;
    // Fences coloured as the editor colours them when the setting is on.
    QHash<QString, MarkdownStyledText> coloured;
    if (highlight) {
        const HighlighterSyntaxHighlighter highlighter;
        for (const MarkdownBlock& block : document.blocks) {
            const auto* fence = block.as<block_kind::Fence>();
            if (!fence || block.contentRange.length <= 0)
                continue;
            if (auto code = highlighter.highlightedCode(text->mid(block.contentRange.location, block.contentRange.length),
                                                        fence->language))
                coloured.insert(MarkdownASTStyler::codeKey(block), std::move(*code));
        }
        request.highlightedCode = &coloured;
    }
    if (selection) {
        const MarkdownSourceRange clamped = selection->intersection({0, int(text->size())});
        request.selection.selectedRanges = {MarkdownSourceRange{std::min<int>(selection->location, int(text->size())),
                                                                clamped.length}};
        request.selection.selectedLineRanges = {lineRange(*text, request.selection.selectedRanges.front())};
    }
    const MarkdownASTStyler::Result result = MarkdownASTStyler::style(request);

    QJsonArray activeLines;
    for (const MarkdownSourceRange& line : result.activeLines)
        activeLines.append(QJsonArray{line.location, line.length});
    QJsonArray fragments;
    for (const MarkdownEditorFragment& fragment : result.fragments.fragments())
        fragments.append(MarkdownFragmentDump::json(fragment));
    QJsonObject out{{"activeLines", activeLines}, {"fragments", fragments}};
    if (runs) {
        QJsonArray styled;
        const MarkdownStyledText resolved = result.attributedString.resolved();
        for (const MarkdownStyledText::Run& run : resolved.runs())
            styled.append(MarkdownFragmentDump::json(run));
        out.insert(QStringLiteral("runs"), styled);
    }
    printJson(QJsonDocument(out));
    return 0;
}

}
