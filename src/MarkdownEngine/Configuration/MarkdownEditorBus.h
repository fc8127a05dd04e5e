#pragma once

#include "MarkdownEngine/Editing/MarkdownEditorCommand.h"

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

    // The request that carries `command`, when the bus has one for it and that path is on.
    // A heading's level travels beside the name.
    [[nodiscard]] std::optional<QString> request(const MarkdownEditorCommand& command) const;
    // The command a request asks of the editor; nothing for any other name.
    [[nodiscard]] std::optional<MarkdownEditorCommand> command(const QString& name, int level = 1) const;

    friend bool operator==(const MarkdownEditorBus&, const MarkdownEditorBus&) = default;
};

}
