#include "Editor/Model/WorkspaceOrder.h"
#include "support/TestSupport.h"

#include <QDir>
#include <QTemporaryDir>
#include <gtest/gtest.h>

using namespace velmo::editor;

TEST(WorkspaceOrder, recordsDropsRenamesAndRemovals)
{
    WorkspaceOrder order;
    // The first drop freezes the folder as shown.
    order.place("c.md", QString("a.md"), "", {"a.md", "b.md", "c.md"});
    EXPECT_EQ(order.folders[""], (QStringList{"c.md", "a.md", "b.md"}));
    order.place("c.md", std::nullopt, "", order.folders[""]);
    EXPECT_EQ(order.folders[""], (QStringList{"a.md", "b.md", "c.md"}));
    order.place("a.md", QString("missing"), "", order.folders[""]);
    EXPECT_EQ(order.folders[""], (QStringList{"b.md", "c.md", "a.md"}));

    order.rename("c.md", "see.md", "");
    order.rename("nothing.md", "x.md", "");
    order.rename("a.md", "x.md", "no such folder");
    EXPECT_EQ(order.folders[""], (QStringList{"b.md", "see.md", "a.md"}));
    EXPECT_FALSE(order.folders.contains("no such folder"));

    order.remove("see.md", "");
    EXPECT_EQ(order.folders[""], (QStringList{"b.md", "a.md"}));
    order.remove("b.md", "");
    order.remove("a.md", "");
    EXPECT_TRUE(order.isEmpty()); // an emptied list is dropped
}

TEST(WorkspaceOrder, retargetFolderMovesItsKeyAndThoseBelow)
{
    WorkspaceOrder order;
    order.folders = {{"a", {"1"}}, {"a/x", {"2"}}, {"ab", {"3"}}, {"", {"a"}}};
    order.retargetFolder("a", "b");
    EXPECT_EQ(order.folders, (QMap<QString, QStringList>{{"b", {"1"}}, {"b/x", {"2"}}, {"ab", {"3"}}, {"", {"a"}}}));
    const WorkspaceOrder before = order;
    order.retargetFolder("b", "b");
    EXPECT_EQ(order, before);
}

TEST(WorkspaceOrder, fileRoundTripsAndBadFilesGiveTheEmptyOrder)
{
    QTemporaryDir dir;
    const QUrl root = QUrl::fromLocalFile(dir.path());
    EXPECT_TRUE(WorkspaceOrder::load(root).isEmpty());
    WorkspaceOrder order;
    order.folders = {{"z", {"b.md", "a.md"}}, {"", {"z"}}};
    order.save(root);
    EXPECT_EQ(WorkspaceOrder::location(root), dir.filePath(".velmo/order.json"));
    EXPECT_EQ(WorkspaceOrder::load(root), order);
    const QByteArray bytes = velmo::test::readBytes(WorkspaceOrder::location(root));
    EXPECT_LT(bytes.indexOf("\"\""), bytes.indexOf("\"z\"")); // sorted keys

    for (const char* bad : {"not json", "[]", "{\"folders\": 3}", "{\"folders\": {\"a\": [1]}}"}) {
        velmo::test::writeBytes(WorkspaceOrder::location(root), bad);
        EXPECT_TRUE(WorkspaceOrder::load(root).isEmpty()) << bad;
    }
    // A file standing where ".velmo" must be: the save fails and says so.
    QTemporaryDir blocked;
    velmo::test::writeBytes(blocked.filePath(".velmo"), "");
    EXPECT_ANY_THROW(order.save(QUrl::fromLocalFile(blocked.path())));
}
