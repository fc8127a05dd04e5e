#include "Editor/Model/WorkspaceFile.h"

#include <QDir>
#include <QFileInfo>

namespace velmo::editor {

static QString standardized(const QUrl& url)
{
    return QDir::cleanPath(url.toLocalFile());
}

WorkspaceFile::WorkspaceFile(const QUrl& fileURL, const QString& path)
    : name(QFileInfo(standardized(fileURL)).completeBaseName())
    , relativePath(path)
    , url(QUrl::fromLocalFile(standardized(fileURL)))
{
    const qsizetype slash = path.lastIndexOf(u'/');
    folder = slash < 0 ? QString() : path.left(slash);
}

QString WorkspaceFile::relativePathOf(const QUrl& url, const QUrl& root)
{
    const QString path = standardized(url);
    const QString rootPath = standardized(root);
    // A component boundary is required: "/notes2/a.md" does not lie under "/notes".
    if (path.startsWith(rootPath) && (path.size() == rootPath.size() || path[rootPath.size()] == u'/' || rootPath.endsWith(u'/'))) {
        QString rest = path.mid(rootPath.size());
        while (rest.startsWith(u'/'))
            rest.remove(0, 1);
        if (!rest.isEmpty())
            return rest;
    }
    return QFileInfo(path).fileName();
}

QList<WorkspaceFile> WorkspaceFile::listing(const QList<QUrl>& files, const QUrl& root)
{
    QList<WorkspaceFile> result;
    result.reserve(files.size());
    for (const QUrl& url : files)
        result.append(WorkspaceFile(url, relativePathOf(url, root)));
    return result;
}

QJsonObject WorkspaceFile::toJson() const
{
    return {{"name", name}, {"relativePath", relativePath}, {"folder", folder}, {"url", url.toString()}};
}

WorkspaceFile WorkspaceFile::fromJson(const QJsonObject& object)
{
    WorkspaceFile file;
    file.name = object.value("name").toString();
    file.relativePath = object.value("relativePath").toString();
    file.folder = object.value("folder").toString();
    file.url = QUrl(object.value("url").toString());
    return file;
}

}
