#include "MarkdownEngine/Configuration/MarkdownEditorBus.h"

#include <array>
#include <utility>

namespace velmo::markdown {

namespace {

using editor_command::Simple;

// The requests that carry a command without payload.
constexpr std::array<std::pair<std::optional<QString> MarkdownEditorBus::*, Simple>, 12> simpleRequests{{
    {&MarkdownEditorBus::applyBoldRequest, Simple::bold},
    {&MarkdownEditorBus::applyItalicRequest, Simple::italic},
    {&MarkdownEditorBus::applyHighlightRequest, Simple::highlight},
    {&MarkdownEditorBus::applyStrikethroughRequest, Simple::strikethrough},
    {&MarkdownEditorBus::applyInlineCodeRequest, Simple::inlineCode},
    {&MarkdownEditorBus::applyBlockquoteRequest, Simple::blockquote},
    {&MarkdownEditorBus::applyUnorderedListRequest, Simple::bulletList},
    {&MarkdownEditorBus::applyOrderedListRequest, Simple::orderedList},
    {&MarkdownEditorBus::applyLinkRequest, Simple::link},
    {&MarkdownEditorBus::applyCodeBlockRequest, Simple::codeBlock},
    {&MarkdownEditorBus::applyHorizontalRuleRequest, Simple::thematicBreak},
    {&MarkdownEditorBus::applyImageRequest, Simple::image},
}};

}

MarkdownEditorBus MarkdownEditorBus::defaultBus()
{
    auto name = [](const char* tail) { return QStringLiteral("app.velmo.bus.") + QLatin1String(tail); };
    MarkdownEditorBus bus;
    bus.applyBoldRequest = name("ApplyBold");
    bus.applyItalicRequest = name("ApplyItalic");
    bus.applyHeadingRequest = name("ApplyHeading");
    bus.applyHighlightRequest = name("ApplyHighlight");
    bus.applyStrikethroughRequest = name("ApplyStrikethrough");
    bus.applyInlineCodeRequest = name("ApplyInlineCode");
    bus.applyBlockquoteRequest = name("ApplyBlockquote");
    bus.applyUnorderedListRequest = name("ApplyUnorderedList");
    bus.applyOrderedListRequest = name("ApplyOrderedList");
    bus.applyLinkRequest = name("ApplyLink");
    bus.applyCodeBlockRequest = name("ApplyCodeBlock");
    bus.applyHorizontalRuleRequest = name("ApplyHorizontalRule");
    bus.applyImageRequest = name("ApplyImage");
    bus.selectionBoldDidChange = name("SelectionBoldDidChange");
    bus.selectionItalicDidChange = name("SelectionItalicDidChange");
    bus.selectionHighlightDidChange = name("SelectionHighlightDidChange");
    bus.findScrollToRange = name("FindScrollToRange");
    bus.findClearHighlights = name("FindClearHighlights");
    bus.findQuery = name("FindQuery");
    bus.findResults = name("FindResults");
    bus.replaceCurrent = name("ReplaceCurrent");
    bus.replaceAll = name("ReplaceAll");
    return bus;
}

std::optional<QString> MarkdownEditorBus::request(const MarkdownEditorCommand& command) const
{
    if (std::holds_alternative<editor_command::Heading>(command))
        return applyHeadingRequest;
    if (const auto* simple = std::get_if<Simple>(&command)) {
        for (const auto& [field, carried] : simpleRequests) {
            if (carried == *simple)
                return this->*field;
        }
    }
    return std::nullopt;
}

std::optional<MarkdownEditorCommand> MarkdownEditorBus::command(const QString& name, int level) const
{
    if (applyHeadingRequest && name == *applyHeadingRequest)
        return editor_command::Heading{level};
    for (const auto& [field, carried] : simpleRequests) {
        if (const std::optional<QString>& request = this->*field; request && name == *request)
            return carried;
    }
    return std::nullopt;
}

}
