#include "Velmo/AppState.h"
#include "Velmo/SidebarModel.h"
#include "support/TestSupport.h"

#include <QAbstractItemModelTester>
#include <QDir>
#include <QMimeData>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <gtest/gtest.h>

using namespace velmo::app;

namespace {

QString rows(const SidebarModel& model, const QModelIndex& parent = {})
{
    QStringList names;
    for (int row = 0; row < model.rowCount(parent); ++row) {
        const QModelIndex index = model.index(row, 0, parent);
        QString name = index.data().toString();
        if (model.rowCount(index) > 0)
            name += "{" + rows(model, index) + "}";
        names << name;
    }
    return names.join(' ');
}

}

TEST(SidebarModel, showsTheFilteredTreeAndTurnsDropsIntoFileOperations)
{
    QTemporaryDir dir;
    for (const char* path : {"Reports/q1.md", "Reports/q2.md", "plan.md", "notes.txt"}) {
        QDir(dir.path()).mkpath(QFileInfo(dir.filePath(path)).path());
        velmo::test::writeBytes(dir.filePath(path), "# x\n");
    }
    AppState state(std::make_unique<velmo::editor::EditorSettings>(), false);
    state.openWorkspace(QUrl::fromLocalFile(dir.path()));
    SidebarModel model(state);
    QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::Warning);

    EXPECT_EQ(rows(model).toStdString(), "Reports{q1 q2} notes plan");
    const QModelIndex q2 = model.indexFor(QUrl::fromLocalFile(dir.filePath("Reports/q2.md")));
    EXPECT_EQ(q2.data(SidebarModel::RelativePathRole).toString(), "Reports/q2.md");
    EXPECT_EQ(model.parent(q2).data().toString(), "Reports");

    state.workspace().setFilter("q1");
    EXPECT_EQ(rows(model).toStdString(), "Reports{q1}");
    state.workspace().setFilter("nothing");
    EXPECT_EQ(model.rowCount(), 0);
    state.workspace().setFilter("");

    // Between rows: a position; onto a folder: into it; onto a note: beside it.
    const QModelIndex reports = model.indexFor(QUrl::fromLocalFile(dir.filePath("Reports")));
    const auto between = model.dropTarget(1, reports);
    EXPECT_TRUE(between.positioned);
    EXPECT_EQ(between.before, QUrl::fromLocalFile(dir.filePath("Reports/q2.md")));
    const auto onto = model.dropTarget(-1, reports);
    EXPECT_EQ(onto.folder, QUrl::fromLocalFile(dir.filePath("Reports")));
    EXPECT_FALSE(onto.positioned);
    const auto beside = model.dropTarget(-1, q2);
    EXPECT_EQ(beside.folder, QUrl::fromLocalFile(dir.filePath("Reports")));
    EXPECT_EQ(beside.before, QUrl::fromLocalFile(dir.filePath("Reports/q2.md")));

    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(dir.filePath("plan.md"))});
    model.dropMimeData(&data, Qt::MoveAction, -1, 0, reports);
    QSignalSpy reset(&model, &QAbstractItemModel::modelReset);
    ASSERT_TRUE(reset.wait(1000));
    EXPECT_EQ(rows(model).toStdString(), "Reports{plan q1 q2} notes");

    // Editing a name renames the file.
    model.setData(model.indexFor(QUrl::fromLocalFile(dir.filePath("notes.txt"))), "todo");
    ASSERT_TRUE(reset.wait(1000));
    EXPECT_TRUE(QFileInfo::exists(dir.filePath("todo.txt")));
}
