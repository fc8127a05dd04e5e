#pragma once

#include <QJsonObject>
#include <QList>
#include <QString>
#include <QUrl>

namespace velmo::editor {

// A note as searches and pickers see it. Paths use "/" and are relative to the root.
struct WorkspaceFile {
    QString name;         // file name without extension
    QString relativePath; // the last path component when the file lies outside the root
    QString folder;       // relativePath without its last component; empty at the root
    QUrl url;             // standardized

    WorkspaceFile() = default;
    WorkspaceFile(const QUrl& url, const QString& relativePath);

    // What follows the root's path, without a leading "/"; else the last path component.
    [[nodiscard]] static QString relativePathOf(const QUrl& url, const QUrl& root);
    [[nodiscard]] static QList<WorkspaceFile> listing(const QList<QUrl>& files, const QUrl& root);

    // Keys "name", "relativePath", "folder", "url".
    [[nodiscard]] QJsonObject toJson() const;
    [[nodiscard]] static WorkspaceFile fromJson(const QJsonObject& object);

    bool operator==(const WorkspaceFile&) const = default;
};

}
