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
    return !isComposing() && applyEdit(MarkdownEditingCommands::edit(command, text(), selectedRange()));
}

bool MarkdownEditorCoordinator::handleKey(MarkdownEditorKeys::Key key)
{
    // A line break is always ours: the view's own would enter the text as U+2028.
    if (isComposing() || (key != MarkdownEditorKeys::Key::lineBreak && !config.lists.helpersEnabled))
        return false;
    return applyEdit(MarkdownEditorKeys::edit(key, text(), selectedRange(), keyOptions()));
}

bool MarkdownEditorCoordinator::handleTyped(QChar character)
{
    return !isComposing() && applyEdit(MarkdownEditorKeys::typed(character, text(), selectedRange(), keyOptions()));
}

MarkdownEditorKeys::Options MarkdownEditorCoordinator::keyOptions() const
{
    return {config.lists.autoClosePairsEnabled};
}

bool MarkdownEditorCoordinator::applyEdit(const std::optional<MarkdownEditingCommands::Edit>& edit)
{
    if (!edit)
        return false;
    const MarkdownTextMutation& change = edit->mutation;
    if (change.range.length == 0 && change.replacement.isEmpty())
        select(edit->selection); // the key only moved the caret
    else
        textView.applyEdit(change.range, change.replacement, edit->selection);
    return true;
}

}
