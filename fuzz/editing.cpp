// Every editing command over arbitrary text and selection: none may crash, every selection must
// lie in its new text, and the new text must be the old one with the edit's one mutation made.
//
// Input: byte 0 picks the operation (a command or a structural key), byte 1 its argument, bytes 2-5 the selection (two 16-bit
// values, either may point past the text), byte 6 the text's encoding (even: UTF-8, odd: raw
// UTF-16, which reaches lone surrogates), then the text.

#include "MarkdownEngine/Editing/MarkdownEditingCommands.h"
#include "MarkdownEngine/Editing/MarkdownEditorKeys.h"
#include "MarkdownEngine/Editing/MarkdownTableCommand.h"

#include <QString>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

#include "FuzzCheck.h"

using namespace velmo::markdown;
using Commands = MarkdownEditingCommands;

namespace {

void checkEdit(const QString& text, const std::optional<Commands::Edit>& edit)
{
    if (!edit)
        return;
    fuzzCheck(edit->selection.location >= 0 && edit->selection.length >= 0, "selection negative");
    fuzzCheck(edit->selection.upperBound() <= edit->text.size(), "selection past the new text");
    const MarkdownTextMutation& m = edit->mutation;
    fuzzCheck(m.range.location >= 0 && m.range.length >= 0 && m.range.upperBound() <= text.size(),
            "mutation outside the old text");
    fuzzCheck(m.applied(text) == edit->text, "text differs outside the mutation");
}

MarkdownEditorCommand commandFor(int which, int argument)
{
    using namespace editor_command;
    const int simpleCount = int(Simple::moveLinesDown) + 1;
    if (which < simpleCount)
        return static_cast<Simple>(which);
    switch (which - simpleCount) {
    case 0: return Heading{argument % 9 - 1};
    case 1: return TextColor{argument % 2 ? std::optional<QString>(QStringLiteral("red")) : std::nullopt};
    case 2: return Table{argument % 5, argument / 5 % 5};
    case 3: {
        const auto all = MarkdownTableCommand::all();
        return TableCommand{all[std::size_t(argument) % all.size()]};
    }
    case 4: return FrontMatter{argument % 2 ? QStringLiteral("title: t\ndate: d") : QStringLiteral("tags: x")};
    case 5: return Callout{MarkdownCallout(static_cast<MarkdownCallout::Kind>(argument % 5))};
    default: return InsertText{QString(QChar(argument))};
    }
}

}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size < 7)
        return 0;
    const int which = data[0];
    const int argument = data[1];
    const MarkdownSourceRange selection{data[2] | (data[3] << 8), data[4] | (data[5] << 8)};
    const bool utf16 = data[6] & 1;
    const char* bytes = reinterpret_cast<const char*>(data + 7);
    const qsizetype count = qsizetype(size - 7);
    const QString text = utf16 ? QString(reinterpret_cast<const QChar*>(bytes), count / 2)
                               : QString::fromUtf8(bytes, count);

    const int simpleCount = int(editor_command::Simple::moveLinesDown) + 1;
    const int commandCount = simpleCount + 7;
    static const char pairs[] = "*_`~=$([\"x";
    constexpr int operations = 6;
    switch (which % (commandCount + operations)) {
    case 0: checkEdit(text, Commands::newline(text, selection)); break;
    case 1: checkEdit(text, Commands::pair(text, QChar(pairs[argument % (sizeof(pairs) - 1)]), selection)); break;
    case 2: (void)Commands::tableTSV(text, selection); break;
    case 3: (void)Commands::tableClipboard(text, selection, argument % 2 ? MarkdownTableCopyFormat::csv : MarkdownTableCopyFormat::html); break;
    case 4:
        (void)Commands::contentIndentation(text, selection.location);
        checkEdit(text, Commands::toggleTaskCheckbox(text, selection.location - 100));
        break;
    case 5: {
        // The keys the editor handles itself: Return, Shift+Return, Tab, Shift+Tab, Backspace.
        const auto key = static_cast<MarkdownEditorKeys::Key>(argument % 5);
        const MarkdownEditorKeys::Options options{argument % 2 == 0,
                                                  argument % 3 ? QStringLiteral("    ") : QStringLiteral("\t")};
        checkEdit(text, MarkdownEditorKeys::edit(key, text, selection, options));
        break;
    }
    default:
        checkEdit(text, Commands::edit(commandFor(which % (commandCount + operations) - operations, argument), text, selection,
                                       argument % 3 ? QString() : QStringLiteral("ph"),
                                       argument % 2 ? QStringLiteral("\t") : QStringLiteral("  ")));
        break;
    }
    return 0;
}
