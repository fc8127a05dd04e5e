#pragma once

#include <QString>
#include <optional>

namespace velmo::markdown {

// Notification names through which toolbar, menus and the find bar reach the focused editor.
// An absent name turns that path off.
struct MarkdownEditorBus {
    std::optional<QString> applyBoldRequest, applyItalicRequest, applyHeadingRequest, applyHighlightRequest,
        applyStrikethroughRequest, applyInlineCodeRequest, applyBlockquoteRequest, applyUnorderedListRequest,
        applyOrderedListRequest, applyLinkRequest, applyCodeBlockRequest, applyHorizontalRuleRequest,
        applyImageRequest, selectionBoldDidChange, selectionItalicDidChange, selectionHighlightDidChange,
        findScrollToRange, findClearHighlights, findQuery, findResults, replaceCurrent, replaceAll;

    // Every name set to "app.velmo.bus." and its tail.
    [[nodiscard]] static MarkdownEditorBus defaultBus();

    friend bool operator==(const MarkdownEditorBus&, const MarkdownEditorBus&) = default;
};

}
