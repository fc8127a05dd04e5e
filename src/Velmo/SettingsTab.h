#pragma once

#include <QString>
#include <QStringList>
#include <optional>

namespace velmo::app {

enum class SettingsTab { general, editing, theme, markdown, about };

// The raw values, in the tabs' order.
inline const QStringList& settingsTabNames()
{
    static const QStringList names = {"general", "editing", "theme", "markdown", "about"};
    return names;
}

[[nodiscard]] inline QString rawValue(SettingsTab tab)
{
    return settingsTabNames().at(int(tab));
}

[[nodiscard]] inline std::optional<SettingsTab> settingsTab(const QString& raw)
{
    const qsizetype index = settingsTabNames().indexOf(raw);
    if (index < 0)
        return std::nullopt;
    return SettingsTab(index);
}

}
