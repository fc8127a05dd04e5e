#include "MarkdownEngine/Layout/MarkdownEditorCoordinator.h"
#include "MarkdownEngine/Core/MarkdownOutline.h"
#include "MarkdownEngine/Layout/MarkdownHeadlessTextView.h"
#include "MarkdownEngine/Configuration/MarkdownEditorNotifications.h"

#include <QCoreApplication>
#include <QTextBlock>
#include <gtest/gtest.h>

using namespace velmo::markdown;

namespace {

struct Recorder : MarkdownEditorCoordinatorDelegate {
    int texts = 0;
    int selections = 0;
    int statistics = 0;
    void coordinatorDidChangeText(MarkdownEditorCoordinator&) override { ++texts; }
    void coordinatorDidChangeSelection(MarkdownEditorCoordinator&, const MarkdownSourceEditorState&) override
    {
        ++selections;
    }
    void coordinatorDidChangeStatistics(MarkdownEditorCoordinator&, const MarkdownTextStatistics&) override
    {
        ++statistics;
    }
};

// An editor without a window, opened on `text` with the caret at `caret`.
struct Editor {
    MarkdownHeadlessTextView view;
    MarkdownEditorCoordinator coordinator{view, MarkdownEditorConfiguration{}};
    Recorder recorder;

    Editor(const QString& text, int caret)
    {
        view.setCoordinator(&coordinator);
        coordinator.delegate = &recorder;
        coordinator.setText(text, caret);
    }
    void turn() { QCoreApplication::processEvents(); }
    // Whether the storage draws the character at `i` as a hidden marker.
    bool hiddenAt(int i)
    {
        const QTextBlock block = view.textStorage().document()->findBlock(i);
        const MarkdownBlockStyle* style = view.textStorage().blockStyle(block);
        if (!style)
            return false;
        for (const auto& run : style->runs) {
            if (run.range.contains(i - block.position()))
                return run.attributes.has(MarkdownTextAttributes::Hidden) && run.attributes.hidden;
        }
        return false;
    }
};

const QString note = QStringLiteral("# Title\n\nplain one\nplain two\n\nSome **bold** words.\n");

}

TEST(MarkdownEditorCoordinator, TwoChangesInOneTurnMakeOnePass)
{
    Editor e(note, 0);
    const int passes = e.coordinator.fullStylePassCount;
    e.view.setSelection({9, 0});
    e.view.insert("a");
    e.view.insert("b");
    EXPECT_EQ(e.coordinator.fullStylePassCount, passes);
    e.turn();
    EXPECT_EQ(e.coordinator.fullStylePassCount, passes + 1);
    EXPECT_EQ(e.recorder.texts, 2);
    EXPECT_EQ(e.coordinator.document.text, e.view.textStorage().text());
}

TEST(MarkdownEditorCoordinator, CaretMovesRestyleOnlyWhereMarkersHideOrShow)
{
    struct Case {
        const char* name;
        int from;
        int to;
        bool restyles;
    };
    const Case cases[] = {
        {"within a plain line", 10, 13, false},
        {"plain line to plain line", 10, 20, false},
        {"onto the heading", 20, 3, true},
        {"onto the bold words' line", 20, 34, true},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        Editor e(note, c.from);
        e.turn();
        const int selectionPasses = e.coordinator.selectionStylePassCount;
        const int fullPasses = e.coordinator.fullStylePassCount;
        e.view.setSelection({c.to, 0});
        e.turn();
        EXPECT_EQ(e.coordinator.fullStylePassCount, fullPasses);
        EXPECT_EQ(e.coordinator.selectionStylePassCount, selectionPasses + (c.restyles ? 1 : 0));
        ASSERT_FALSE(e.coordinator.lastActiveLines.empty());
        EXPECT_TRUE(e.coordinator.lastActiveLines.front().containsInclusive(c.to));
    }
}

TEST(MarkdownEditorCoordinator, MarkersShowOnTheCaretLineAndHideOffIt)
{
    Editor e(note, 20);
    EXPECT_TRUE(e.hiddenAt(0)) << "the heading's # off the caret line";
    e.view.setSelection({3, 0});
    e.turn();
    EXPECT_FALSE(e.hiddenAt(0));
    EXPECT_TRUE(e.hiddenAt(36)) << "** of another line";
    e.view.setSelection({20, 0});
    e.turn();
    EXPECT_TRUE(e.hiddenAt(0));
}

TEST(MarkdownEditorCoordinator, CompositionLeavesAttributesUntilItEnds)
{
    Editor e(note, 3);
    e.turn();
    const int passes = e.coordinator.fullStylePassCount;
    const auto runs = e.view.textStorage().runs();
    e.view.setMarkedText(QStringLiteral("か"));
    // An input method may write into the storage while it composes.
    e.view.setSelection({3, 0});
    e.view.insert(QStringLiteral("か"));
    e.turn();
    EXPECT_EQ(e.coordinator.fullStylePassCount, passes);
    EXPECT_EQ(e.recorder.texts, 0) << "no partial composition reaches the note";
    const auto during = e.view.textStorage().runs();
    ASSERT_EQ(during.size(), runs.size());
    for (std::size_t i = 0; i < runs.size(); ++i)
        EXPECT_EQ(during[i].attributes, runs[i].attributes);
    e.view.commitMarkedText(QString());
    e.turn();
    EXPECT_EQ(e.coordinator.fullStylePassCount, passes + 1);
    EXPECT_EQ(e.coordinator.document.text, e.view.textStorage().text());
}

TEST(MarkdownEditorCoordinator, DirtyRangeCoversChangedLinesUnlessOverHalf)
{
    QString big;
    for (int i = 0; i < 200; ++i)
        big += QStringLiteral("Line %1 with *some* text\n").arg(i);
    Editor e(big, 0);
    e.turn();
    EXPECT_EQ(e.coordinator.lastAppliedRange.length, big.size()) << "the first pass copies everything";

    const int middle = int(big.indexOf("Line 100"));
    e.view.setSelection({middle, 0});
    e.turn();
    e.view.insert("x");
    e.turn();
    const MarkdownSourceRange applied = e.coordinator.lastAppliedRange;
    EXPECT_LE(applied.location, middle);
    EXPECT_GE(applied.upperBound(), middle + 1);
    EXPECT_LT(applied.length, 200) << "only the lines around the caret";

    e.view.setSelection({0, int(big.size()) * 2 / 3});
    e.view.insert("replaced\n");
    e.turn();
    EXPECT_EQ(e.coordinator.lastAppliedRange.length, e.view.textStorage().length());
}

TEST(MarkdownEditorCoordinator, UndoArrivesAsATextChange)
{
    Editor e(note, 9);
    e.turn();
    e.view.insert("**x**");
    e.turn();
    const int revision = e.coordinator.textRevision;
    const int passes = e.coordinator.fullStylePassCount;
    e.view.undo();
    EXPECT_EQ(e.view.textStorage().text(), note);
    EXPECT_EQ(e.coordinator.textRevision, revision + 1);
    e.turn();
    EXPECT_EQ(e.coordinator.fullStylePassCount, passes + 1);
    EXPECT_EQ(e.coordinator.document.text, note);
}

TEST(MarkdownEditorCoordinator, SetTextClampsTheCaretAndStylesAtOnce)
{
    Editor e(note, 0);
    const int passes = e.coordinator.fullStylePassCount;
    e.coordinator.setText(QStringLiteral("short"), 99);
    EXPECT_EQ(e.coordinator.selectedRange(), (MarkdownSourceRange{5, 0}));
    EXPECT_EQ(e.coordinator.fullStylePassCount, passes + 1) << "without waiting for the event loop";
    EXPECT_TRUE(e.coordinator.isRestyled);
    EXPECT_EQ(e.view.textStorage().document()->isUndoAvailable(), false);
}

TEST(MarkdownEditorCoordinator, StatisticsAndOutlineFollowTheText)
{
    Editor e(note, 0);
    EXPECT_EQ(e.coordinator.statistics.words, 8);
    ASSERT_EQ(e.coordinator.outlineEntries.size(), 1u);
    e.view.setSelection({int(note.size()), 0});
    e.view.insert("## Second\n");
    e.turn();
    EXPECT_EQ(e.coordinator.outlineEntries.size(), 2u);
    const int measured = e.coordinator.statisticsMeasurementCount;
    e.view.setSelection({10, 0});
    e.view.setSelection({11, 0});
    EXPECT_EQ(e.coordinator.statisticsMeasurementCount, measured) << "cached per text revision";
    e.view.setSelection({9, 9});
    EXPECT_TRUE(e.coordinator.statistics.isSelection);
    EXPECT_EQ(e.coordinator.statistics.words, 2);
}

TEST(MarkdownEditorCoordinator, RevealsAndFindHighlights)
{
    Editor e(note, 0);
    EditorReveals reveals;
    reveals.request({EditorReveal::Heading{QStringLiteral("title")}});
    reveals.request({EditorReveal::Find{QStringLiteral("TWO"), 4}});
    EXPECT_EQ(reveals.generation(), 2);
    e.coordinator.performReveals(reveals);
    EXPECT_FALSE(reveals.hasPending());
    EXPECT_EQ(e.coordinator.selectedRange(), (MarkdownSourceRange{int(note.indexOf("two")), 3}));
    EXPECT_FALSE(e.coordinator.revealHeading(QStringLiteral("nowhere")));

    e.coordinator.findHighlights = {{9, 5}, {500, 3}};
    e.coordinator.applyFindHighlights();
    ASSERT_EQ(e.view.painter().highlights().size(), 1u) << "clipped to the text";
    EXPECT_EQ(e.view.textStorage().document()->isUndoAvailable(), false) << "never in the storage";
}

// The outline is moved over edits that cannot change it and read again otherwise: either way it
// is what reading the whole text gives.
TEST(MarkdownEditorCoordinator, OutlineMatchesTheTextAfterEachEdit)
{
    struct Edit {
        const char* find; // the edit goes right after the first match
        int remove;
        const char* insert;
    };
    const Edit edits[] = {
        {"plain", 0, "ish"},           // a plain line, before a heading
        {"plain", 0, "\n# Made"},      // a new line that is a heading
        {"# Made", 0, " longer"},      // a heading's own line
        {"intro ", 0, "#tag "},        // a "#" on a plain line
        {"#tag", 0, "s"},              // an edit on a line with a "#" past its start
        {"\n", 0, "  "},              // space before a heading's "#"
        {"intro", 0, "\n"},          // a line that then starts with the "#" of a tag
        {"\n", 0, "# "},               // a plain line becomes a heading
        {"code", 0, " more"},          // inside a fence
        {"```", 2, ""},                // the fence breaks open
        {"tail", 0, "\r"},             // the storage takes a CR as a line break
    };
    QString text = QStringLiteral("intro plain words\nplain two\n\n# One\n\n```\ncode # not\n```\n\n## Two\ntail\n");
    Editor e(text, 0);
    for (const Edit& edit : edits) {
        const int at = int(e.coordinator.text().indexOf(QString::fromUtf8(edit.find))) + int(qstrlen(edit.find));
        ASSERT_GE(at, int(qstrlen(edit.find))) << edit.find;
        e.view.textStorage().replace({at, edit.remove}, QString::fromUtf8(edit.insert));
        e.coordinator.restyleNow();
        EXPECT_EQ(e.coordinator.outlineEntries, MarkdownOutline::entries(e.coordinator.text())) << edit.find;
    }
}

TEST(MarkdownEditorCoordinator, ACommandIsOneUndoableStepWithItsSelections)
{
    using editor_command::Simple;
    struct Case {
        const char* name;
        MarkdownEditorCommand command;
        const char* selected; // the text selected before, its first occurrence
        const char* after;
    };
    const Case cases[] = {
        {"bold", Simple::bold, "words", "**words**"},
        {"heading", editor_command::Heading{2}, "one", "## plain one"},
        {"bullets over two lines", Simple::bulletList, "one\nplain", "- plain one\n- plain two"},
        {"move line down", Simple::moveLinesDown, "plain one", "plain two\nplain one"},
    };
    const QString text = QStringLiteral("# Title\n\nplain one\nplain two\n\nSome **bold** words.\n");
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const QString selected = QString::fromUtf8(c.selected);
        const MarkdownSourceRange before{int(text.indexOf(selected)), int(selected.size())};
        Editor e(text, 0);
        e.view.insert("x"); // typing before the command stays its own step
        e.view.undo();
        e.view.setSelection(before);
        ASSERT_TRUE(e.coordinator.perform(c.command));
        const QString changed = e.view.textStorage().text();
        const MarkdownSourceRange chosen = e.coordinator.selectedRange();
        EXPECT_TRUE(changed.contains(QLatin1String(c.after))) << changed.toStdString();
        e.turn();
        EXPECT_EQ(e.coordinator.document.text, changed);

        e.view.undo();
        EXPECT_EQ(e.view.textStorage().text(), text);
        EXPECT_EQ(e.coordinator.selectedRange(), before);
        e.view.redo();
        EXPECT_EQ(e.view.textStorage().text(), changed);
        EXPECT_EQ(e.coordinator.selectedRange(), chosen);
    }
}

TEST(MarkdownEditorCoordinator, UndoAfterAnyCommandRestoresTextAndSelection)
{
    const QString text = QStringLiteral("# T\n\n- [ ] one **b**\n2. two\n> q `c`\n\n| a | b |\n|---|---|\n| 1 | 2 |\n");
    const MarkdownSourceRange selections[] = {{0, 0}, {8, 7}, {int(text.size()) - 4, 0}, {0, int(text.size())}};
    for (int which = 0; which <= int(editor_command::Simple::moveLinesDown); ++which) {
        const auto command = static_cast<editor_command::Simple>(which);
        for (const MarkdownSourceRange selection : selections) {
            SCOPED_TRACE(editor_command::name(command).toStdString() + " at " + std::to_string(selection.location));
            Editor e(text, 0);
            e.view.setSelection(selection);
            // A command that only selects makes no undo step.
            if (!e.coordinator.perform(command) || e.view.textStorage().text() == text)
                continue;
            e.view.undo();
            EXPECT_EQ(e.view.textStorage().text(), text);
            EXPECT_EQ(e.coordinator.selectedRange(), selection);
        }
    }
}

TEST(MarkdownEditorCoordinator, TypingAfterACommandIsAStepOfItsOwn)
{
    Editor e(QStringLiteral("word"), 0);
    e.view.setSelection({0, 4});
    ASSERT_TRUE(e.coordinator.perform(editor_command::Simple::bold));
    e.view.setSelection({8, 0});
    e.view.insert("!");
    e.view.undo();
    EXPECT_EQ(e.view.textStorage().text(), QStringLiteral("**word**"));
    e.view.undo();
    EXPECT_EQ(e.view.textStorage().text(), QStringLiteral("word"));
    EXPECT_EQ(e.coordinator.selectedRange(), (MarkdownSourceRange{0, 4}));
}

TEST(MarkdownEditorCoordinator, KeysAndBusRequestsBecomeEdits)
{
    Editor e(QStringLiteral("- a"), 3);
    EXPECT_TRUE(e.coordinator.handleKey(MarkdownEditorKeys::Key::newline));
    EXPECT_EQ(e.view.textStorage().text(), QStringLiteral("- a\n- "));
    EXPECT_TRUE(e.coordinator.handleKey(MarkdownEditorKeys::Key::tab));
    EXPECT_EQ(e.view.textStorage().text(), QStringLiteral("- a\n    - "));
    EXPECT_TRUE(e.coordinator.handleKey(MarkdownEditorKeys::Key::backtab));
    EXPECT_TRUE(e.coordinator.handleKey(MarkdownEditorKeys::Key::backspace));
    EXPECT_EQ(e.view.textStorage().text(), QStringLiteral("- a\n"));
    EXPECT_FALSE(e.coordinator.handleKey(MarkdownEditorKeys::Key::backspace)) << "an ordinary delete";

    // The bus reaches the editor without the menu knowing it; an absent name turns a path off.
    e.coordinator.setText(QStringLiteral("word"), 0);
    e.view.setSelection({0, 4});
    const MarkdownEditorBus bus = e.coordinator.config.services.bus;
    MarkdownEditorNotifications::shared().post(*bus.applyBoldRequest);
    EXPECT_EQ(e.view.textStorage().text(), QStringLiteral("**word**"));
    MarkdownEditorNotifications::shared().post(*bus.applyHeadingRequest, 3);
    EXPECT_EQ(e.view.textStorage().text(), QStringLiteral("### **word**"));
    MarkdownEditorNotifications::shared().post(QStringLiteral("app.velmo.bus.Unknown"));
    EXPECT_EQ(e.view.textStorage().text(), QStringLiteral("### **word**"));

    // Lists' helpers switched off leave Return to the view.
    MarkdownEditorConfiguration plain;
    plain.lists.helpersEnabled = false;
    e.coordinator.update(plain);
    e.coordinator.setText(QStringLiteral("- a"), 3);
    EXPECT_FALSE(e.coordinator.handleKey(MarkdownEditorKeys::Key::newline));
}

TEST(MarkdownEditorBus, RequestsAndCommandsRoundTrip)
{
    using editor_command::Simple;
    const MarkdownEditorBus bus = MarkdownEditorBus::defaultBus();
    for (const MarkdownEditorCommand& command : std::initializer_list<MarkdownEditorCommand>{
             Simple::bold, Simple::italic, Simple::inlineCode, Simple::bulletList, Simple::link, editor_command::Heading{4}}) {
        const auto request = bus.request(command);
        ASSERT_TRUE(request) << editor_command::name(command).toStdString();
        EXPECT_EQ(bus.command(*request, 4), command);
    }
    EXPECT_FALSE(bus.request(Simple::moveLinesUp)) << "no request carries it: the menu calls the editor";
    MarkdownEditorBus off = bus;
    off.applyBoldRequest.reset();
    EXPECT_FALSE(off.request(Simple::bold));
    EXPECT_FALSE(off.command(*bus.applyBoldRequest));
}

// Every character of the storage has the attributes a full pass over the note gives it.
void expectStorageMatchesAFullPass(Editor& e, const char* what)
{
    MarkdownASTStyler::Request request;
    request.document = &e.coordinator.document;
    request.selection = e.coordinator.editorState;
    request.config = &e.coordinator.config;
    const MarkdownStyledText whole = MarkdownASTStyler::style(request).attributedString.resolved();
    const auto& expected = whole.runs();
    size_t next = 0;
    for (QTextBlock block = e.view.textStorage().document()->begin(); block.isValid(); block = block.next()) {
        const MarkdownBlockStyle* style = e.view.textStorage().blockStyle(block);
        ASSERT_TRUE(style) << what;
        for (const auto& run : style->runs) {
            for (int i = block.position() + run.range.location; i < block.position() + run.range.upperBound(); ++i) {
                while (next < expected.size() && !expected[next].range.contains(i))
                    ++next;
                ASSERT_LT(next, expected.size()) << what << " at " << i;
                ASSERT_TRUE(expected[next].attributes == run.attributes) << what << " at " << i;
            }
        }
    }
}

QString longNote(int sections)
{
    // Long tables, so that pieces of a large write end inside some: their columns need every row.
    QString text;
    for (int section = 0; section < sections; ++section) {
        text += QStringLiteral("## Section %1\n\n- item with **bold**\n- [ ] task\n\n| a | bb |\n|---|:-:|\n").arg(section);
        for (int row = 0; row < 400; ++row)
            text += QStringLiteral("| %1 | x%2 |\n").arg(row).arg(QString(row % 7, u'w'));
        text += QStringLiteral("\nSome *prose* after the table.\n\n```js\nlet x = 1\n```\n\n");
    }
    return text;
}

TEST(MarkdownEditorCoordinator, ALargeNoteWrittenInPiecesMatchesAFullPass)
{
    const QString text = longNote(36);
    ASSERT_GT(text.size(), 3 * 64 * 1024);
    Editor e(text, 0);
    expectStorageMatchesAFullPass(e, "open");
}

TEST(MarkdownEditorCoordinator, EditsRestyleOnlyTheirBlocksAndMatchAFullPass)
{
    Editor e(longNote(4), 0);
    const size_t blocks = e.coordinator.document.blocks.size();
    // Caret moves between the edits leave the selection overlay over the store.
    struct Edit { const char* what; QString find; int offset; QString insert; };
    const Edit edits[] = {
        {"a letter in prose", QStringLiteral("Some *prose*"), 5, QStringLiteral("x")},
        {"a table cell", QStringLiteral("| 17 |"), 3, QStringLiteral("123")},
        {"a list item split", QStringLiteral("- item"), 6, QStringLiteral("\n- next ")},
        {"a heading made", QStringLiteral("Some *prose*"), 0, QStringLiteral("# ")},
        {"a fence opened", QStringLiteral("Some *prose*"), 0, QStringLiteral("```\n")},
    };
    for (const Edit& edit : edits) {
        const int at = int(e.coordinator.text().indexOf(edit.find, e.coordinator.text().size() / 3)) + edit.offset;
        e.view.setSelection({std::max(0, at - 40), 0});
        e.coordinator.restyleNow();
        e.view.setSelection({at, 0});
        e.coordinator.restyleNow();
        expectStorageMatchesAFullPass(e, "caret moved");
        e.view.insert(edit.insert);
        e.coordinator.restyleNow();
        expectStorageMatchesAFullPass(e, edit.what);
        EXPECT_LT(e.coordinator.restyledBlockCount, blocks / 2) << edit.what;
    }
}
