#include "Editor/Model/MarkdownFileError.h"
#include "Editor/Model/Workspace.h"
#include "Editor/Model/WorkspaceFileOperationError.h"
#include "Editor/Model/WorkspaceTree.h"
#include "support/TestSupport.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <sys/stat.h>

using namespace velmo::editor;

inline void PrintTo(const QString& text, std::ostream* out)
{
    *out << '"' << text.toStdString() << '"';
}
using velmo::test::readBytes;
using velmo::test::writeBytes;

namespace {

class WorkspaceTest : public ::testing::Test {
protected:
    WorkspaceTest()
    {
        // The Trash lives in the temporary folder, on the same file system as the notes.
        qputenv("XDG_DATA_HOME", QFile::encodeName(data.path()));
        QDir(dir.path()).mkpath("root");
        root = dir.filePath("root");
    }
    ~WorkspaceTest() override { qunsetenv("XDG_DATA_HOME"); }

    QUrl file(const QString& relative, const QByteArray& bytes = "# x\n")
    {
        QDir(root).mkpath(QFileInfo(root + '/' + relative).path());
        writeBytes(root + '/' + relative, bytes);
        return url(relative);
    }
    QUrl url(const QString& relative) const { return QUrl::fromLocalFile(QDir::cleanPath(root + '/' + relative)); }
    QUrl folder(const QString& relative)
    {
        QDir(root).mkpath(relative);
        return url(relative);
    }
    void open() { workspace.open(QUrl::fromLocalFile(root)); }
    // Every path below the root, hidden ones included: what a failed operation must not change.
    QStringList listing() const
    {
        QStringList paths;
        QDirIterator it(root, QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot, QDirIterator::Subdirectories);
        while (it.hasNext())
            paths << it.next().mid(root.size() + 1);
        paths.sort();
        return paths;
    }
    QString names() const
    {
        QStringList result;
        for (const MarkdownFile& note : workspace.notes())
            result << workspace.relativePath(note.url());
        return result.join(' ');
    }

    template <typename Operation>
    QString failure(Operation&& operation)
    {
        const QStringList before = listing();
        try {
            operation();
        } catch (const MarkdownFileError& error) {
            EXPECT_EQ(listing(), before);
            return error.message();
        } catch (const WorkspaceFileOperationError& error) {
            EXPECT_EQ(listing(), before);
            return error.message();
        }
        return "no failure";
    }

    QTemporaryDir dir;
    QTemporaryDir data;
    QString root;
    Workspace workspace;
};

}

TEST_F(WorkspaceTest, withoutARootNothingHappens)
{
    EXPECT_EQ(workspace.displayName(), "Velmo");
    workspace.rescan();
    EXPECT_EQ(workspace.contentGeneration(), 0u);
    EXPECT_FALSE(workspace.creationDirectory());
    EXPECT_FALSE(workspace.filteredTree());

    workspace.open(QUrl::fromLocalFile(root + "/missing"));
    EXPECT_EQ(workspace.lastError(), "Velmo cannot read " + root + "/missing.");
    EXPECT_FALSE(workspace.root());
}

TEST_F(WorkspaceTest, openScansAndKeepsTheSelectionOnlyWhileItExists)
{
    const QUrl a = file("Notes/a.md");
    file("b.md");
    open();
    EXPECT_EQ(workspace.displayName(), "root");
    EXPECT_EQ(names(), "Notes/a.md b.md");
    EXPECT_EQ(workspace.expanded(), QSet<QString>{root});
    workspace.select(a);
    EXPECT_TRUE(workspace.isExpanded(url("Notes")));
    EXPECT_EQ(workspace.creationDirectory(), url("Notes"));
    QFile::remove(a.toLocalFile());
    workspace.rescan();
    EXPECT_FALSE(workspace.selection());
    EXPECT_EQ(workspace.creationDirectory(), url(""));
    workspace.collapseAll();
    EXPECT_EQ(workspace.expanded(), QSet<QString>{root});

    // Rescans requested in a burst come as one, after the delay.
    const quint64 generation = workspace.contentGeneration();
    QSignalSpy rescans(&workspace, &Workspace::treeChanged);
    workspace.scheduleRescan();
    workspace.scheduleRescan();
    EXPECT_TRUE(rescans.wait(2000));
    EXPECT_EQ(workspace.contentGeneration(), generation + 1);

    workspace.setFilter("zzz");
    EXPECT_FALSE(workspace.filteredTree());
    workspace.close();
    EXPECT_FALSE(workspace.root());
    EXPECT_TRUE(workspace.notes().empty());
    EXPECT_TRUE(workspace.filter().isEmpty());
}

TEST_F(WorkspaceTest, pathsAndContainment)
{
    file("Notes/a.md");
    QFile::link(dir.path(), root + "/outside-link");
    QFile::link(root + "/Notes/a.md", root + "/Notes/alias.md");
    open();
    EXPECT_TRUE(workspace.contains(url("Notes/./a.md")));
    EXPECT_TRUE(workspace.contains(url("")));
    EXPECT_FALSE(workspace.contains(QUrl::fromLocalFile(root + "2/a.md")));
    EXPECT_FALSE(workspace.contains(url("outside-link")));   // resolved, it points out
    EXPECT_TRUE(workspace.containsEntry(url("outside-link"))); // stored inside all the same
    EXPECT_FALSE(workspace.containsEntry(url("")));
    EXPECT_EQ(workspace.depth(url("")), 0);
    EXPECT_EQ(workspace.depth(url("Notes/a.md")), 2);
    EXPECT_EQ(workspace.depth(QUrl::fromLocalFile("/elsewhere")), -1);
    EXPECT_EQ(workspace.relativePath(url("Notes/a.md")), "Notes/a.md");
    EXPECT_EQ(workspace.relativePath(QUrl::fromLocalFile("/elsewhere/x.md")), "x.md");
    EXPECT_EQ(workspace.directoryDestination(url("Notes")), url("Notes"));
    EXPECT_FALSE(workspace.directoryDestination(url("outside-link")));
    // A symlinked folder is a folder row too, without contents.
    ASSERT_EQ(workspace.folders().size(), 2);
    EXPECT_EQ(workspace.folders()[0].noteCount, 2);
    EXPECT_EQ(workspace.folders()[1].name, "outside-link");
    EXPECT_EQ(workspace.folders()[1].noteCount, 0);
}

TEST_F(WorkspaceTest, uniqueNameCountsUpward)
{
    file("Note.md");
    file("Note 2.md");
    open();
    EXPECT_EQ(workspace.uniqueName("Note", "md"), "Note 3.md");
    EXPECT_EQ(workspace.uniqueName("  \n", "md"), "Untitled.md");
    EXPECT_EQ(workspace.uniqueName("Note", ""), "Note");
    EXPECT_EQ(workspace.uniqueName("Other", "md"), "Other.md");
}

TEST_F(WorkspaceTest, createNoteNamesAndTitles)
{
    open();
    struct Case { const char* name; const char* file; const char* text; };
    const Case cases[] = {
        {"Ideas.md", "Ideas.md", "# Ideas\n\n"},
        {"Ideas.txt", "Ideas.txt", "# Ideas\n\n"},
        {"Ideas.pdf", "Ideas.pdf.md", "# Ideas.pdf\n\n"},
        {"Ideas", "Ideas 2.md", "# Ideas 2\n\n"},
        {"   ", "Untitled.md", "# Untitled\n\n"},
    };
    for (const Case& c : cases) {
        const MarkdownFile note = workspace.createNote(c.name);
        EXPECT_EQ(note.path(), root + "/" + c.file) << c.name;
        EXPECT_EQ(readBytes(note.path()), QByteArray(c.text)) << c.name;
        EXPECT_EQ(workspace.selection(), note.url());
    }
    const QString invalid = MarkdownFileError::invalidName().message();
    for (const char* name : {".hidden", " .md", "a/b", "a:b", "two\nlines"})
        EXPECT_EQ(failure([&] { workspace.createNote(name); }), invalid) << name;
    // A file stands where the folder would have to be.
    file("plain.md");
    EXPECT_NE(failure([&] { workspace.createNote("x", url("plain.md/sub")); }), "no failure");
}

TEST_F(WorkspaceTest, createFolderNumbersAndExpands)
{
    open();
    const QUrl first = workspace.createFolder("  ");
    EXPECT_EQ(first, url("New Folder"));
    EXPECT_EQ(workspace.createFolder("New Folder"), url("New Folder 2"));
    const QUrl nested = workspace.createFolder("Inner", first);
    EXPECT_TRUE(workspace.isExpanded(nested));
    EXPECT_TRUE(workspace.isExpanded(first));
    EXPECT_EQ(workspace.tree().children().size(), 2u);
}

TEST_F(WorkspaceTest, renameKeepsExtensionsAndRefusesTakenNames)
{
    const QUrl a = file("a.md");
    file("b.md");
    open();
    EXPECT_EQ(workspace.renameDestination(a, "c"), url("c.md"));
    EXPECT_EQ(workspace.renameDestination(a, "c.txt"), url("c.txt"));
    EXPECT_EQ(workspace.renameDestination(a, "c.pdf"), url("c.pdf.md"));
    EXPECT_EQ(workspace.rename(a, "a"), a); // the same name: a no-op that succeeds
    EXPECT_EQ(failure([&] { workspace.rename(a, "b"); }), "Velmo cannot write to b.md already exists.");
    EXPECT_EQ(failure([&] { workspace.rename(a, "x/y"); }), MarkdownFileError::invalidName().message());
    EXPECT_EQ(failure([&] { workspace.rename(a, url("Sub/a.md")); }), "Move notes within the open folder.");
    const QString outside = "Move notes within the open folder.";
    EXPECT_EQ(failure([&] { workspace.rename(url(""), "other"); }), outside);
    EXPECT_EQ(failure([&] { workspace.deleteItem(url("")); }), outside);
    EXPECT_EQ(failure([&] { workspace.duplicate(url("")); }), outside);
    EXPECT_EQ(workspace.rename(a, "A"), url("A.md")); // a case-only change
    EXPECT_EQ(names(), "A.md b.md");
}

TEST_F(WorkspaceTest, renamingAFolderCarriesExpansionSelectionAndOrder)
{
    file("F/G/n.md");
    file("F/m.md");
    file("z.md");
    open();
    workspace.select(url("F/G/n.md"));
    workspace.place(url("z.md"), url("F"));
    workspace.place(url("F/m.md"), url("F/G"));
    EXPECT_EQ(workspace.order().folders.value(""), (QStringList{"z.md", "F"}));

    EXPECT_EQ(workspace.rename(url("F"), "H"), url("H"));
    EXPECT_EQ(workspace.selection(), url("H/G/n.md"));
    EXPECT_TRUE(workspace.isExpanded(url("H/G")));
    EXPECT_FALSE(workspace.isExpanded(url("F")));
    EXPECT_EQ(workspace.order().folders.value(""), (QStringList{"z.md", "H"}));
    EXPECT_EQ(workspace.order().folders.value("H"), (QStringList{"m.md", "G"}));
    EXPECT_EQ(WorkspaceOrder::load(url("")), workspace.order());
    EXPECT_EQ(names(), "z.md H/m.md H/G/n.md");
}

TEST_F(WorkspaceTest, duplicateNamesTheCopyInItsFirstLine)
{
    const QUrl plan = file("Plan.md", "# Plan\n\nbody\n");
    open();
    const QUrl copy = workspace.duplicate(plan);
    EXPECT_EQ(copy, url("Plan copy.md"));
    EXPECT_EQ(readBytes(copy.toLocalFile()), QByteArray("# Plan copy\n\nbody\n"));
    EXPECT_EQ(workspace.duplicate(plan), url("Plan copy 2.md"));
    EXPECT_EQ(workspace.selection(), url("Plan copy 2.md"));
    EXPECT_EQ(readBytes(plan.toLocalFile()), QByteArray("# Plan\n\nbody\n"));
}

TEST_F(WorkspaceTest, moveRefusesWhatCannotBeAndMovesTheRest)
{
    file("F/G/n.md");
    const QUrl a = file("a.md");
    file("Taken/a.md");
    file("plain.md");
    open();
    const QString cycle = "A folder cannot be moved into itself or one of its subfolders.";
    EXPECT_EQ(failure([&] { workspace.move(url("F"), url("F/G")); }), cycle);
    EXPECT_EQ(failure([&] { workspace.move(url("F"), url("F")); }), cycle);
    EXPECT_EQ(failure([&] { workspace.move(a, url("plain.md")); }), "Choose a folder as the destination.");
    EXPECT_EQ(failure([&] { workspace.move(a, QUrl::fromLocalFile(dir.path())); }), "Move notes within the open folder.");
    EXPECT_EQ(failure([&] { workspace.move(a, url("Taken")); }), "Velmo cannot write to a.md already exists there.");
    EXPECT_EQ(workspace.move(a, url("")), a); // already there: a no-op

    workspace.select(url("F/G/n.md"));
    EXPECT_EQ(workspace.move(url("F/G"), url("Taken")), url("Taken/G"));
    EXPECT_EQ(workspace.selection(), url("Taken/G/n.md"));
    EXPECT_EQ(workspace.move(a, url("Taken/G")), url("Taken/G/a.md"));
    EXPECT_EQ(names(), "Taken/G/a.md Taken/G/n.md Taken/a.md plain.md");
}

TEST_F(WorkspaceTest, placeWritesTheManualOrder)
{
    file("a.md");
    file("b.md");
    file("c.md");
    file("Sub/x.md");
    open();
    workspace.place(url("c.md"), url("a.md"));
    EXPECT_EQ(names(), "Sub/x.md c.md a.md b.md");
    workspace.place(url("Sub/x.md"), url("a.md")); // another folder: nothing
    workspace.place(url("a.md"), std::nullopt);
    EXPECT_EQ(names(), "Sub/x.md c.md b.md a.md");
    EXPECT_EQ(WorkspaceOrder::load(url("")).folders.value(""), (QStringList{"Sub", "c.md", "b.md", "a.md"}));
    // A renamed note keeps its place; a deleted one leaves the list.
    workspace.rename(url("c.md"), "see");
    EXPECT_EQ(names(), "Sub/x.md see.md b.md a.md");
    workspace.deleteItem(url("see.md"));
    EXPECT_EQ(workspace.order().folders.value(""), (QStringList{"Sub", "b.md", "a.md"}));
    // A note moved away leaves its old folder's list and arrives in its sorted place.
    workspace.move(url("a.md"), url("Sub"));
    EXPECT_EQ(workspace.order().folders.value(""), (QStringList{"Sub", "b.md"}));
    EXPECT_EQ(names(), "Sub/a.md Sub/x.md b.md");
    workspace.move(url("Sub/a.md"), url(""));

    // An order that cannot be saved stays in memory and says why.
    QDir(root + "/.velmo").removeRecursively();
    writeBytes(root + "/.velmo", "");
    workspace.place(url("b.md"), std::nullopt);
    EXPECT_TRUE(workspace.lastError()->startsWith("Velmo could not save the sidebar order: "));
    EXPECT_EQ(names(), "Sub/x.md a.md b.md");
}

TEST_F(WorkspaceTest, deleteMovesToTheTrashOrFails)
{
    file("F/n.md", "# n\nlast words\n");
    open();
    workspace.select(url("F/n.md"));
    workspace.deleteItem(url("F"));
    EXPECT_FALSE(QFileInfo::exists(url("F").toLocalFile()));
    EXPECT_EQ(readBytes(data.filePath("Trash/files/F/n.md")), QByteArray("# n\nlast words\n"));
    EXPECT_FALSE(workspace.selection());
    EXPECT_FALSE(workspace.isExpanded(url("F")));

    // No Trash can be made: the delete fails and the note stays.
    const QUrl kept = file("kept.md");
    workspace.rescan();
    writeBytes(dir.filePath("blocker"), "");
    qputenv("XDG_DATA_HOME", QFile::encodeName(dir.filePath("blocker/data")));
    EXPECT_EQ(failure([&] { workspace.deleteItem(kept); }), "“kept.md” could not be moved to the Trash.");
    EXPECT_TRUE(QFileInfo::exists(kept.toLocalFile()));
}

TEST_F(WorkspaceTest, importCopiesNotesAndFoldersFromOutside)
{
    file("Ideas.md");
    open();
    const QString outside = dir.filePath("outside");
    QDir(outside).mkpath("Folder/Deep");
    writeBytes(outside + "/Ideas.md", "# Ideas\nfrom outside\n");
    writeBytes(outside + "/Folder/Deep/d.md", "d");
    writeBytes(outside + "/picture.png", "png");
    ASSERT_TRUE(QFile::link(".", outside + "/Folder/loop")); // a cycle the copy must not follow
    ASSERT_EQ(::mkfifo(QFile::encodeName(outside + "/Folder/pipe.md").constData(), 0600), 0); // would block a copy

    for (const char* unsupported : {"/picture.png", "/Folder/pipe.md"}) {
        EXPECT_EQ(failure([&] {
            workspace.importFiles({QUrl::fromLocalFile(outside + "/Ideas.md"), QUrl::fromLocalFile(outside + unsupported)}, url(""));
        }), "Drop a Markdown document or a folder of notes.");
    }
    const auto imported = workspace.importFiles(
        {QUrl::fromLocalFile(outside + "/Ideas.md"), QUrl::fromLocalFile(outside + "/Folder")}, url(""));
    EXPECT_EQ(imported, (QList<QUrl>{url("Ideas 2.md"), url("Folder")}));
    EXPECT_EQ(readBytes(root + "/Ideas 2.md"), QByteArray("# Ideas\nfrom outside\n"));
    EXPECT_EQ(names(), "Folder/Deep/d.md Ideas.md Ideas 2.md");
    EXPECT_TRUE(QFileInfo::exists(outside + "/Ideas.md")); // a copy, not a move
    EXPECT_EQ(QFile::symLinkTarget(root + "/Folder/loop"), root + "/Folder");

    // A folder that holds the workspace would be copied into itself without end.
    EXPECT_EQ(failure([&] { workspace.importFiles({QUrl::fromLocalFile(dir.path())}, url("Folder")); }),
              "A folder cannot be moved into itself or one of its subfolders.");
}
