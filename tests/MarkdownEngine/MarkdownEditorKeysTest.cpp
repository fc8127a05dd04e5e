#include "EditingNotation.h"

#include "MarkdownEngine/Editing/MarkdownEditorKeys.h"

#include <gtest/gtest.h>

using namespace velmo::markdown;
using namespace velmo::markdown::test;
using Key = MarkdownEditorKeys::Key;

namespace {

EditCommand pressing(Key key, MarkdownEditorKeys::Options options = {})
{
    return [=](const QString& text, MarkdownSourceRange selection) {
        return MarkdownEditorKeys::edit(key, text, selection, options);
    };
}

}

TEST(MarkdownEditorKeys, returnContinuesListsAndQuotesAndGrowsTables)
{
    check(pressing(Key::newline), {
        {u"- a‸", u"- a\n- ‸"},
        {u"- ‸", u"‸"},
        {u"> a‸", u"> a\n> ‸"},
        {u"1. a‸\n2. b", u"1. a\n2. ‸\n3. b"},
        {u"plain‸", u"none"},
        {u"«- a»", u"none"},
        // A table row gains a row below it; an empty last row ends the table.
        // Tables are re-spaced with their cells centred in the source.
        {u"| a | b |\n|---|---|\n| 1‸ | 2 |", u"|  a  |  b  |\n| --- | --- |\n|  1  |  2  |\n| ‸    |     |"},
        {u"| a | b |\n|---|---|\n| 1 | 2 |\n|  ‸ |   |", u"| a | b |\n|---|---|\n| 1 | 2 |\n‸"},
        // Before the table's first character Return only moves the table down.
        {u"‸| a | b |\n|---|---|", u"none"},
    });
}

TEST(MarkdownEditorKeys, shiftReturnIsAPlainLineBreak)
{
    check(pressing(Key::lineBreak), {
        {u"- a‸", u"- a\n‸"},
        {u"> «x»", u"> \n‸"},
    });
}

TEST(MarkdownEditorKeys, tabNestsItemsAndWalksTableCells)
{
    check(pressing(Key::tab), {
        {u"- a‸", u"    - a‸"},
        {u"‸- a", u"‸    - a"},
        {u"> - a‸", u">     - a‸"},
        {u"- [ ] a‸", u"    - [ ] a‸"},
        {u"«- a\n- b»", u"    «- a\n    - b»"},
        // Outside items Tab types a tab as usual.
        {u"text‸", u"none"},
        {u"> quote‸", u"none"},
        {u"| a | b |\n|---|---|\n| 1‸ | 2 |", u"|  a  |  b  |\n| --- | --- |\n|  1  | ‸ 2  |"},
        // Past the last cell a new row opens.
        {u"| a | b |\n|---|---|\n| 1 | 2‸ |", u"|  a  |  b  |\n| --- | --- |\n|  1  |  2  |\n| ‸    |     |"},
    });
    check(pressing(Key::tab, {true, QStringLiteral("\t")}), {{u"- a‸", u"\t- a‸"}});
    check(pressing(Key::backtab), {
        {u"    - a‸", u"- a‸"},
        {u"  - a‸", u"- a‸"},
        {u"\t- a‸", u"- a‸"},
        {u">     - a‸", u"> - a‸"},
        {u"- a‸", u"none"},
        {u"| a | b |\n|---|---|\n| 1 | 2‸ |", u"|  a  |  b  |\n| --- | --- |\n| ‸ 1  |  2  |"},
        {u"| a‸ | b |\n|---|---|", u"| ‸ a  |  b  |\n| --- | --- |"},
    });
}

TEST(MarkdownEditorKeys, backspaceUnwindsMarkersStepByStep)
{
    check(pressing(Key::backspace), {
        {u"- [ ] ‸", u"- ‸"},
        {u"    - ‸", u"- ‸"},
        {u"- ‸", u"‸"},
        {u"x\n1. ‸y", u"x\n‸y"},
        {u"> > ‸", u"> ‸"},
        {u"> ‸", u"‸"},
        {u"> - ‸", u"> ‸"},
        // Anywhere else it deletes a character as usual.
        {u"- a‸", u"none"},
        {u"-‸", u"none"},
        {u"‸", u"none"},
        {u"«- »", u"none"},
        // In a table it steps over the grid instead of breaking it.
        {u"| a |‸ b |\n|---|---|", u"| a ‸| b |\n|---|---|"},
        {u"| a | b |\n‸|---|---|", u"| a | b |‸\n|---|---|"},
        {u"| a \\|‸ b |\n|---|---|", u"none"},
    });
}

TEST(MarkdownEditorKeys, typingOverASelectionWrapsIt)
{
    const auto typing = [](QChar character) -> EditCommand {
        return [=](const QString& text, MarkdownSourceRange selection) {
            return MarkdownEditorKeys::typed(character, text, selection, {});
        };
    };
    check(typing(u'*'), {{u"«a»", u"*«a»*"}, {u"a‸", u"none"}});
    check(typing(u'['), {{u"x«漢»", u"x[«漢»]"}});
    check(typing(u'x'), {{u"«a»", u"none"}});
}
