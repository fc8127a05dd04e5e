#include "Editor/Model/VelmoPaths.h"

#include <QDir>
#include <QStandardPaths>

namespace velmo::editor::VelmoPaths {

QString support()
{
    QString dir = qEnvironmentVariable("VELMO_SUPPORT_DIR");
    if (!dir.isEmpty()) {
        if (dir == u'~' || dir.startsWith(QLatin1String("~/")))
            dir = QDir::homePath() + dir.mid(1);
        return QDir::cleanPath(dir);
    }
    QString base = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
    if (base.isEmpty())
        base = QDir::tempPath();
    return base + "/Velmo";
}

QString themes()
{
    return support() + "/Themes";
}

QString session()
{
    return support() + "/session.json";
}

bool ensureDirectories()
{
    return QDir().mkpath(support()) && QDir().mkpath(themes());
}

}
