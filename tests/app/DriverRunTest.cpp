// Runs the real program headless with scripts and judges it by its transcript.
#include "support/TestSupport.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QThread>
#include <gtest/gtest.h>

#include <csignal>

using velmo::test::readBytes;
using velmo::test::writeBytes;

namespace {

constexpr int timeoutMs = 60000;

// One user: a home, settings, data and support folder of its own, and a folder of notes.
class DriverRun : public ::testing::Test {
protected:
    DriverRun()
    {
        for (const char* folder : {"home", "config", "data", "support", "notes"})
            QDir(root.path()).mkpath(folder);
        writeBytes(path("notes/Alpha.md"), "# Alpha\n\nfirst note\n");
        writeBytes(path("notes/Beta.md"), "# Beta\n");
        writeBytes(path("notes/Gamma.md"), "# Gamma\n");
    }

    QString path(const QString& relative) const { return root.filePath(relative); }
    QString dump() const
    {
        QFile file(path("dump.txt"));
        return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
    }

    QProcessEnvironment environment(const QString& script) const
    {
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert("HOME", path("home"));
        env.insert("XDG_CONFIG_HOME", path("config"));
        env.insert("XDG_DATA_HOME", path("data"));
        env.insert("VELMO_SUPPORT_DIR", path("support"));
        env.insert("QT_QPA_PLATFORM", "offscreen");
        env.insert("VELMO_UI_DUMP", path("dump.txt"));
        env.insert("VELMO_UI_DUMP_DELAY", "0");
        env.insert("VELMO_UI_STEP_DELAY", "0.05");
        if (!script.isNull())
            env.insert("VELMO_UI_SCRIPT", script);
        return env;
    }

    void start(QProcess& process, const QProcessEnvironment& env, const QStringList& arguments = {})
    {
        process.setProcessEnvironment(env);
        process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        process.start(VELMO_BINARY, arguments);
        ASSERT_TRUE(process.waitForStarted(timeoutMs));
    }

    // Runs to its end; the transcript file is what it left.
    QString run(const QProcessEnvironment& env, const QStringList& arguments = {})
    {
        QProcess process;
        start(process, env, arguments);
        EXPECT_TRUE(process.waitForFinished(timeoutMs));
        EXPECT_EQ(process.exitStatus(), QProcess::NormalExit);
        return dump();
    }

    // Waits until the transcript holds `text`, while the process lives.
    bool waitForDump(QProcess& process, const QString& text)
    {
        for (int waited = 0; waited < timeoutMs; waited += 50) {
            if (dump().contains(text))
                return true;
            if (process.state() == QProcess::NotRunning)
                return false;
            process.waitForFinished(50);
        }
        return false;
    }

    QJsonObject session() const
    {
        return QJsonDocument::fromJson(readBytes(path("support/session.json"))).object();
    }

    QTemporaryDir root;
};

}

TEST_F(DriverRun, stepsLogTheirNotesAndTheSummaryListsThemAll)
{
    const QString notes = path("notes");
    QElapsedTimer clock;
    clock.start();
    const QString out = run(environment("openFolder:" + notes + "; open:" + notes + "/Alpha.md; select:9,0; type:a:b; wait; wait:0;"
                                        " text; select:x; frobnicate; set:fontSize=abc; set:autoSave=false; close"));
    const QStringList expected = {
        "step 1: openFolder:" + notes + " — folder notes notes=3",
        "step 2: open:" + notes + "/Alpha.md — opened " + notes + "/Alpha.md",
        "step 3: select:9,0 — {9, 0}",
        "step 4: type:a:b — 1 characters",
        "step 5: wait — wait ",
        "step 6: wait:0 — wait 0",
        "step 7: text — text[\n# Alpha\n\nafirst note\n\ntext]",
        "step 8: select:x — select needs loc,length",
        "step 9: frobnicate — unknown command frobnicate",
        "step 10: set:fontSize=abc — fontSize needs a number",
        "step 11: set:autoSave=false — autoSave = false",
        "step 12: close — closed active",
    };
    // A bare `wait` holds its step for a second; every other step takes 0.05 s.
    EXPECT_GE(clock.elapsed(), 1000);
    qsizetype at = 0;
    for (const QString& header : expected) {
        const qsizetype found = out.indexOf("========== " + header + " ==========", at);
        ASSERT_GE(found, 0) << header.toStdString() << "\n" << out.toStdString();
        at = found;
    }
    EXPECT_TRUE(out.contains("========== summary\nopenFolder:" + notes + " — folder notes notes=3\n"));
    EXPECT_TRUE(out.contains("\nclose — closed active ==========\n"));
    // Closing saved the typed text.
    EXPECT_EQ(readBytes(path("notes/Alpha.md")), QByteArray("# Alpha\n\nafirst note\n"));
    // Each step's body has its sections in order.
    const qsizetype body = out.indexOf("step 4: type:a:b");
    qsizetype previous = body;
    for (const char* section : {"== state ==", "windowTitle=Alpha — notes", "quickOpen: visible=", "folderSearch: visible=",
                                "\n== live editor ==\n", "modelMatchesBuffer=true", "\n== configuration in force ==\n",
                                "\n== menus ==\n", "\n== windows ==\n", "\nconfig body="}) {
        const qsizetype found = out.indexOf(QString::fromUtf8(section), previous);
        ASSERT_GT(found, previous) << section;
        previous = found;
    }
}

TEST_F(DriverRun, aLightDumpHasHeadersOnlyAndASecondRunAppends)
{
    QProcessEnvironment env = environment("dump; dump");
    env.insert("VELMO_UI_DUMP_LIGHT", "1");
    run(env);
    const QString first = dump();
    EXPECT_EQ(first, "\n\n========== step 1: dump — dump ==========\n\n\n========== step 2: dump — dump ==========\n"
                     "\n\n========== summary\ndump — dump\ndump — dump ==========\n");
    run(env);
    EXPECT_EQ(dump(), first + first);
}

TEST_F(DriverRun, onlySeparatorsRunNothingAndDoNotQuit)
{
    QProcess process;
    start(process, environment(" ; ;; "));
    EXPECT_FALSE(process.waitForFinished(2500));
    EXPECT_FALSE(QFile::exists(path("dump.txt")));
    process.kill();
    process.waitForFinished(timeoutMs);
}

TEST_F(DriverRun, sigtermAfterAnEditSavesItAndTheSessionReopensTheFolder)
{
    const QString notes = path("notes");
    QProcessEnvironment env = environment("openFolder:" + notes + "; activate:beta; select:7,0; type:Hello");
    env.insert("VELMO_UI_DUMP_QUIT", "0");
    QProcess process;
    start(process, env);
    ASSERT_TRUE(waitForDump(process, "========== summary"));
    EXPECT_TRUE(dump().contains("activate:beta — opened and activated beta"));
    // It lives on after the summary, until it is told to end.
    EXPECT_FALSE(process.waitForFinished(500));
    ::kill(pid_t(process.processId()), SIGTERM);
    ASSERT_TRUE(process.waitForFinished(timeoutMs));
    EXPECT_EQ(process.exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(process.exitCode(), 0);
    EXPECT_EQ(readBytes(path("notes/Beta.md")), QByteArray("# Beta\nHello"));
    EXPECT_EQ(session().value("rootPath").toString(), notes);

    // The next launch reopens the folder, but not the note.
    QFile::remove(path("dump.txt"));
    const QString out = run(environment(QString()));
    EXPECT_TRUE(out.contains("workspaceRoot=" + notes + "\n")) << out.toStdString();
    EXPECT_TRUE(out.contains("documents=0\n"));
}

TEST_F(DriverRun, launchArgumentsOpenTheFolderThenTheNote)
{
    const QString out = run(environment(QString()), {"-x", path("missing.md"), path("notes/Gamma.md"), path("notes")});
    EXPECT_TRUE(out.contains("========== dump ==========\n== state ==\n"));
    EXPECT_TRUE(out.contains("workspaceRoot=" + path("notes") + "\n"));
    EXPECT_TRUE(out.contains("activeDocument=Gamma.md\n"));
    EXPECT_TRUE(out.contains("windowTitle=Gamma\n"));
}

TEST_F(DriverRun, aSessionSelectsButDoesNotReopenAndAGoneFolderFallsBackToTheDefault)
{
    const QString notes = path("notes");
    QJsonObject stored;
    stored.insert("rootPath", notes);
    stored.insert("openPaths", QJsonArray::fromStringList({notes + "/Alpha.md", notes + "/Beta.md", notes + "/Gamma.md"}));
    stored.insert("selectedPath", notes + "/Beta.md");
    writeBytes(path("support/session.json"), QJsonDocument(stored).toJson());
    QString out = run(environment(QString()));
    EXPECT_TRUE(out.contains("workspaceRoot=" + notes + "\n"));
    EXPECT_TRUE(out.contains("documents=0\n"));
    EXPECT_TRUE(out.contains(" selected=" + notes + "/Beta.md\n"));

    stored.insert("rootPath", path("deleted"));
    writeBytes(path("support/session.json"), QJsonDocument(stored).toJson());
    QFile::remove(path("dump.txt"));
    out = run(environment(QString()));
    EXPECT_TRUE(out.contains("workspaceRoot=" + path("home/Documents/Velmo") + "\n")) << out.toStdString();
    EXPECT_TRUE(QFile::exists(path("home/Documents/Velmo/Welcome.md")));
}

TEST_F(DriverRun, windowCommandsWorkOnTheOffscreenWindow)
{
    const QString notes = path("notes");
    QProcessEnvironment env = environment("openFolder:" + notes + "; activate:alpha; resize:500:900; shot:" + path("shot.png")
                                          + "; select:9,5; mark:かな; commit:仮名; menu:File>Save; menu:File>Nothing; validate");
    env.insert("VELMO_UI_SNAPSHOT_DIR", path("snaps"));
    env.insert("VELMO_UI_LINES", "1");
    env.insert("VELMO_UI_DUMP_ATTRS", "1");
    const QString out = run(env);
    for (const char* note : {"resize:500:900 — window \"Alpha\" content=760x900", "captured \"Alpha\" to ",
                             "mark:かな — marked {9, 2} selection {9, 0}", "commit:仮名 — committed selection {11, 0}",
                             "menu:File>Save — performed File>Save", "menu:File>Nothing — no item Nothing in File",
                             "validate — validated menu"})
        EXPECT_TRUE(out.contains(QString::fromUtf8(note))) << note;
    EXPECT_TRUE(out.contains("\n== styled text ==\nruns=")) << "the live editor's attribute runs";
    EXPECT_TRUE(out.contains("\n== lines ==\n  line  0 y="));
    EXPECT_TRUE(out.contains("hasMarkedText=true markedRange={9, 2}"));
    // Marked text never reaches the document; the committed text does, and the menu saved it.
    EXPECT_EQ(readBytes(path("notes/Alpha.md")), QByteArray("# Alpha\n\n仮名 note\n"));
    EXPECT_TRUE(readBytes(path("shot.png")).startsWith("\x89PNG"));
    EXPECT_EQ(QDir(path("snaps")).entryList(QDir::Files).size(), 10);

    // A single dump takes its one picture.
    env = environment(QString());
    env.insert("VELMO_UI_SNAPSHOT", path("single.png"));
    run(env);
    EXPECT_TRUE(readBytes(path("single.png")).startsWith("\x89PNG"));
}

TEST_F(DriverRun, theQuitMenuEndsTheRunAtOnceAfterSaving)
{
    const QString out = run(environment("openFolder:" + path("notes") + "; activate:alpha; select:9,0; type:y; menu:File>Quit; dump"));
    EXPECT_TRUE(out.contains("step 4: type:y — 1 characters"));
    EXPECT_FALSE(out.contains("step 5:"));
    EXPECT_FALSE(out.contains("summary"));
    EXPECT_EQ(readBytes(path("notes/Alpha.md")), QByteArray("# Alpha\n\nyfirst note\n"));
    EXPECT_EQ(session().value("selectedPath").toString(), path("notes/Alpha.md"));
}

TEST_F(DriverRun, fileCommandsGoThroughTheWorkspace)
{
    const QString notes = path("notes");
    const QString out = run(environment("openFolder:" + notes + "; new:Plans; newfolder:Archive; folderselect:Archive;"
                                        " open:" + notes + "/Beta.md; rename:Bravo; move:" + notes + "/Gamma.md|" + notes
                                        + "/Archive; filter:a; filter:; duplicate; delete; saveas:"));
    for (const QString& line : {QString("new:Plans — new note"), QString("newfolder:Archive — new folder"),
                                QString("folderselect:Archive — selected folder Archive"),
                                QString("rename:Bravo — renamed to Bravo"),
                                "move:" + notes + "/Gamma.md|" + notes + "/Archive — moved or imported",
                                QString("duplicate — duplicated active"), QString("delete — deleted active"),
                                QString("saveas: — no active document")})
        EXPECT_TRUE(out.contains("\n" + line)) << line.toStdString() << "\n" << out.section("summary", 1).toStdString();
    EXPECT_TRUE(QFile::exists(path("notes/Plans.md")));
    EXPECT_TRUE(QFile::exists(path("notes/Bravo.md")));
    EXPECT_FALSE(QFile::exists(path("notes/Beta.md")));
    EXPECT_TRUE(QFile::exists(path("notes/Archive/Gamma.md")));
    // Four notes are left after the duplicate went to the Trash; "a" matches all of them.
    EXPECT_TRUE(out.contains(QRegularExpression("\nfilter:a — filter a files=\\d+\n")));
    EXPECT_TRUE(out.contains("\nfilter: — filter  files=4\n")) << out.section("summary", 1).toStdString();
}
