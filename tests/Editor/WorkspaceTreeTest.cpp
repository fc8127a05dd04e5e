#include "Editor/Model/WorkspaceOrder.h"
#include "Editor/Model/WorkspaceTree.h"
#include "support/TestSupport.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <sys/stat.h>

using namespace velmo::editor;

inline void PrintTo(const QString& text, std::ostream* out)
{
    *out << '"' << text.toStdString() << '"';
}

namespace {

// Lays out a folder from lines: "a/b.md" a file, "a/" a folder, "link -> target" a symlink.
void layOut(const QString& root, const QStringList& entries)
{
    for (const QString& entry : entries) {
        if (entry.contains(" -> ")) {
            const QStringList parts = entry.split(" -> ");
            QDir(root).mkpath(QFileInfo(root + '/' + parts[0]).path());
            ASSERT_TRUE(QFile::link(parts[1], root + '/' + parts[0])) << entry.toStdString();
        } else if (entry.endsWith('/')) {
            QDir(root).mkpath(entry);
        } else {
            QDir(root).mkpath(QFileInfo(root + '/' + entry).path());
            velmo::test::writeBytes(root + '/' + entry, "# x\n");
        }
    }
}

// "name" for a file, "name/" for a folder, "name@" for a link, children in braces.
QString dump(const WorkspaceNode& node)
{
    QString text = node.name() + (node.isDirectory() ? "/" : "") + (node.isSymbolicLink() ? "@" : "");
    if (node.hasChildren()) {
        QStringList children;
        for (const WorkspaceNode& child : node.children())
            children << dump(child);
        text += "{" + children.join(' ') + "}";
    }
    return text;
}

QString dumpChildren(const WorkspaceNode& node)
{
    const QString full = dump(node);
    const qsizetype brace = full.indexOf('{');
    return brace < 0 ? QString() : full.mid(brace + 1, full.size() - brace - 2);
}

}

TEST(WorkspaceTree, listsNotesAndFoldersAsTheSidebarShowsThem)
{
    QTemporaryDir dir;
    layOut(dir.path(), {
        "note 10.md", "note 2.md", "Note 1.md", "A.MD", "a.png", ".hidden.md", ".velmo/order.json",
        "Empty/", "build/x.md", "dist/", "node_modules/m.md", "Notes/build/deep.md", "Notes/b.txt",
        "Notes/z.markdown", "Notes/readme", "folder-link -> Notes", "note-link.md -> A.MD",
        "Notes/up -> ..", "gone.md -> missing.md",
    });
    ASSERT_EQ(::mkfifo(QFile::encodeName(dir.filePath("pipe.md")).constData(), 0600), 0);
    const WorkspaceNode tree = WorkspaceTree::build(QUrl::fromLocalFile(dir.path()));
    // Folders first, then notes, digits compared as numbers and case ignored; a symlinked
    // folder is a childless row; a symlinked note is a note.
    EXPECT_EQ(dumpChildren(tree), "Empty/ folder-link/@ Notes/{up/@ b.txt z.markdown} A.MD gone.md@ "
                                  "Note 1.md note 2.md note 10.md note-link.md@");
    EXPECT_EQ(tree.fileCount(), 8);
    EXPECT_EQ(WorkspaceTree::files(tree).size(), 8u);
    EXPECT_EQ(WorkspaceTree::files(tree)[0]->name(), "b.txt");
}

TEST(WorkspaceTree, followsARootSymlinkAndStopsAtTheDepthLimit)
{
    QTemporaryDir dir;
    layOut(dir.path(), {"real/a/b/c/deep.md", "real/top.md", "root -> real"});
    const WorkspaceNode tree = WorkspaceTree::build(QUrl::fromLocalFile(dir.filePath("root")), 2);
    EXPECT_TRUE(tree.isSymbolicLink());
    // Depth 2 is listed but not opened.
    EXPECT_EQ(dumpChildren(tree), "a/{b/} top.md");
    EXPECT_EQ(dumpChildren(WorkspaceTree::build(QUrl::fromLocalFile(dir.filePath("root")))), "a/{b/{c/{deep.md}}} top.md");
    EXPECT_EQ(dump(WorkspaceTree::build(QUrl::fromLocalFile(dir.filePath("missing")))), "missing");
}

TEST(WorkspaceTree, laysTheManualOrderOverTheSort)
{
    QTemporaryDir dir;
    layOut(dir.path(), {"a.md", "b.md", "c.md", "d.md", "Sub/x.md", "Sub/y.md", "Other/"});
    WorkspaceOrder order;
    // "gone.md" has no file and is passed over; "a.md" listed twice counts at its first place.
    order.folders[""] = QStringList{"c.md", "gone.md", "a.md", "Sub", "a.md"};
    order.folders["Sub"] = QStringList{"y.md"};
    const WorkspaceNode tree = WorkspaceTree::build(QUrl::fromLocalFile(dir.path()), 16, order);
    EXPECT_EQ(dumpChildren(tree), "c.md a.md Sub/{y.md x.md} Other/ b.md d.md");
}

TEST(WorkspaceTree, filterKeepsMatchesAndTheirFolders)
{
    QTemporaryDir dir;
    layOut(dir.path(), {"Reports/q1.md", "Reports/q2.md", "Ideas/report draft.md", "Ideas/other.md", "plan.md"});
    const WorkspaceNode tree = WorkspaceTree::build(QUrl::fromLocalFile(dir.path()));
    struct Case { const char* filter; const char* expected; };
    const Case cases[] = {
        {"", "Ideas/{other.md report draft.md} Reports/{q1.md q2.md} plan.md"},
        {" \t", "Ideas/{other.md report draft.md} Reports/{q1.md q2.md} plan.md"},
        // "Reports" has no matching note: it stays because its own name matches.
        {"REP", "Ideas/{report draft.md} Reports/"},
        {"q1", "Reports/{q1.md}"},
        {"plan", "plan.md"},
        {"md", "Ideas/{other.md report draft.md} Reports/{q1.md q2.md} plan.md"},
    };
    for (const Case& c : cases) {
        const auto filtered = WorkspaceTree::filtered(tree, QString::fromUtf8(c.filter));
        ASSERT_TRUE(filtered) << c.filter;
        EXPECT_EQ(dumpChildren(*filtered), c.expected) << c.filter;
    }
    EXPECT_FALSE(WorkspaceTree::filtered(tree, u"zzz"));

    QTemporaryDir other;
    layOut(other.path(), {QString::fromUtf8("Été.md"), "ete.md", QString::fromUtf8("ÉTUDE.md")});
    const WorkspaceNode accents = WorkspaceTree::build(QUrl::fromLocalFile(other.path()));
    EXPECT_EQ(dumpChildren(*WorkspaceTree::filtered(accents, QString::fromUtf8("ÉT"))), QString::fromUtf8("Été.md ÉTUDE.md"));
    EXPECT_EQ(dumpChildren(*WorkspaceTree::filtered(accents, u"et")), "ete.md");
}

TEST(WorkspaceTree, findsNodesByPath)
{
    QTemporaryDir dir;
    layOut(dir.path(), {"A/B/c.md", "A/Bc/d.md"});
    const WorkspaceNode tree = WorkspaceTree::build(QUrl::fromLocalFile(dir.path()));
    const QUrl c = QUrl::fromLocalFile(dir.filePath("A/B/../B/c.md"));
    const auto chain = WorkspaceTree::path(c, tree);
    ASSERT_EQ(chain.size(), 4u);
    EXPECT_EQ(chain[2]->name(), "B");
    EXPECT_EQ(WorkspaceTree::find(QUrl::fromLocalFile(dir.filePath("A/Bc/d.md")), tree)->name(), "d.md");
    EXPECT_FALSE(WorkspaceTree::find(QUrl::fromLocalFile(dir.filePath("A/B/d.md")), tree));
    EXPECT_FALSE(WorkspaceTree::find(QUrl::fromLocalFile("/elsewhere/c.md"), tree));
    const QUrl root = QUrl::fromLocalFile(dir.path());
    EXPECT_EQ(WorkspaceTree::orderKey(root, root), "");
    EXPECT_EQ(WorkspaceTree::orderKey(QUrl::fromLocalFile(dir.filePath("A/B")), root), "A/B");
}

TEST(WorkspaceTree, naturalOrderOfNames)
{
    const char* sorted[] = {"a", "B", "file 1", "File 2", "file 10", "note 2", "note 10", "note10b", "x9", "x10"};
    for (size_t i = 0; i + 1 < std::size(sorted); ++i)
        EXPECT_LT(WorkspaceTree::compareNames(sorted[i], sorted[i + 1]), 0) << sorted[i];
}
