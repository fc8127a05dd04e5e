#pragma once

#include <QString>

namespace velmo::app {

// What the sidebar lists: the folder's files or its tags.
enum class SidebarMode { files, tags };

[[nodiscard]] inline QString rawValue(SidebarMode mode)
{
    return mode == SidebarMode::files ? QStringLiteral("files") : QStringLiteral("tags");
}

}
