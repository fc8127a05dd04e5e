// The coordinator's editing side: commands from menus and the bus, and the structural keys,
// applied to the text view as single undoable changes. The text change then takes the
// ordinary path of a keystroke.
#include "MarkdownEngine/Layout/MarkdownEditorCoordinator.h"

#include "MarkdownEngine/Configuration/MarkdownEditorNotifications.h"
#include "MarkdownEngine/Layout/MarkdownTextView.h"

namespace velmo::markdown {

void MarkdownEditorCoordinator::listenToBus()
{
    connect(&MarkdownEditorNotifications::shared(), &MarkdownEditorNotifications::posted, this,
            [this](const QString& name, const QVariant& payload) {
                if (const auto command = config.services.bus.command(name, payload.isValid() ? payload.toInt() : 1))
                    perform(*command);
            });
}

bool MarkdownEditorCoordinator::perform(const MarkdownEditorCommand& command)
{
    if (isComposing())
        return false;
    const auto edit = MarkdownEditingCommands::edit(command, text(), selectedRange());
    if (!edit)
        return false;
    applyEdit(*edit);
    return true;
}

bool MarkdownEditorCoordinator::handleKey(MarkdownEditorKeys::Key key)
{
    using Key = MarkdownEditorKeys::Key;
    // A line break is always ours: the view's own would enter the text as U+2028.
    if (isComposing() || (key != Key::lineBreak && !config.lists.helpersEnabled))
        return false;
    const MarkdownEditorKeys::Options options{config.lists.autoClosePairsEnabled};
    const auto edit = MarkdownEditorKeys::edit(key, text(), selectedRange(), options);
    if (!edit)
        return false;
    applyEdit(*edit);
    return true;
}

bool MarkdownEditorCoordinator::handleTyped(QChar character)
{
    if (isComposing())
        return false;
    const MarkdownEditorKeys::Options options{config.lists.autoClosePairsEnabled};
    const auto edit = MarkdownEditorKeys::typed(character, text(), selectedRange(), options);
    if (!edit)
        return false;
    applyEdit(*edit);
    return true;
}

void MarkdownEditorCoordinator::applyEdit(const MarkdownEditingCommands::Edit& edit)
{
    const MarkdownTextMutation& change = edit.mutation;
    if (change.range.length == 0 && change.replacement.isEmpty()) {
        select(edit.selection); // the key only moved the caret
        return;
    }
    textView.applyEdit(change.range, change.replacement, edit.selection);
}

}
