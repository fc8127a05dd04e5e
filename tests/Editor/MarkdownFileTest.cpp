#include "Editor/Model/MarkdownFile.h"
#include "support/TestSupport.h"

#include <QDir>
#include <QFile>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <csignal>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace velmo::editor;
using velmo::test::readBytes;
using velmo::test::writeBytes;

namespace {

class MarkdownFileTest : public ::testing::Test {
protected:
    QString path(const QString& name) const { return dir.filePath(name); }
    QTemporaryDir dir;
};

}

TEST_F(MarkdownFileTest, decodesByTheOrderOfEncodings)
{
    struct Case { QByteArray bytes; QString text; };
    const Case cases[] = {
        {"caf\xC3\xA9", QString::fromUtf8("café")},
        {"\xEF\xBB\xBFhi", "hi"},
        {QByteArray("\xFF\xFEh\0i\0", 6), "hi"},
        {QByteArray("\xE9\0 \0x\0", 6), QString::fromUtf8("é x")}, // little-endian, no mark
        {"caf\xE9 au lait", QString::fromLatin1("caf\xE9 au lait")}, // Latin-1, even length or not
        {"caf\xE9", QString::fromLatin1("caf\xE9")},
    };
    for (const Case& c : cases)
        EXPECT_EQ(MarkdownFile::decode(c.bytes), c.text) << c.bytes.toHex().toStdString();
}

TEST_F(MarkdownFileTest, writeKeepsAByteOrderMarkAndNeverAddsOne)
{
    const MarkdownFile withBom = MarkdownFile::atPath(path("bom.md"));
    writeBytes(withBom.path(), "\xEF\xBB\xBFold");
    withBom.write("new\r\nline");
    EXPECT_EQ(readBytes(withBom.path()), QByteArray("\xEF\xBB\xBFnew\r\nline"));
    withBom.write(withBom.read()); // a decoded text without the mark keeps it once
    EXPECT_EQ(readBytes(withBom.path()), QByteArray("\xEF\xBB\xBFnew\r\nline"));

    const MarkdownFile plain = MarkdownFile::atPath(path("plain.md"));
    plain.write("x");
    EXPECT_EQ(readBytes(plain.path()), QByteArray("x"));
}

TEST_F(MarkdownFileTest, latinFileIsSavedAsUtf8)
{
    const MarkdownFile file = MarkdownFile::atPath(path("latin.md"));
    writeBytes(file.path(), "caf\xE9");
    file.write(file.read());
    EXPECT_EQ(readBytes(file.path()), QByteArray("caf\xC3\xA9"));
}

TEST_F(MarkdownFileTest, writeKeepsPermissionsAndLeavesNoTemporary)
{
    const MarkdownFile file = MarkdownFile::atPath(path("secret.md"));
    writeBytes(file.path(), "a");
    ASSERT_EQ(::chmod(QFile::encodeName(file.path()).constData(), 0600), 0);
    file.write("b");
    struct stat st {};
    ASSERT_EQ(::stat(QFile::encodeName(file.path()).constData(), &st), 0);
    EXPECT_EQ(st.st_mode & 0777, 0600u);
    EXPECT_EQ(QDir(dir.path()).entryList(QDir::Files | QDir::Hidden), QStringList{"secret.md"});
}

TEST_F(MarkdownFileTest, aDirectoryAtTheTargetIsNotWritable)
{
    QDir(dir.path()).mkdir("folder.md");
    const MarkdownFile file = MarkdownFile::atPath(path("folder.md"));
    try {
        file.write("x");
        FAIL() << "wrote over a directory";
    } catch (const MarkdownFileError& error) {
        EXPECT_EQ(error.kind(), MarkdownFileError::Kind::notWritable);
        EXPECT_EQ(error.message(), "Velmo cannot write to folder.md.");
    }
    EXPECT_EQ(QDir(dir.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot), QStringList{"folder.md"});
}

TEST_F(MarkdownFileTest, missingFileAndTitles)
{
    const MarkdownFile file = MarkdownFile::atPath(path("gone.md"));
    EXPECT_FALSE(file.modificationDate());
    EXPECT_THROW(file.read(), MarkdownFileError);
    EXPECT_EQ(file.title("---\n\n## Plans\n"), "Plans");
    EXPECT_EQ(file.title("####### x\nbody"), "gone");
    EXPECT_EQ(file.title("text first\n# Heading"), "gone");
    EXPECT_TRUE(MarkdownFile::atPath("/a/b.MD").isMarkdown());
    EXPECT_FALSE(MarkdownFile::atPath("/a/b.png").isMarkdown());
    EXPECT_EQ(MarkdownFile::atPath("/a/./c/../b.md").path(), "/a/b.md");
}

// A writer killed at any moment leaves either the old note or the new one, whole.
TEST_F(MarkdownFileTest, aKilledWriteNeverTearsTheNote)
{
    const MarkdownFile file = MarkdownFile::atPath(path("note.md"));
    const QByteArray a(300'000, 'a');
    const QByteArray b(300'000, 'b');
    const QString textA = QString::fromLatin1(a);
    const QString textB = QString::fromLatin1(b);
    file.write(textA);
    for (int round = 0; round < 20; ++round) {
        const pid_t child = fork();
        ASSERT_GE(child, 0);
        if (child == 0) {
            for (int i = 0;; ++i)
                file.write(i % 2 ? textA : textB);
        }
        ::usleep(1000 + QRandomGenerator::global()->bounded(20'000));
        ::kill(child, SIGKILL);
        ::waitpid(child, nullptr, 0);
        const QByteArray onDisk = readBytes(file.path());
        EXPECT_TRUE(onDisk == a || onDisk == b) << "round " << round << " size " << onDisk.size();
    }
}
