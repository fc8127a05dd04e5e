// velmo-cli edit from a shell: the same commands and keys as the editor, as JSON.
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <gtest/gtest.h>

namespace {

struct Outcome {
    int exitCode = -1;
    QJsonObject json;
};

Outcome edit(const QStringList& arguments, const QByteArray& input)
{
    QProcess process;
    process.start(VELMO_CLI_BINARY, QStringList{"edit"} + arguments + QStringList{"-"});
    process.write(input);
    process.closeWriteChannel();
    process.waitForFinished(30000);
    return {process.exitCode(), QJsonDocument::fromJson(process.readAllStandardOutput()).object()};
}

}

TEST(CliEdit, CommandsAndKeysPrintTheNewTextAndSelection)
{
    struct Case {
        QStringList arguments;
        QByteArray input;
        const char* text; // nullptr: the command does not apply
        int location;
        int length;
    };
    const Case cases[] = {
        {{"bold", "--select", "0,4"}, "word", "**word**", 2, 4},
        {{"heading", "2", "--select", "0,0"}, "Title", "## Title", 3, 0},
        {{"newline", "--select", "3,0"}, "- a", "- a\n- ", 6, 0},
        {{"key", "tab", "--select", "3,0"}, "- a", "    - a", 7, 0},
        {{"key", "backspace", "--select", "2,0"}, "- ", "", 0, 0},
        {{"pair", "*", "--select", "0,1"}, "a", "*a*", 1, 1},
        {{"tableCommand", "insertRowBelow", "--select", "0,0"}, "plain", nullptr, 0, 0},
    };
    for (const Case& c : cases) {
        const Outcome outcome = edit(c.arguments, c.input);
        SCOPED_TRACE(c.arguments.join(u' ').toStdString());
        ASSERT_EQ(outcome.exitCode, 0);
        if (!c.text) {
            EXPECT_EQ(outcome.json.value("applies"), QJsonValue(false));
            continue;
        }
        EXPECT_EQ(outcome.json.value("text").toString(), QString::fromUtf8(c.text));
        EXPECT_EQ(outcome.json.value("selection").toArray(), (QJsonArray{c.location, c.length}));
    }
}

TEST(CliEdit, UnknownCommandsAndKeysAreUsageErrors)
{
    for (const QStringList& arguments : {QStringList{"frobnicate", "--select", "0,0"},
                                         QStringList{"key", "escape", "--select", "0,0"},
                                         QStringList{"bold", "--select", "x"}})
        EXPECT_NE(edit(arguments, "text").exitCode, 0) << arguments.join(u' ').toStdString();
}
