// The driver's tag and panel groups: what the sidebar shows and which panels are open.
#include "Velmo/UIDriverCommands.h"

#include "MarkdownEngine/Core/TextCharacters.h"
#include "Velmo/AppState.h"
#include "Velmo/UIWindowHost.h"

#include <QFileInfo>

namespace velmo::app::UIDriverCommands {

namespace {

// "off" switches a panel off; anything else, and no argument, switches it on.
bool switchedOn(const UIDriverCommand& command)
{
    return command.argument != QLatin1String("off");
}

QString flag(bool value)
{
    return value ? QStringLiteral("true") : QStringLiteral("false");
}

constexpr int minimumWidth = 760;
constexpr int minimumHeight = 520;

QString resize(Context& c, const UIDriverCommand& command)
{
    static const QString usage = QStringLiteral("resize needs width:height (minimum 760:520), optionally |title|screen");
    const QStringList rest = command.third.split(u'|');
    bool widthOK = false;
    bool heightOK = false;
    const int width = command.argument.toInt(&widthOK);
    const int height = rest.value(0).toInt(&heightOK);
    if (!widthOK || !heightOK)
        return usage;
    if (!c.host)
        return QStringLiteral("no window to resize");
    return c.host->resize(std::max(width, minimumWidth), std::max(height, minimumHeight), rest.value(1), rest.value(2));
}

}

std::vector<Entry> tagGroup()
{
    return {
        {"tag", [](Context& c, const UIDriverCommand& command) {
             c.state.selectTag(command.freeText());
             return "tag " + command.freeText();
         }},
        {"sidebar", [](Context& c, const UIDriverCommand& command) -> QString {
             const QString mode = command.freeText();
             if (mode == QLatin1String("files"))
                 c.state.setSidebarMode(SidebarMode::files);
             else if (mode == QLatin1String("tags"))
                 c.state.setSidebarMode(SidebarMode::tags);
             else
                 return "no sidebar mode " + mode;
             return "sidebar " + mode;
         }},
    };
}

std::vector<Entry> panelGroup()
{
    return {
        {"filter", [](Context& c, const UIDriverCommand& command) {
             editor::Workspace& workspace = c.state.workspace();
             workspace.setFilter(command.argument);
             const auto tree = workspace.filteredTree();
             return "filter " + command.argument + " files=" + QString::number(tree ? tree->fileCount() : 0);
         }},
        {"resize", resize},
        {"settings", [](Context& c, const UIDriverCommand& command) {
             if (switchedOn(command))
                 c.state.showSettings();
             else
                 c.state.closeSettings();
             return "settings visible " + flag(c.state.isSettingsVisible());
         }},
        {"tab", [](Context& c, const UIDriverCommand& command) -> QString {
             const auto tab = settingsTab(command.argument);
             if (!tab)
                 return "no tab " + command.argument;
             c.state.setSettingsTab(*tab);
             return "tab " + rawValue(*tab);
         }},
        {"find", [](Context& c, const UIDriverCommand& command) {
             c.state.setFindVisible(switchedOn(command));
             if (!command.third.isEmpty())
                 c.state.setFindQuery(command.third);
             return "find visible " + flag(c.state.isFindVisible()) + " query " + c.state.findQuery() + " count ";
         }},
        {"search", [](Context& c, const UIDriverCommand& command) {
             c.state.setSearchVisible(switchedOn(command));
             QString note = "search visible " + flag(c.state.isSearchVisible());
             if (!command.third.isEmpty())
                 note += " query " + command.third;
             return note;
         }},
    };
}

}
