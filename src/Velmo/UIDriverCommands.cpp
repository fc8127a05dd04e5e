#include "Velmo/UIDriverCommands.h"

#include <QDir>
#include <QHash>

namespace velmo::app::UIDriverCommands {

const Entry* find(const QString& name)
{
    static const auto table = [] {
        std::vector<Entry> entries;
        for (auto group : {documentGroup, tagGroup, panelGroup, graphGroup, editingGroup}) {
            for (Entry& entry : group())
                entries.push_back(std::move(entry));
        }
        return entries;
    }();
    static const auto index = [] {
        QHash<QString, const Entry*> byName;
        for (const Entry& entry : table) {
            if (!byName.contains(entry.name))
                byName.insert(entry.name, &entry);
        }
        return byName;
    }();
    return index.value(name, nullptr);
}

QString expandedPath(const QString& path)
{
    if (path == u'~' || path.startsWith(QLatin1String("~/")))
        return QDir::homePath() + path.mid(1);
    return path;
}

std::vector<Entry> graphGroup()
{
    // The relationship graph is not built yet; its commands come with it.
    return {};
}

}
