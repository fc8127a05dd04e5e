#include "Velmo/AppState.h"
#include "support/TestSupport.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

using namespace velmo::app;
using velmo::test::readBytes;
using velmo::test::writeBytes;

inline void PrintTo(const QString& text, std::ostream* out)
{
    *out << '"' << text.toStdString() << '"';
}

namespace {

class FileOperationsTest : public ::testing::Test {
protected:
    FileOperationsTest() : state(std::make_unique<velmo::editor::EditorSettings>(), false)
    {
        qputenv("XDG_DATA_HOME", QFile::encodeName(data.path()));
        root = dir.path();
        state.openWorkspace(QUrl::fromLocalFile(root));
    }
    ~FileOperationsTest() override { qunsetenv("XDG_DATA_HOME"); }

    QUrl note(const QString& relative, const QByteArray& bytes)
    {
        QDir(root).mkpath(QFileInfo(root + '/' + relative).path());
        writeBytes(root + '/' + relative, bytes);
        state.workspace().rescan();
        return url(relative);
    }
    QUrl url(const QString& relative) const { return QUrl::fromLocalFile(QDir::cleanPath(root + '/' + relative)); }
    QStringList listing() const
    {
        QStringList paths;
        QDirIterator it(root, QDir::AllEntries | QDir::NoDotAndDotDot, QDirIterator::Subdirectories);
        while (it.hasNext())
            paths << it.next().mid(root.size() + 1);
        paths.sort();
        return paths;
    }
    void expectReported(const QString& message)
    {
        ASSERT_TRUE(state.alert());
        EXPECT_EQ(state.alert()->title, "Could Not Complete File Operation");
        EXPECT_EQ(state.alert()->message, message);
        EXPECT_EQ(state.statusMessage(), message);
        state.dismissAlert();
    }

    QTemporaryDir dir;
    QTemporaryDir data;
    QString root;
    AppState state;
};

}

TEST_F(FileOperationsTest, newNoteGoesToTheSelectedFolderAndOpens)
{
    note("Projects/plan.md", "# plan\n");
    state.workspace().select(url("Projects"));
    OpenDocument* document = state.newNote("Ideas.md");
    ASSERT_TRUE(document);
    EXPECT_EQ(document->url(), url("Projects/Ideas.md"));
    EXPECT_EQ(document->text(), "# Ideas\n\n");
    EXPECT_EQ(state.activeDocument(), document);

    EXPECT_EQ(state.newNote(".hidden"), nullptr);
    expectReported("Choose a visible file or folder name without / or :.");
    EXPECT_EQ(state.newFolder("Archive", url("")), url("Archive"));
}

TEST_F(FileOperationsTest, renamingTheOpenNoteSavesItAndRetitlesIt)
{
    note("Taken.md", "# Taken\n");
    OpenDocument* document = state.open(note("Draft.md", "# Draft\nbody"), true);
    document->setText("# Draft\nbody and more");
    document->setCaret(10);

    const QStringList before = listing();
    EXPECT_FALSE(state.renameActive("Taken"));
    expectReported("Velmo cannot write to Taken.md already exists.");
    EXPECT_EQ(listing(), before);
    EXPECT_EQ(readBytes(root + "/Taken.md"), QByteArray("# Taken\n"));

    ASSERT_TRUE(state.renameActive("Final"));
    EXPECT_EQ(document->url(), url("Final.md"));
    EXPECT_EQ(document->text(), "# Final\nbody and more");
    EXPECT_FALSE(document->isDirty());
    EXPECT_EQ(document->caret(), 10);
    EXPECT_EQ(readBytes(root + "/Final.md"), QByteArray("# Final\nbody and more"));
    EXPECT_EQ(listing(), (QStringList{"Final.md", "Taken.md"}));
    EXPECT_EQ(state.workspace().selection(), url("Final.md"));
    EXPECT_TRUE(state.renameActive("Final")); // the same name: nothing to do
}

TEST_F(FileOperationsTest, renamingAClosedNoteOrAFolder)
{
    // A first line that is not the title stays, under a heading with the new name.
    const QUrl plain = note("todo.md", "buy milk\n");
    ASSERT_TRUE(state.rename(plain, "Shopping"));
    EXPECT_EQ(readBytes(root + "/Shopping.md"), QByteArray("# Shopping\n\nbuy milk\n"));
    const QUrl titled = note("Old.md", "## Old\ntext\n");
    ASSERT_TRUE(state.rename(titled, "New"));
    EXPECT_EQ(readBytes(root + "/New.md"), QByteArray("## New\ntext\n"));

    OpenDocument* inside = state.open(note("Folder/inner.md", "# inner\n"), true);
    inside->setText("# inner\nunsaved");
    ASSERT_TRUE(state.rename(url("Folder"), "Renamed"));
    EXPECT_EQ(inside->url(), url("Renamed/inner.md"));
    EXPECT_EQ(readBytes(root + "/Renamed/inner.md"), QByteArray("# inner\nunsaved"));
    EXPECT_EQ(state.session().lastOpenedPath, root + "/Renamed/inner.md");
}

TEST_F(FileOperationsTest, duplicateOpensTheCopy)
{
    const QUrl plan = note("Plan.md", "# Plan\n");
    OpenDocument* copy = state.duplicate(plan);
    ASSERT_TRUE(copy);
    EXPECT_EQ(copy->url(), url("Plan copy.md"));
    EXPECT_EQ(copy->text(), "# Plan copy\n");
}

TEST_F(FileOperationsTest, deletingAFolderKeepsTheLastEditsInTheTrash)
{
    OpenDocument* document = state.open(note("Folder/n.md", "# n\n"), true);
    document->setText("# n\nlast edit\n");
    ASSERT_TRUE(state.deleteItem(url("Folder")));
    EXPECT_TRUE(state.documents().empty());
    EXPECT_FALSE(state.activeID());
    EXPECT_EQ(readBytes(data.filePath("Trash/files/Folder/n.md")), QByteArray("# n\nlast edit\n"));
    EXPECT_FALSE(QFileInfo::exists(root + "/Folder"));

    EXPECT_FALSE(state.deleteItem(url("gone.md")));
    expectReported("The file no longer exists.");
    EXPECT_FALSE(state.deleteActive());
}

TEST_F(FileOperationsTest, moveCarriesTheOpenNoteAndRefusesCycles)
{
    note("Inbox/Sub/x.md", "# x\n");
    OpenDocument* document = state.open(note("Inbox/a.md", "# a\n"), true);
    document->setText("# a\nmoved with its edits");
    ASSERT_TRUE(state.move(url("Inbox/a.md"), url("Inbox/Sub")));
    EXPECT_EQ(document->url(), url("Inbox/Sub/a.md"));
    EXPECT_EQ(readBytes(root + "/Inbox/Sub/a.md"), QByteArray("# a\nmoved with its edits"));
    EXPECT_EQ(state.statusMessage(), "Moved a.md");

    const QStringList before = listing();
    EXPECT_FALSE(state.move(url("Inbox"), url("Inbox/Sub")));
    expectReported("A folder cannot be moved into itself or one of its subfolders.");
    EXPECT_FALSE(state.move(url("Inbox/Sub/a.md"), QUrl::fromLocalFile(data.path())));
    expectReported("Move notes within the open folder.");
    EXPECT_EQ(listing(), before);

    ASSERT_TRUE(state.move(url("Inbox/Sub"), url("")));
    EXPECT_EQ(document->url(), url("Sub/a.md"));
}

TEST_F(FileOperationsTest, saveAsWritesACopyAndContinuesThere)
{
    OpenDocument* document = state.open(note("Original.md", "# Original\nbody"), true);
    document->setText("# Original\nbody, edited");
    ASSERT_TRUE(state.saveAs(document, url("Elsewhere/../Copy.md")));
    EXPECT_EQ(document->url(), url("Copy.md"));
    EXPECT_EQ(document->text(), "# Copy\nbody, edited");
    EXPECT_EQ(readBytes(root + "/Copy.md"), QByteArray("# Copy\nbody, edited"));
    EXPECT_EQ(readBytes(root + "/Original.md"), QByteArray("# Original\nbody"));

    EXPECT_FALSE(state.saveAs(document, url(".hidden.md")));
    expectReported("Choose a visible file or folder name without / or :.");
}

TEST_F(FileOperationsTest, sidebarDropsMovePlaceAndImport)
{
    note("a.md", "# a\n");
    note("b.md", "# b\n");
    note("Folder/c.md", "# c\n");
    // Within its own folder a positioned drop only reorders.
    ASSERT_TRUE(state.receiveSidebarDrop({url("b.md")}, url(""), url("a.md"), true));
    EXPECT_EQ(state.workspace().order().folders.value(""), (QStringList{"Folder", "b.md", "a.md"}));
    // Into another folder it moves, and lands before the given row.
    ASSERT_TRUE(state.receiveSidebarDrop({url("a.md")}, url("Folder"), url("Folder/c.md"), true));
    EXPECT_EQ(state.workspace().order().folders.value("Folder"), (QStringList{"a.md", "c.md"}));
    EXPECT_EQ(state.workspace().selection(), url("Folder/a.md"));
    // From outside it imports.
    QTemporaryDir outside;
    writeBytes(outside.filePath("b.md"), "# b\nfrom outside\n");
    ASSERT_TRUE(state.receiveSidebarDrop({QUrl::fromLocalFile(outside.filePath("b.md"))}, url(""), std::nullopt, false));
    EXPECT_EQ(state.statusMessage(), "Imported b 2.md");
    EXPECT_EQ(readBytes(root + "/b 2.md"), QByteArray("# b\nfrom outside\n"));
    EXPECT_FALSE(state.receiveSidebarDrop({url("b.md")}, QUrl::fromLocalFile(outside.path()), std::nullopt, false));
    expectReported("Move notes within the open folder.");
}

TEST(FileOperationsThroughALink, openNotesFollowTheirFolder)
{
    QTemporaryDir dir;
    QDir(dir.path()).mkpath("real/Folder");
    writeBytes(dir.filePath("real/Folder/n.md"), "# n\n");
    ASSERT_TRUE(QFile::link(dir.filePath("real"), dir.filePath("link")));
    AppState state(std::make_unique<velmo::editor::EditorSettings>(), false);
    const QString root = dir.filePath("link");
    state.openWorkspace(QUrl::fromLocalFile(root));
    OpenDocument* document = state.open(QUrl::fromLocalFile(root + "/Folder/n.md"), true);
    ASSERT_TRUE(document);
    ASSERT_TRUE(state.rename(QUrl::fromLocalFile(root + "/Folder"), "Renamed"));
    EXPECT_EQ(document->url(), QUrl::fromLocalFile(root + "/Renamed/n.md"));
    ASSERT_TRUE(state.workspace().createFolder("Target").isValid());
    ASSERT_TRUE(state.move(QUrl::fromLocalFile(root + "/Renamed"), QUrl::fromLocalFile(root + "/Target")));
    EXPECT_EQ(document->url(), QUrl::fromLocalFile(root + "/Target/Renamed/n.md"));
}
