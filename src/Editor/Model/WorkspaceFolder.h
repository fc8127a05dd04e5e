#pragma once

#include <QJsonObject>
#include <QList>
#include <QString>
#include <QUrl>

namespace velmo::editor {

class WorkspaceNode;

// A folder of the workspace as pickers see it; paths relative to the root, with "/".
struct WorkspaceFolder {
    QString name;
    QString relativePath;
    QString parent; // relative path of the containing folder, empty at the root
    QUrl url;
    int noteCount = 0; // notes below it, at any depth

    // Every folder of the tree, root excluded, in tree order.
    [[nodiscard]] static QList<WorkspaceFolder> listing(const WorkspaceNode& tree, const QUrl& root);

    // Keys "name", "relativePath", "parent", "url", "noteCount".
    [[nodiscard]] QJsonObject toJson() const;
    [[nodiscard]] static WorkspaceFolder fromJson(const QJsonObject& object);

    bool operator==(const WorkspaceFolder&) const = default;
};

}
