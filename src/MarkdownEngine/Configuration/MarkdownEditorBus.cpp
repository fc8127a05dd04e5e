#include "MarkdownEngine/Configuration/MarkdownEditorBus.h"

namespace velmo::markdown {

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

}
