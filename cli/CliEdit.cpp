#include "CliCommand.h"

#include "MarkdownEngine/Editing/MarkdownEditingCommands.h"
#include "MarkdownEngine/Editing/MarkdownEditorKeys.h"

#include <QJsonArray>
#include <QJsonObject>

namespace velmo::cli {

using markdown::MarkdownEditingCommands;
using markdown::MarkdownEditorKeys;
using markdown::MarkdownSourceRange;

namespace {

std::optional<MarkdownSourceRange> parseSelection(const QString& value)
{
    const QStringList parts = value.split(u',');
    if (parts.size() != 2)
        return std::nullopt;
    bool locationOk = false;
    bool lengthOk = false;
    const int location = parts[0].toInt(&locationOk);
    const int length = parts[1].toInt(&lengthOk);
    if (!locationOk || !lengthOk || location < 0 || length < 0)
        return std::nullopt;
    return MarkdownSourceRange{location, length};
}

std::optional<MarkdownEditorKeys::Key> keyNamed(const QString& name)
{
    using Key = MarkdownEditorKeys::Key;
    const std::pair<const char*, Key> keys[] = {{"newline", Key::newline}, {"lineBreak", Key::lineBreak},
                                                {"tab", Key::tab}, {"backtab", Key::backtab},
                                                {"backspace", Key::backspace}};
    for (const auto& [candidate, key] : keys) {
        if (name == QLatin1String(candidate))
            return key;
    }
    return std::nullopt;
}

}

// edit COMMAND [ARGUMENT] --select LOC,LEN FILE|-
// COMMAND is an editor command's case name, or one of the key operations "newline" (Return as
// the editor handles it), "pair" (ARGUMENT: the typed character), or "key" with the key's name:
// "newline", "lineBreak", "tab", "backtab", "backspace".
int runEdit(const QStringList& arguments)
{
    const QString usage = QStringLiteral("usage: velmo-cli edit COMMAND [ARGUMENT] --select LOC,LEN FILE|-");
    MarkdownSourceRange selection{0, 0};
    QStringList positional;
    for (qsizetype i = 0; i < arguments.size(); ++i) {
        if (arguments[i] == QLatin1String("--select")) {
            if (i + 1 >= arguments.size())
                return usageError(usage);
            const auto parsed = parseSelection(arguments[++i]);
            if (!parsed)
                return usageError(QStringLiteral("--select wants LOC,LEN in UTF-16 units"));
            selection = *parsed;
        } else {
            positional << arguments[i];
        }
    }
    if (positional.size() != 2 && positional.size() != 3)
        return usageError(usage);
    const QString name = positional.first();
    const QString argument = positional.size() == 3 ? positional[1] : QString();
    const std::optional<QString> text = readInput(positional.last());
    if (!text)
        return 1;

    std::optional<MarkdownEditingCommands::Edit> edit;
    if (name == QLatin1String("newline") || name == QLatin1String("key")) {
        const auto pressed = keyNamed(name == QLatin1String("key") ? argument : name);
        if (!pressed)
            return usageError(QStringLiteral("key wants newline, lineBreak, tab, backtab or backspace"));
        edit = MarkdownEditorKeys::edit(*pressed, *text, selection, {});
    } else if (name == QLatin1String("pair")) {
        if (argument.size() != 1)
            return usageError(QStringLiteral("pair wants the typed character"));
        edit = MarkdownEditingCommands::pair(*text, argument[0], selection);
    } else {
        const auto command = markdown::editor_command::fromName(name, argument);
        if (!command)
            return usageError(QStringLiteral("unknown command or argument: %1 %2").arg(name, argument));
        edit = MarkdownEditingCommands::edit(*command, *text, selection);
    }

    QJsonObject result;
    if (!edit) {
        result.insert(QStringLiteral("applies"), false);
    } else {
        result.insert(QStringLiteral("text"), edit->text);
        result.insert(QStringLiteral("selection"), QJsonArray{edit->selection.location, edit->selection.length});
    }
    printJson(QJsonDocument(result));
    return 0;
}

}
