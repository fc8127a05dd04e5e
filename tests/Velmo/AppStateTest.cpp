#include "Velmo/AppState.h"
#include "support/TestSupport.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <sys/stat.h>

using namespace velmo::app;
using velmo::test::readBytes;
using velmo::test::writeBytes;

namespace {

// A state that touches neither the user's settings nor the session file, over a temporary folder.
class AppStateTest : public ::testing::Test {
protected:
    AppStateTest() : state(std::make_unique<velmo::editor::EditorSettings>(), false)
    {
        state.openWorkspace(QUrl::fromLocalFile(dir.path()));
    }

    QUrl note(const QString& name, const QByteArray& bytes)
    {
        writeBytes(dir.filePath(name), bytes);
        state.workspace().rescan();
        return QUrl::fromLocalFile(dir.filePath(name));
    }
    QStringList files() const { return QDir(dir.path()).entryList(QDir::Files | QDir::Hidden); }

    QTemporaryDir dir;
    AppState state;
};

}

TEST_F(AppStateTest, editAndSaveWritesTheBytes)
{
    OpenDocument* document = state.open(note("Plans.md", "# Plans\n"), true);
    ASSERT_TRUE(document);
    EXPECT_EQ(state.windowTitle(), "Plans");
    document->setText("# Plans\n\n- milk\n");
    EXPECT_TRUE(document->isDirty());
    EXPECT_EQ(state.windowTitle(), "Plans — " + QDir(dir.path()).dirName());
    EXPECT_TRUE(state.save(document, true));
    EXPECT_EQ(readBytes(dir.filePath("Plans.md")), QByteArray("# Plans\n\n- milk\n"));
    EXPECT_FALSE(document->isDirty());
    EXPECT_EQ(state.statusMessage(), "Saved Plans");
}

TEST_F(AppStateTest, aChangedFirstLineRenamesTheFile)
{
    note("Taken.md", "# Taken\n");
    OpenDocument* document = state.open(note("Old.md", "# Old\nbody"), true);
    document->setText("# New\nbody");
    ASSERT_TRUE(state.save(document, false));
    EXPECT_EQ(document->url(), QUrl::fromLocalFile(dir.filePath("New.md")));
    EXPECT_EQ(files(), (QStringList{"New.md", "Taken.md"}));

    // A taken name gets a number, and the first line follows the file.
    document->setCaret(8);
    document->setText("# Taken\nbody");
    ASSERT_TRUE(state.save(document, false));
    EXPECT_EQ(document->title(), "Taken 2");
    EXPECT_EQ(document->text(), "# Taken 2\nbody");
    EXPECT_EQ(readBytes(dir.filePath("Taken 2.md")), QByteArray("# Taken 2\nbody"));
    EXPECT_EQ(document->caret(), 10);
    EXPECT_EQ(readBytes(dir.filePath("Taken.md")), QByteArray("# Taken\n"));
}

TEST_F(AppStateTest, anEmptyFirstLineKeepsTheName)
{
    OpenDocument* document = state.open(note("Keep.md", "# Keep\n"), true);
    document->setText("\nbody");
    ASSERT_TRUE(state.save(document, false));
    EXPECT_EQ(files(), QStringList{"Keep.md"});
    EXPECT_EQ(readBytes(dir.filePath("Keep.md")), QByteArray("\nbody"));
}

TEST_F(AppStateTest, anInvalidTitleStopsTheSaveAndLeavesTheFile)
{
    OpenDocument* document = state.open(note("Safe.md", "# Safe\n"), true);
    document->setText("a/b\nbody");
    EXPECT_FALSE(state.save(document, false));
    ASSERT_TRUE(state.alert());
    EXPECT_EQ(state.alert()->title, "Could Not Save Document");
    EXPECT_EQ(state.alert()->message, "Choose a visible file or folder name without / or :.");
    EXPECT_EQ(readBytes(dir.filePath("Safe.md")), QByteArray("# Safe\n"));
    EXPECT_TRUE(document->isDirty());
}

TEST_F(AppStateTest, encodingsPermissionsAndByteOrderMarkSurviveASave)
{
    OpenDocument* bom = state.open(note("Bom.md", "\xEF\xBB\xBF# Bom\n"), true);
    bom->setText(bom->text() + "more\n");
    ASSERT_TRUE(state.save(bom, false));
    EXPECT_EQ(readBytes(dir.filePath("Bom.md")), QByteArray("\xEF\xBB\xBF# Bom\nmore\n"));

    const QUrl latin = note("Latin.md", "# Latin\ncaf\xE9\n");
    ASSERT_EQ(::chmod(QFile::encodeName(latin.toLocalFile()).constData(), 0600), 0);
    OpenDocument* document = state.open(latin, true);
    EXPECT_EQ(document->text(), QString::fromUtf8("# Latin\ncafé\n"));
    document->setText(document->text() + "!");
    ASSERT_TRUE(state.save(document, false));
    EXPECT_EQ(readBytes(latin.toLocalFile()), QByteArray("# Latin\ncaf\xC3\xA9\n!"));
    struct stat st {};
    ::stat(QFile::encodeName(latin.toLocalFile()).constData(), &st);
    EXPECT_EQ(st.st_mode & 0777, 0600u);
}

TEST_F(AppStateTest, oneNoteOpenAtATimeAndSwitchingSavesTheFirst)
{
    const QUrl a = note("A.md", "# A\n");
    const QUrl b = note("B.md", "# B\n");
    OpenDocument* first = state.open(a, true);
    first->setText("# A\nedited");
    OpenDocument* second = state.open(b, true);
    ASSERT_TRUE(second);
    EXPECT_EQ(state.documents().size(), 1u);
    EXPECT_EQ(readBytes(a.toLocalFile()), QByteArray("# A\nedited"));

    // The same note through another spelling of its path is found, not opened twice.
    EXPECT_EQ(state.open(QUrl::fromLocalFile(dir.path() + "/./B.md"), true), second);

    // When saving the first fails, the second does not open.
    second->setText("bad:name\n");
    EXPECT_EQ(state.open(a, true), nullptr);
    EXPECT_EQ(state.activeDocument(), second);

    second->setText("# B\n");
    EXPECT_TRUE(state.goHome());
    EXPECT_FALSE(state.activeID());
    EXPECT_FALSE(state.workspace().selection());
}

TEST_F(AppStateTest, openAnyReportsMissingFiles)
{
    state.openAny(QUrl::fromLocalFile(dir.filePath("nothing.md")));
    EXPECT_EQ(state.statusMessage(), "No such file: nothing.md");
    EXPECT_EQ(state.open(QUrl::fromLocalFile(dir.filePath("nothing.md"))), nullptr);
    EXPECT_EQ(state.alert()->title, "Could Not Open Document");
}
