#include "CliCommand.h"

#include <QGuiApplication>
#include <cstdio>
#include <cstring>

using namespace velmo::cli;

namespace {

struct Command {
    const char* name;
    CommandFunction run;
    const char* usage;
};

constexpr Command commands[] = {
    {"stats", runStats, "stats FILE|-"},
    {"outline", runOutline, "outline FILE|-"},
    {"parse", runParse, "parse [--no-wiki-links …] FILE|-"},
    {"tags", runTags, "tags FILE|-"},
    {"tex", runTex, "tex [--display] [--size PT] [--png FILE] SOURCE"},
    {"highlight", runHighlight, "highlight LANGUAGE FILE|-"},
    {"edit", runEdit, "edit COMMAND [ARGUMENT] --select LOC,LEN FILE|-"},
    {"style", runStyle, "style FILE|- [--caret N | --select LOC,LEN] [--raw] [--no-reveal] [--highlight] [--runs]"},
};

void printUsage()
{
    std::fputs("usage: velmo-cli COMMAND ...\n", stderr);
    for (const Command& command : commands)
        std::fprintf(stderr, "  velmo-cli %s\n", command.usage);
}

}

int main(int argc, char** argv)
{
    // Fonts and pictures (tex) need a GUI application object; it never opens a window.
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    QStringList arguments = app.arguments().mid(1);
    if (arguments.isEmpty()) {
        printUsage();
        return 2;
    }
    const QString name = arguments.takeFirst();
    for (const Command& command : commands) {
        if (name == QLatin1String(command.name))
            return command.run(arguments);
    }
    printUsage();
    return 2;
}
