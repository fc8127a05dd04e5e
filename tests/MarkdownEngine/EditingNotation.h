#pragma once

#include "MarkdownEngine/Editing/MarkdownEditingCommands.h"

#include <QString>
#include <functional>
#include <initializer_list>
#include <gtest/gtest.h>
#include <optional>
#include <ostream>

inline void PrintTo(const QString& text, std::ostream* os)
{
    *os << '"' << text.toStdString() << '"';
}

// Text with its selection written in: "a«b»c" selects "b", "a‸c" is a caret. Markdown uses
// brackets and pipes itself, so the markers are characters no note in these tests holds.
namespace velmo::markdown::test {

struct Marked {
    QString text;
    MarkdownSourceRange selection;
};

inline Marked marked(const QString& notation)
{
    Marked result;
    result.text = notation;
    const qsizetype caret = notation.indexOf(u'‸');
    if (caret >= 0) {
        result.text.remove(caret, 1);
        result.selection = {int(caret), 0};
        return result;
    }
    const qsizetype open = notation.indexOf(u'«');
    const qsizetype close = notation.indexOf(u'»');
    if (open >= 0 && close > open) {
        result.text.remove(close, 1);
        result.text.remove(open, 1);
        result.selection = {int(open), int(close - open - 1)};
    }
    return result;
}

inline QString notation(const QString& text, MarkdownSourceRange selection)
{
    QString result = text;
    if (selection.length == 0)
        return result.insert(selection.location, u'‸');
    result.insert(selection.upperBound(), u'»');
    return result.insert(selection.location, u'«');
}

// The edit in notation, "none" when there is none. Also checks what every edit promises: the
// selection lies in the new text, and the mutation alone turns the old text into the new.
inline QString outcome(const Marked& before, const std::optional<MarkdownEditingCommands::Edit>& edit)
{
    if (!edit)
        return QStringLiteral("none");
    EXPECT_GE(edit->selection.location, 0);
    EXPECT_LE(edit->selection.upperBound(), edit->text.size());
    const MarkdownTextMutation& m = edit->mutation;
    EXPECT_TRUE(m.range.location >= 0 && m.range.upperBound() <= before.text.size());
    EXPECT_EQ(m.applied(before.text), edit->text);
    return notation(edit->text, edit->selection);
}

// A command under test: text and selection in, an edit or nothing out.
using EditCommand = std::function<std::optional<MarkdownEditingCommands::Edit>(const QString&, MarkdownSourceRange)>;

struct EditCase {
    const char16_t* before;
    const char16_t* after; // u"none" when the command gives nothing
};

inline void check(const EditCommand& command, std::initializer_list<EditCase> cases)
{
    for (const EditCase& c : cases) {
        const Marked before = marked(QString::fromUtf16(c.before));
        // As UTF-8 strings, so that a failure prints readable text.
        EXPECT_EQ(outcome(before, command(before.text, before.selection)).toStdString(),
                  QString::fromUtf16(c.after).toStdString())
            << "before: " << QString::fromUtf16(c.before).toStdString();
    }
}

}
