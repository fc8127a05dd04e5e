// The live editor in the real program: typing through the driver reaches the note and the
// disk, and the showcase note is drawn with its boxes, bars and grids on a real X server.
#include "support/TestSupport.h"

#include <QDir>
#include <QFile>
#include <QImage>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <gtest/gtest.h>

using velmo::test::writeBytes;

namespace {

constexpr int timeoutMs = 90000;

class LiveEditor : public ::testing::Test {
protected:
    LiveEditor()
    {
        for (const char* folder : {"home", "config", "data", "support", "notes"})
            QDir(root.path()).mkpath(folder);
    }

    QString path(const QString& relative) const { return root.filePath(relative); }

    QProcessEnvironment environment(const QString& script, const QString& platform) const
    {
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert("HOME", path("home"));
        env.insert("XDG_CONFIG_HOME", path("config"));
        env.insert("XDG_DATA_HOME", path("data"));
        env.insert("VELMO_SUPPORT_DIR", path("support"));
        env.insert("QT_QPA_PLATFORM", platform);
        env.insert("VELMO_UI_DUMP", path("dump.txt"));
        env.insert("VELMO_UI_DUMP_DELAY", "0.5");
        env.insert("VELMO_UI_STEP_DELAY", "0.2");
        env.insert("VELMO_UI_SCRIPT", script);
        return env;
    }

    QString run(const QString& program, const QStringList& arguments, const QProcessEnvironment& env)
    {
        QProcess process;
        process.setProcessEnvironment(env);
        process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        process.start(program, arguments);
        EXPECT_TRUE(process.waitForStarted(timeoutMs));
        EXPECT_TRUE(process.waitForFinished(timeoutMs));
        QFile file(path("dump.txt"));
        return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
    }

    // The body of the step whose header holds `header`.
    static QString step(const QString& dump, const QString& header)
    {
        const qsizetype start = dump.indexOf(header);
        if (start < 0)
            return {};
        const qsizetype end = dump.indexOf(QStringLiteral("\n\n=========="), start);
        return dump.mid(start, end < 0 ? -1 : end - start);
    }

    QTemporaryDir root;
};

TEST_F(LiveEditor, TypedTextReachesTheNoteAndTheDisk)
{
    writeBytes(path("notes/Draft.md"), "# Draft\n");
    const QString script = "openFolder:" + path("notes")
        + "; activate:Draft; select:8,0; type:A paragraph with **bold** words.\\n\\n## Plans\\n\\n- one\\ntwo\\n\\n; "
          "wait:1; save; dump; restyle; text";
    const QString dump = run(VELMO_BINARY, {}, environment(script, "offscreen"));
    const QString checked = step(dump, "step 7: dump");
    ASSERT_FALSE(checked.isEmpty()) << dump.right(2000).toStdString();
    EXPECT_TRUE(checked.contains("modelMatchesBuffer=true")) << checked.toStdString();
    EXPECT_TRUE(checked.contains("diskMatchesBuffer=true")) << checked.toStdString();
    EXPECT_TRUE(checked.contains("hasMarkedText=false"));
    EXPECT_TRUE(checked.contains("emphasisMarker")) << "the styler's fragments are in force";
    EXPECT_TRUE(dump.contains("restyle — restyle"));
    EXPECT_TRUE(dump.contains("# Draft\nA paragraph with **bold** words.\n\n## Plans\n\n- one\n- two\n"));
}

TEST_F(LiveEditor, ListsGrowWithReturnAndTabAndMenusFormatTheSelection)
{
    writeBytes(path("notes/Draft.md"), "# Draft\n");
    // Return continues the list, Tab nests the empty item, Return on an empty nested item
    // brings it back out; then the last word is made bold from the Format menu, and undone.
    const QString script = "openFolder:" + path("notes")
        + "; activate:Draft; select:8,0; type:- one\\ntwo\\n\\tnested\\n\\nend; text; select:35,3; "
          "menu:Format>Bold; text; menu:Edit>Undo; text; wait:1; save; dump";
    const QString dump = run(VELMO_BINARY, {}, environment(script, "offscreen"));
    const QString typed = "# Draft\n- one\n- two\n    - nested\n- end";
    EXPECT_TRUE(dump.contains("text[\n" + typed + "\ntext]")) << dump.left(4000).toStdString();
    EXPECT_TRUE(dump.contains("menu:Format>Bold — performed Format>Bold"));
    EXPECT_TRUE(step(dump, "step 6: select").contains("Bold key=Ctrl+B enabled=true checked=false"));
    EXPECT_TRUE(step(dump, "step 8: text").contains("Bold key=Ctrl+B enabled=true checked=true"))
        << "the menu ticks the format the caret stands in";
    EXPECT_TRUE(dump.contains("text[\n# Draft\n- one\n- two\n    - nested\n- **end**\ntext]"));
    EXPECT_EQ(step(dump, "step 10: text").count(typed), 1) << "undo brings the word back";
    const QString saved = step(dump, "step 13: dump");
    EXPECT_TRUE(saved.contains("modelMatchesBuffer=true")) << saved.toStdString();
    EXPECT_TRUE(saved.contains("diskMatchesBuffer=true"));
}

TEST_F(LiveEditor, ACRLFNoteKeepsItsLineEnds)
{
    writeBytes(path("notes/Draft.md"), "# Draft\r\n\r\n- one\r\n");
    const QString script = "openFolder:" + path("notes") + "; activate:Draft; select:14,0; type:\\ntwo; wait:1; save; dump";
    const QString dump = run(VELMO_BINARY, {}, environment(script, "offscreen"));
    EXPECT_EQ(velmo::test::readBytes(path("notes/Draft.md")), QByteArray("# Draft\r\n\r\n- one\r\n- two\r\n"))
        << dump.right(3000).toStdString();
    EXPECT_TRUE(dump.contains("diskMatchesBuffer=true"));
}

// Pixels near `color`, each channel within `tolerance`.
int count(const QImage& image, QColor color, int tolerance)
{
    int n = 0;
    for (int y = 0; y < image.height(); ++y) {
        const auto* line = reinterpret_cast<const QRgb*>(image.constScanLine(y));
        for (int x = 0; x < image.width(); ++x) {
            const QRgb p = line[x];
            if (std::abs(qRed(p) - color.red()) <= tolerance && std::abs(qGreen(p) - color.green()) <= tolerance
                && std::abs(qBlue(p) - color.blue()) <= tolerance)
                ++n;
        }
    }
    return n;
}

TEST_F(LiveEditor, ShowcaseNoteIsDrawnOnARealXServer)
{
    const QString xvfb = QStandardPaths::findExecutable("xvfb-run");
    if (xvfb.isEmpty())
        GTEST_SKIP() << "xvfb-run is not installed: the screenshot test needs a real X server";
    QFile::copy(velmo::test::sourceDir() + "/resources/sample/Welcome.md", path("notes/Welcome.md"));
    const QString shot = path("welcome.png");
    // The caret on the "## Writing" heading: its markers show there and hide elsewhere.
    const QString script = "openFolder:" + path("notes") + "; activate:Welcome; resize:1100:1500; select:262,0; wait:1; shot:"
        + shot;
    const QString dump = run(xvfb, {"-a", "-s", "-screen 0 1400x1700x24", VELMO_BINARY}, environment(script, "xcb"));
    QImage image(shot);
    ASSERT_FALSE(image.isNull()) << dump.right(3000).toStdString();
    image = image.convertToFormat(QImage::Format_RGB32);
    // Keep a copy beside the build for people to look at.
    image.save(QStringLiteral("live-editor-welcome.png"));
    struct Expectation {
        const char* what;
        QColor color;
        int tolerance;
        int atLeast;
    };
    const Expectation expectations[] = {
        {"code block box", QColor("#F6F8FA"), 1, 3000},
        {"quote bar", QColor("#D0D7DE"), 2, 40},
        {"callout box tinted with the tip colour", QColor(236, 248, 238), 3, 2000},
        {"checked task box", QColor("#0969DA"), 10, 60},
        {"table header fill", QColor(240, 240, 241), 4, 1000},
    };
    for (const Expectation& e : expectations)
        EXPECT_GE(count(image, e.color, e.tolerance), e.atLeast) << e.what;
}

}
