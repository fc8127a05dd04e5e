#include "Velmo/AppDelegate.h"
#include "Velmo/AppState.h"
#include "Velmo/TerminationSignals.h"
#include "Velmo/UIDriver.h"
#include "Velmo/UIDriverEnvironment.h"
#include "Velmo/UIDriverScript.h"
#include "Velmo/UIDump.h"
#include "support/TestSupport.h"

#include <QDir>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <csignal>

using namespace velmo::app;
using velmo::test::readBytes;
using velmo::test::writeBytes;

TEST(UIDriverScript, splitsCommandsAndArguments)
{
    struct Case {
        QString script;
        std::vector<std::array<QString, 3>> commands; // name, argument, third
    };
    const Case cases[] = {
        {"type:a:b", {{"type", "a", "b"}}},
        {"resize:800:600|Notes|screen:x", {{"resize", "800", "600|Notes|screen:x"}}},
        {"wait", {{"wait", "", ""}}},
        {"wait::2", {{"wait", "2", ""}}},
        {"  dump ;\n; ;text\t", {{"dump", "", ""}, {"text", "", ""}}},
        {" ; ;; ", {}},
        {"", {}},
    };
    for (const Case& c : cases) {
        const auto parsed = UIDriverScript::parse(c.script);
        ASSERT_EQ(parsed.size(), c.commands.size()) << c.script.toStdString();
        for (std::size_t i = 0; i < parsed.size(); ++i) {
            EXPECT_EQ(parsed[i].name, c.commands[i][0]) << c.script.toStdString();
            EXPECT_EQ(parsed[i].argument, c.commands[i][1]) << c.script.toStdString();
            EXPECT_EQ(parsed[i].third, c.commands[i][2]) << c.script.toStdString();
        }
    }
    EXPECT_EQ(UIDriverCommand::unescaped("a\\nb\\tc\\x\\"), "a\nb\tc\\x\\");
}

TEST(UIDriverEnvironment, readsItsVariablesWithTheirDefaults)
{
    QProcessEnvironment env;
    UIDriverEnvironment read = UIDriverEnvironment::from(env);
    EXPECT_FALSE(read.isEnabled());
    EXPECT_EQ(read.dumpDelay, 2.0);
    EXPECT_EQ(read.stepDelay, 0.7);
    EXPECT_TRUE(read.quitsAtEnd);
    EXPECT_EQ(read.frameMs, 8.0);

    env.insert("VELMO_UI_DUMP", "/tmp/d");
    env.insert("VELMO_UI_SCRIPT", ";");
    env.insert("VELMO_UI_DUMP_DELAY", "soon");
    env.insert("VELMO_UI_STEP_DELAY", " 0.25 ");
    env.insert("VELMO_UI_DUMP_QUIT", "0");
    env.insert("VELMO_UI_DUMP_LIGHT", "true"); // only "1" counts
    env.insert("VELMO_UI_DUMP_ATTRS", "");     // present is enough
    env.insert("VELMO_UI_FRAME_MS", "0.1");
    read = UIDriverEnvironment::from(env);
    EXPECT_TRUE(read.isEnabled());
    EXPECT_TRUE(read.isScripted());
    EXPECT_EQ(read.dumpDelay, 2.0);
    EXPECT_EQ(read.stepDelay, 0.25);
    EXPECT_FALSE(read.quitsAtEnd);
    EXPECT_FALSE(read.light);
    EXPECT_TRUE(read.attributes);
    EXPECT_FALSE(read.lines);
    EXPECT_EQ(read.frameMs, 0.5);
}

namespace {

// A driver over a temporary folder, with no window: the headless answers.
class UIDriverTest : public ::testing::Test {
protected:
    UIDriverTest()
        : state(std::make_unique<velmo::editor::EditorSettings>(), false)
        , driver(state, nullptr, UIDriverEnvironment{}, [this] { ++terminations; })
    {
        writeBytes(dir.filePath("Alpha.md"), "# Alpha\n");
        writeBytes(dir.filePath("Beta.md"), "# Beta\n");
        state.openWorkspace(QUrl::fromLocalFile(dir.path()));
    }

    QString perform(const QString& text) { return driver.perform(UIDriverScript::command(text)); }

    QTemporaryDir dir;
    AppState state;
    int terminations = 0;
    UIDriver driver;
};

}

TEST_F(UIDriverTest, commandsAnswerWithTheirNotes)
{
    const std::pair<QString, QString> cases[] = {
        {"frobnicate:x", "unknown command frobnicate"},
        {"text", "no active document"},
        {"type:abc", "no editor"},
        {"mark:x", "no editor"},
        {"restyle", "no editor"},
        {"shot:/tmp/x.png", "no window to capture"},
        {"menu:File>Save", "no main menu"},
        {"validate", "no main menu"},
        {"focus", "keyWindow=none"},
        {"resize:800", "resize needs width:height (minimum 760:520), optionally |title|screen"},
        {"set:nothing", "set needs key=value"},
        {"set:colour=red", "unknown setting colour"},
        {"set:dailyNotesFolder=", "dailyNotesFolder (cleared)"},
        {"set:lineWidth=huge", "no line width huge"},
        {"sidebar:tags", "sidebar tags"},
        {"sidebar:list", "no sidebar mode list"},
        {"tag:a\\nb", "tag a\nb"},
        {"settings", "settings visible true"},
        {"settings:off", "settings visible false"},
        {"tab:markdown", "tab markdown"},
        {"find:on:alp", "find visible true query alp count "},
        {"search:off", "search visible false"},
        {"filter: ALP", "filter  ALP files=1"},
        {"openFolder:/no/such/folder", "no folder /no/such/folder"},
        {"close", "no active document"},
        {"duplicate", "no active document"},
        {"save", "could not save"},
        {"move:nothing", "move needs source|folder"},
        {"activate:gamma", "could not open gamma — workspace has: Alpha, Beta"},
        {"activate:BETA.md", "opened and activated BETA.md"},
        {"text", "text[\n# Beta\n\ntext]"},
        {"duplicate", "duplicated active"},
        {"rename:Second", "renamed to Second"},
        {"new", "new note"},
        {"newfolder:Archive", "new folder"},
        {"folderselect:Archive", "selected folder Archive"},
        {"folderselect:Elsewhere", "no workspace folder"},
        {"closeall", "closed all"},
        {"wait:2", "wait 2"},
    };
    for (const auto& [command, note] : cases)
        EXPECT_EQ(perform(command), note) << command.toStdString();
    EXPECT_EQ(driver.transcript().size(), qsizetype(std::size(cases)));
    EXPECT_EQ(driver.transcript().first(), "frobnicate:x — unknown command frobnicate");
    EXPECT_EQ(QDir(dir.path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot),
              (QStringList{"Alpha.md", "Archive", "Beta.md", "Second.md", "Untitled.md"}));
    EXPECT_EQ(readBytes(dir.filePath("Second.md")), QByteArray("# Second\n"));
    EXPECT_EQ(readBytes(dir.filePath("Untitled.md")), QByteArray("# Untitled\n\n"));
    EXPECT_TRUE(state.isFindVisible());
    EXPECT_EQ(state.sidebarMode(), SidebarMode::tags);
}

TEST_F(UIDriverTest, aLightBlockIsTheHeaderAlone)
{
    UIDriverEnvironment environment;
    environment.light = true;
    EXPECT_EQ(UIDump::block("step 1: dump — dump", state, nullptr, environment),
              "\n\n========== step 1: dump — dump ==========\n");
    environment.light = false;
    environment.attributes = true;
    const QString full = UIDump::block("dump", state, nullptr, environment);
    EXPECT_TRUE(full.contains("\n== live editor ==\n(no text view)\n"));
    EXPECT_TRUE(full.contains("\n== windows ==\n(no windows)\n"));
    EXPECT_TRUE(full.endsWith("\n== styled text ==\nnone\n"));
}

namespace {

class QuitTest : public ::testing::Test {
protected:
    QuitTest() : state(std::make_unique<velmo::editor::EditorSettings>(), false)
    {
        writeBytes(dir.filePath("Note.md"), "# Note\n");
        state.openWorkspace(QUrl::fromLocalFile(dir.path()));
        document = state.open(QUrl::fromLocalFile(dir.filePath("Note.md")), true);
        delegate.attach(state);
    }

    QTemporaryDir dir;
    AppState state;
    AppDelegate delegate;
    OpenDocument* document = nullptr;
};

}

TEST_F(QuitTest, quitSavesTheDirtyNoteBeforeTheEnd)
{
    QSignalSpy terminated(&delegate, &AppDelegate::terminated);
    document->setText("# Note\nmore");
    state.quit();
    EXPECT_EQ(terminated.count(), 1);
    EXPECT_EQ(readBytes(dir.filePath("Note.md")), QByteArray("# Note\nmore"));
}

TEST_F(QuitTest, openPanelsDelayTheEndAndAFailedSaveCancelsIt)
{
    QSignalSpy terminated(&delegate, &AppDelegate::terminated);
    state.setFindVisible(true);
    delegate.terminate();
    EXPECT_FALSE(state.hasTransientPanels());
    EXPECT_EQ(terminated.count(), 0);
    EXPECT_TRUE(terminated.wait(2000));

    // A first line that is no file name cannot be saved: the process stays, the alert shows.
    AppDelegate second;
    second.attach(state);
    QSignalSpy refused(&second, &AppDelegate::terminated);
    document->setText("a/b\n");
    state.quit();
    EXPECT_EQ(refused.count(), 0);
    EXPECT_FALSE(state.isQuitting());
    EXPECT_TRUE(state.alert().has_value());
}

TEST_F(QuitTest, closingTheFolderForgetsTheSession)
{
    ASSERT_FALSE(state.session().quickOpenRecents.isEmpty());
    state.closeFolder();
    EXPECT_FALSE(state.workspace().root());
    EXPECT_TRUE(state.documents().empty());
    EXPECT_EQ(state.session(), velmo::editor::WorkspaceSession::empty());
}

TEST(AppDelegate, linksWaitForTheirRouterAndFilesGoToTheWindow)
{
    AppState state(std::make_unique<velmo::editor::EditorSettings>(), false);
    AppDelegate delegate;
    QSignalSpy documents(&delegate, &AppDelegate::openDocumentRequested);
    delegate.openURLs({QUrl("velmo://open?path=a"), QUrl::fromLocalFile("/x/Tool.app"), QUrl::fromLocalFile("/x/n.md"),
                       QUrl("velmo://search?q=b")});
    EXPECT_EQ(delegate.pendingLinks().size(), 2);
    ASSERT_EQ(documents.count(), 1);
    EXPECT_EQ(documents.first().first().toUrl(), QUrl::fromLocalFile("/x/n.md"));

    QList<QUrl> routed;
    delegate.setLinkRouter([&](const QUrl& url) { routed << url; });
    delegate.attach(state);
    EXPECT_EQ(routed, (QList<QUrl>{QUrl("velmo://open?path=a"), QUrl("velmo://search?q=b")}));
    EXPECT_TRUE(delegate.pendingLinks().isEmpty());
}

TEST(TerminationSignals, aSignalArrivesInTheEventLoop)
{
    TerminationSignals signals_;
    ASSERT_TRUE(signals_.isInstalled());
    QSignalSpy received(&signals_, &TerminationSignals::received);
    ::raise(SIGTERM);
    ::raise(SIGINT);
    ASSERT_TRUE(received.wait(2000) || received.count() > 0);
    if (received.count() < 2)
        received.wait(500);
    ASSERT_EQ(received.count(), 2);
    EXPECT_EQ(received.at(0).first().toInt(), SIGTERM);
    EXPECT_EQ(received.at(1).first().toInt(), SIGINT);
}
