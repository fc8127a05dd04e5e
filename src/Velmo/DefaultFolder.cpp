#include "Velmo/DefaultFolder.h"

#include "Editor/Settings/EditorSettings.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QSettings>
#include <QStandardPaths>

namespace velmo::app::DefaultFolder {

static const char storageKey[] = "VelmoDefaultFolder";


std::optional<QString> stored()
{
    const QString path = editor::EditorSettings::userStore()->value(storageKey).toString();
    if (path.isEmpty() || !QFileInfo(path).isDir())
        return std::nullopt;
    return path;
}

bool copySample(const QString& folder)
{
    QDirIterator it(":/sample", QDir::Files, QDirIterator::Subdirectories);
    bool ok = true;
    while (it.hasNext()) {
        const QString source = it.next();
        const QString target = folder + source.mid(QStringLiteral(":/sample").size());
        ok = QDir().mkpath(QFileInfo(target).absolutePath()) && ok;
        if (QFile::exists(target))
            continue;
        ok = QFile::copy(source, target) && ok;
        // Resource copies are read-only; notes must be writable.
        QFile::setPermissions(target, QFile::ReadOwner | QFile::WriteOwner | QFile::ReadGroup | QFile::ReadOther);
    }
    return ok;
}

void seedIfNeeded()
{
    if (stored())
        return;
    QString documents = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    if (documents.isEmpty())
        documents = QDir::homePath();
    const QString folder = documents + "/Velmo";
    if (!QFileInfo::exists(folder) && !(QDir().mkpath(folder) && copySample(folder)))
        return;
    editor::EditorSettings::userStore()->setValue(storageKey, folder);
}

}
