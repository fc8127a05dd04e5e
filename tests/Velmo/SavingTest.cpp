#include "Velmo/AppState.h"
#include "support/TestSupport.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QThread>
#include <gtest/gtest.h>
#include <semaphore>

#include <fcntl.h>
#include <sys/stat.h>

using namespace velmo::app;
using velmo::test::readBytes;
using velmo::test::writeBytes;

namespace {

template <typename F>
bool eventually(F condition, int ms)
{
    QElapsedTimer timer;
    timer.start();
    while (!condition()) {
        if (timer.elapsed() > ms)
            return false;
        QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
        QThread::msleep(2);
    }
    return true;
}

// Moves a file's date by `seconds` without touching its bytes.
void shiftDate(const QString& path, int seconds)
{
    struct stat st {};
    ::stat(QFile::encodeName(path).constData(), &st);
    timespec times[2] = {st.st_atim, st.st_mtim};
    times[1].tv_sec += seconds;
    ::utimensat(AT_FDCWD, QFile::encodeName(path).constData(), times, 0);
}

class SavingTest : public ::testing::Test {
protected:
    SavingTest() : state(std::make_unique<velmo::editor::EditorSettings>(), false)
    {
        // The periodic look at the disk stays out of the way unless a test asks for it.
        state.setSavingDelays({.textDebounceMs = 10, .minimumAutosaveMs = 500, .syncIntervalMs = 3'600'000});
        state.openWorkspace(QUrl::fromLocalFile(dir.path()));
    }

    OpenDocument* openNote(const QByteArray& bytes = "# Note\n")
    {
        writeBytes(path(), bytes);
        return state.open(QUrl::fromLocalFile(path()), true);
    }
    QString path(const QString& name = "Note.md") const { return dir.filePath(name); }
    QByteArray disk(const QString& name = "Note.md") const { return readBytes(path(name)); }
    // Every write handed over has run and its outcome has reached the state.
    void settle()
    {
        state.writer().waitForDisk();
        QCoreApplication::processEvents();
    }

    // A writer that waits for a go-ahead before each write, and records what it wrote.
    void gateWrites()
    {
        state.writer().perform = [this](const NoteWriter::Write& write) {
            gate.acquire();
            performed.append(write.text);
            return NoteWriter::defaultPerform(write);
        };
    }

    QTemporaryDir dir;
    AppState state;
    std::counting_semaphore<64> gate{0};
    QStringList performed;
};

}

TEST_F(SavingTest, typingThroughASlowWriteStaysDirtyAndSendsTheRestOnce)
{
    gateWrites();
    OpenDocument* document = openNote();
    document->setText("# Note\na");
    ASSERT_TRUE(state.saveInBackground(document, false));
    EXPECT_TRUE(state.writer().isWriting(document->id()));
    // Two more autosaves while the first write is under way: one follow-up write in all.
    document->setText("# Note\nab");
    EXPECT_TRUE(state.saveInBackground(document, false));
    document->setText("# Note\nabc");
    EXPECT_TRUE(state.saveInBackground(document, false));

    gate.release();
    ASSERT_TRUE(eventually([&] { return state.textOnTheWay(document) == "# Note\nabc"; }, 2000));
    EXPECT_EQ(document->savedText(), "# Note\na");
    EXPECT_TRUE(document->isDirty());

    gate.release();
    ASSERT_TRUE(eventually([&] { return !state.textOnTheWay(document); }, 2000));
    EXPECT_EQ(performed, (QStringList{"# Note\na", "# Note\nabc"}));
    EXPECT_EQ(disk(), "# Note\nabc");
    EXPECT_FALSE(document->isDirty());
    EXPECT_FALSE(state.writer().isWriting(document->id()));
    EXPECT_FALSE(state.syncConflict());
}

TEST_F(SavingTest, changesOnDiskThatAreNoConflict)
{
    OpenDocument* document = openNote();

    // Touched: a new date over the same text, while dirty. The write proceeds.
    document->setText("# Note\nmine");
    shiftDate(path(), 10);
    ASSERT_TRUE(state.saveInBackground(document, false));
    settle();
    EXPECT_FALSE(state.syncConflict());
    EXPECT_EQ(disk(), "# Note\nmine");

    // Changed elsewhere to the very text we are writing.
    gateWrites();
    document->setText("# Note\nsame");
    ASSERT_TRUE(state.saveInBackground(document, false));
    writeBytes(path(), "# Note\nsame");
    shiftDate(path(), 20);
    state.reloadOpenDocumentsChangedOnDisk();
    EXPECT_FALSE(state.syncConflict());
    gate.release(8);
    settle();
    EXPECT_FALSE(state.syncConflict());
    EXPECT_EQ(disk(), "# Note\nsame");
    EXPECT_FALSE(document->isDirty());
}

TEST_F(SavingTest, aChangeElsewhereReloadsACleanNoteAndStopsADirtyOne)
{
    OpenDocument* document = openNote();
    const auto generation = state.workspace().contentGeneration();
    writeBytes(path(), "# Note\nfrom elsewhere");
    shiftDate(path(), 5);
    state.reloadOpenDocumentsChangedOnDisk();
    EXPECT_EQ(document->text(), "# Note\nfrom elsewhere");
    EXPECT_FALSE(document->isDirty());
    EXPECT_EQ(state.statusMessage(), "“Note” was updated from another device.");
    EXPECT_GT(state.workspace().contentGeneration(), generation);

    document->setText("# Note\nmine");
    state.scheduleAutosave(document);
    writeBytes(path(), "# Note\ntheirs");
    shiftDate(path(), 10);
    state.reloadOpenDocumentsChangedOnDisk();
    ASSERT_TRUE(state.syncConflict());
    EXPECT_EQ(state.syncConflict()->otherText, "# Note\ntheirs");
    EXPECT_EQ(state.syncConflict()->kind, SyncConflict::Kind::editedBothPlaces);
    EXPECT_EQ(state.syncConflict()->sheetTitle(), "“Note” Was Changed on Two Devices");
    EXPECT_FALSE(state.isAutosaveScheduled(document));
    EXPECT_EQ(document->text(), "# Note\nmine");
    // Neither path overwrites the file while the conflict stands.
    EXPECT_FALSE(state.save(document, false));
    state.saveInBackground(document, false);
    settle();
    EXPECT_EQ(disk(), "# Note\ntheirs");
}

TEST_F(SavingTest, eachResolutionKeepsWhatItSays)
{
    const struct {
        SyncResolution resolution;
        QByteArray onDisk;
        QString text;
        bool copy;
    } cases[] = {
        {SyncResolution::keepMine, "# Note\nmine", "# Note\nmine", false},
        {SyncResolution::useOther, "# Note\ntheirs", "# Note\ntheirs", false},
        {SyncResolution::keepBoth, "# Note\nmine", "# Note\nmine", true},
        {SyncResolution::later, "# Note\nmine", "# Note\nmine", false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(choiceTitle(c.resolution).toStdString());
        QFile::remove(path("Note (Other Device).md"));
        OpenDocument* document = openNote();
        document->setText("# Note\nmine");
        writeBytes(path(), "# Note\ntheirs");
        shiftDate(path(), 10);
        EXPECT_FALSE(state.save(document, false));
        ASSERT_TRUE(state.syncConflict());
        state.resolve(*state.syncConflict(), c.resolution);
        EXPECT_FALSE(state.syncConflict());
        EXPECT_EQ(disk(), c.onDisk);
        EXPECT_EQ(document->text(), c.text);
        EXPECT_FALSE(document->isDirty());
        EXPECT_EQ(QFile::exists(path("Note (Other Device).md")), c.copy);
        if (c.copy) {
            EXPECT_EQ(disk("Note (Other Device).md"), "# Note\ntheirs");
        }
        ASSERT_TRUE(state.closeAll());
    }
}

TEST_F(SavingTest, outcomesOfABackgroundWriteReachTheUser)
{
    OpenDocument* document = openNote();
    state.writer().perform = [](const NoteWriter::Write&) -> NoteWriter::Outcome {
        return NoteWriter::Failed{"the disk is full"};
    };
    document->setText("# Note\nlost?");
    ASSERT_TRUE(state.saveInBackground(document, false));
    settle();
    ASSERT_TRUE(state.alert());
    EXPECT_EQ(state.alert()->title, "Could Not Save Document");
    EXPECT_EQ(state.alert()->message, "Velmo cannot write to the disk is full.");
    EXPECT_TRUE(document->isDirty());

    // The real writer finds the change made elsewhere and writes nothing.
    state.writer().perform = NoteWriter::defaultPerform;
    writeBytes(path(), "# Note\ntheirs");
    shiftDate(path(), 10);
    ASSERT_TRUE(state.saveInBackground(document, false));
    settle();
    ASSERT_TRUE(state.syncConflict());
    EXPECT_EQ(state.syncConflict()->otherText, "# Note\ntheirs");
    EXPECT_EQ(disk(), "# Note\ntheirs");
}

TEST_F(SavingTest, aNoteDeletedUnderneathIsWrittenAgain)
{
    OpenDocument* document = openNote();
    QFile::remove(path());
    state.reloadOpenDocumentsChangedOnDisk();
    EXPECT_EQ(document->text(), "# Note\n");
    document->setText("# Note\nstill here");
    ASSERT_TRUE(state.saveInBackground(document, false));
    settle();
    EXPECT_EQ(disk(), "# Note\nstill here");
    EXPECT_FALSE(document->isDirty());

    QFile::remove(path());
    document->setText("# Note\nand again");
    EXPECT_TRUE(state.save(document, false));
    EXPECT_EQ(disk(), "# Note\nand again");
}

TEST_F(SavingTest, closingWithAWriteInFlightSeesNoConflictWithItself)
{
    state.writer().perform = [](const NoteWriter::Write& write) {
        QThread::msleep(50);
        return NoteWriter::defaultPerform(write);
    };
    OpenDocument* document = openNote();
    document->setText("# Note\nfirst");
    ASSERT_TRUE(state.saveInBackground(document, false));
    document->setText("# Note\nfirst and more");
    EXPECT_TRUE(state.close(document));
    EXPECT_FALSE(state.syncConflict());
    EXPECT_TRUE(state.documents().empty());
    EXPECT_EQ(disk(), "# Note\nfirst and more");
    QCoreApplication::processEvents(); // the stale completion is dropped

    // A write in flight that met a change made elsewhere: closing must not overwrite it.
    document = openNote();
    document->setText("# Note\nmine");
    writeBytes(path(), "# Note\ntheirs");
    shiftDate(path(), 10);
    ASSERT_TRUE(state.saveInBackground(document, false));
    EXPECT_FALSE(state.close(document));
    EXPECT_TRUE(state.syncConflict());
    EXPECT_EQ(disk(), "# Note\ntheirs");
    QCoreApplication::processEvents();
}

TEST_F(SavingTest, autosaveWaitsForAPauseOfAtLeastHalfASecond)
{
    state.settings().setValue("autoSaveDelay", 0);
    OpenDocument* document = openNote();
    QElapsedTimer timer;
    timer.start();
    document->setText("# Note\ntyped");
    ASSERT_TRUE(eventually([&] { return state.isAutosaveScheduled(document); }, 1000));
    ASSERT_TRUE(eventually([&] { return !document->isDirty(); }, 2000));
    EXPECT_GE(timer.elapsed(), 500);
    EXPECT_EQ(disk(), "# Note\ntyped");

    // With autosave off the debounce arms nothing.
    state.settings().setValue("autoSave", false);
    document->setText("# Note\nkept here");
    QThread::msleep(30);
    QCoreApplication::processEvents();
    EXPECT_FALSE(state.isAutosaveScheduled(document));
}

TEST_F(SavingTest, ourOwnWritesCauseNoRescan)
{
    const auto opened = state.workspace().contentGeneration();
    OpenDocument* document = openNote();
    // The fixture wrote the note from outside while the folder was watched: let that rescan
    // happen first (it may not come at all when the watch started after the write).
    (void)eventually([&] { return state.workspace().contentGeneration() != opened; }, 1500);
    const auto generation = state.workspace().contentGeneration();
    for (const char* text : {"# Note\none", "# Note\ntwo"}) {
        document->setText(text);
        ASSERT_TRUE(state.saveInBackground(document, false));
        settle();
    }
    EXPECT_TRUE(state.save(document, false));
    // Longer than the watcher's latency and the rescan's delay together.
    EXPECT_FALSE(eventually([&] { return state.workspace().contentGeneration() != generation; }, 800));
}

// Other programs writing the open note: in place, by `sed -i`, and by rename.
TEST_F(SavingTest, anOutsideEditorIsNoticedByTheWatcher)
{
    OpenDocument* document = openNote();
    const struct {
        const char* name;
        QString command;
    } writers[] = {
        {"in place", "printf '# Note\\nin place' > Note.md"},
        {"sed -i", "sed -i 's/in place/by sed/' Note.md"},
        {"rename", "printf '# Note\\nrenamed' > .Note.md.swp && mv .Note.md.swp Note.md"},
    };
    const QStringList expected = {"# Note\nin place", "# Note\nby sed", "# Note\nrenamed"};
    for (int i = 0; i < 3; ++i) {
        SCOPED_TRACE(writers[i].name);
        QThread::msleep(20); // a new modification time for each writer
        QProcess shell;
        shell.setWorkingDirectory(dir.path());
        shell.start("/bin/sh", {"-c", writers[i].command});
        ASSERT_TRUE(shell.waitForFinished());
        QElapsedTimer timer;
        timer.start();
        ASSERT_TRUE(eventually([&] { return document->text() == expected[i]; }, 2500));
        EXPECT_LT(timer.elapsed(), 2500);
    }
}

TEST(SavingWithoutWatcher, anOutsideEditorIsNoticedByThePeriodicCheck)
{
    QTemporaryDir dir;
    AppState state(std::make_unique<velmo::editor::EditorSettings>(), false); // no folder, no watcher
    writeBytes(dir.filePath("Note.md"), "# Note\n");
    OpenDocument* document = state.open(QUrl::fromLocalFile(dir.filePath("Note.md")), true);
    ASSERT_TRUE(document);
    QThread::msleep(20);
    QProcess::execute("/bin/sh", {"-c", "sed -i 's/Note/Note, by sed/' '" + dir.filePath("Note.md") + "'"});
    ASSERT_TRUE(eventually([&] { return document->text() == "# Note, by sed\n"; }, 2500));
}
