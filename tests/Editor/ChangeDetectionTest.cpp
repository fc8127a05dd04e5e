#include "Editor/Model/DirectoryWatcher.h"
#include "Editor/Model/MarkdownFile.h"
#include "Editor/Model/NoteTextCache.h"
#include "Editor/Model/OwnWrites.h"
#include "support/TestSupport.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>
#include <QThread>
#include <atomic>
#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/stat.h>

using namespace velmo::editor;
using velmo::test::writeBytes;

namespace {

QUrl fileUrl(const QString& path)
{
    return QUrl::fromLocalFile(path);
}

// Waits up to `ms` for `condition`, without an event loop: the watcher calls from its own thread.
template <typename F>
bool eventually(F condition, int ms)
{
    QElapsedTimer timer;
    timer.start();
    while (!condition()) {
        if (timer.elapsed() > ms)
            return false;
        QThread::msleep(5);
    }
    return true;
}

}

TEST(OwnWrites, stampsLastForTheWindowOnBothPathFormsAndTheFolder)
{
    QTemporaryDir dir;
    QDir(dir.path()).mkdir("real");
    ASSERT_TRUE(QFile::link(dir.filePath("real"), dir.filePath("link")));
    QDateTime now = QDateTime::currentDateTimeUtc();
    OwnWrites writes(5.0, [&] { return now; });

    // Written through the symlink: the stamp is on the resolved path, events may use either.
    writes.record(fileUrl(dir.filePath("link/note.md")));
    EXPECT_TRUE(writes.isOwn(dir.filePath("real/note.md")));
    EXPECT_TRUE(writes.isOwn(dir.filePath("link/note.md")));
    EXPECT_TRUE(writes.isOwn(dir.filePath("real")));  // its folder too
    EXPECT_TRUE(writes.isOwn(dir.filePath("real/./note.md")));
    EXPECT_FALSE(writes.isOwn(dir.filePath("real/other.md")));

    now = now.addMSecs(5000);
    EXPECT_TRUE(writes.isOwn(dir.filePath("real/note.md"))) << "the window includes its end";
    now = now.addMSecs(1000);
    EXPECT_FALSE(writes.isOwn(dir.filePath("real/note.md")));

    writes.record(fileUrl(dir.filePath("real/b.md")));
    writes.removeAll();
    EXPECT_FALSE(writes.isOwn(dir.filePath("real/b.md")));
}

TEST(DirectoryWatcher, decidesWhichBatchesMatter)
{
    QTemporaryDir dir;
    writeBytes(dir.filePath("kept.txt"), "x");
    QDir(dir.path()).mkdir("folder");
    const QString own = dir.filePath("own.md");
    DirectoryWatcher watcher(fileUrl(dir.path()), {}, [&](const QString& path) { return path == own; });
    const struct {
        QStringList paths;
        bool notify;
    } cases[] = {
        {{}, false},
        {{dir.filePath(".note.md.velmo-write")}, false},
        {{own}, false},
        {{dir.filePath("note.md")}, true},
        {{dir.filePath("note.MD")}, false},                   // the extension test is case-sensitive
        {{dir.filePath("kept.txt")}, false},                  // another kind of file, still there
        {{dir.filePath("folder")}, false},                    // a new folder alone
        {{dir.filePath("gone.markdown")}, true},              // something vanished
        {{dir.filePath("kept.txt"), dir.filePath("a.md")}, true},
    };
    writeBytes(dir.filePath("note.MD"), "x");
    for (const auto& c : cases)
        EXPECT_EQ(watcher.shouldNotify(c.paths), c.notify) << c.paths.join(", ").toStdString();
}

TEST(DirectoryWatcher, reportsOutsideChangesAnywhereButNotOurOwn)
{
    QTemporaryDir dir;
    QDir(dir.path()).mkpath("a/b");
    writeBytes(dir.filePath("a/b/deep.md"), "one");
    OwnWrites own;
    std::atomic<int> calls{0};
    DirectoryWatcher watcher(
        fileUrl(dir.path()), [&] { ++calls; }, [&](const QString& path) { return own.isOwn(path); }, 50);
    watcher.start();
    ASSERT_TRUE(eventually([&] { return watcher.isWatching(); }, 2000));
    EXPECT_EQ(watcher.watchCount(), 3);

    writeBytes(dir.filePath("a/b/deep.md"), "two");
    ASSERT_TRUE(eventually([&] { return calls > 0; }, 2000));

    // Our own atomic write: its temporary file is hidden and the note is stamped.
    QThread::msleep(150);
    calls = 0;
    own.record(fileUrl(dir.filePath("a/b/deep.md")));
    MarkdownFile::atPath(dir.filePath("a/b/deep.md")).write("three");
    QThread::msleep(300);
    EXPECT_EQ(calls, 0);

    // A folder that appears is watched, also for what was put in it before the watch.
    QDir(dir.path()).mkpath("new/inner");
    writeBytes(dir.filePath("new/inner/early.md"), "x");
    ASSERT_TRUE(eventually([&] { return calls > 0; }, 2000));
    ASSERT_TRUE(eventually([&] { return watcher.watchCount() == 5; }, 2000));
    calls = 0;
    QThread::msleep(100);
    writeBytes(dir.filePath("new/inner/late.md"), "y");
    ASSERT_TRUE(eventually([&] { return calls > 0; }, 2000));

    // A folder that goes is dropped.
    ASSERT_TRUE(QDir(dir.filePath("new")).removeRecursively());
    ASSERT_TRUE(eventually([&] { return watcher.watchCount() == 3; }, 2000));

    watcher.stop();
    EXPECT_FALSE(watcher.isWatching());
    calls = 0;
    writeBytes(dir.filePath("after.md"), "z");
    QThread::msleep(150);
    EXPECT_EQ(calls, 0) << "no handler runs after stop";
}

TEST(DirectoryWatcher, limitsAreReportedAndAFolderThatCannotBeWatchedIsNoFailure)
{
    QTemporaryDir dir;
    QDir(dir.path()).mkpath("a/b/c");
    std::atomic<int> limits{0};
    DirectoryWatcher limited(fileUrl(dir.path()), [] {}, {});
    limited.setWatchLimit(2);
    limited.setLimitHandler([&] { ++limits; });
    limited.start();
    ASSERT_TRUE(eventually([&] { return limits == 1; }, 2000));
    EXPECT_TRUE(limited.isWatching());
    EXPECT_EQ(limited.watchCount(), 2);

    DirectoryWatcher missing(fileUrl("/nonexistent/velmo-folder"), [] {}, {});
    missing.start();
    QThread::msleep(50);
    EXPECT_FALSE(missing.isWatching());
}

TEST(NoteTextCache, readsOnlyWhatChangedAndTrustsDateAndSize)
{
    QTemporaryDir dir;
    NoteTextCache cache;
    const QString a = dir.filePath("a.md");
    const QString b = dir.filePath("b.md");
    writeBytes(a, "alpha");
    writeBytes(b, "beta");
    EXPECT_EQ(cache.text(fileUrl(a)), "alpha");
    EXPECT_EQ(cache.text(fileUrl(b)), "beta");

    // Same size, same date: the old text comes back; date and size are the whole identity.
    struct stat before {};
    ::stat(QFile::encodeName(a).constData(), &before);
    writeBytes(a, "ALPHA");
    const timespec times[2] = {before.st_atim, before.st_mtim};
    ::utimensat(AT_FDCWD, QFile::encodeName(a).constData(), times, 0);
    EXPECT_EQ(cache.text(fileUrl(a)), "alpha");

    // A new size is a new version.
    writeBytes(a, "alpha, longer");
    EXPECT_EQ(cache.text(fileUrl(a)), "alpha, longer");
    EXPECT_EQ(cache.text(fileUrl(b)), "beta");

    QFile::remove(b);
    EXPECT_FALSE(cache.text(fileUrl(b)));
    EXPECT_FALSE(cache.text(fileUrl(dir.path()))) << "a folder has no text";
}

TEST(NoteTextCache, aWriteFeedsTheSharedCache)
{
    QTemporaryDir dir;
    const QString path = dir.filePath("w.md");
    MarkdownFile::atPath(path).write("written");
    // Overwrite the bytes but keep date and size: only a cache hit can still say "written".
    struct stat st {};
    ::stat(QFile::encodeName(path).constData(), &st);
    writeBytes(path, "WRITTEN");
    const timespec times[2] = {st.st_atim, st.st_mtim};
    ::utimensat(AT_FDCWD, QFile::encodeName(path).constData(), times, 0);
    EXPECT_EQ(NoteTextCache::shared().text(fileUrl(path)), "written");
    NoteTextCache::shared().forget(fileUrl(path));
    EXPECT_EQ(NoteTextCache::shared().text(fileUrl(path)), "WRITTEN");
}
