#include "Editor/Model/WorkspaceFolder.h"

#include "Editor/Model/WorkspaceFile.h"
#include "Editor/Model/WorkspaceNode.h"

#include <vector>

namespace velmo::editor {

QList<WorkspaceFolder> WorkspaceFolder::listing(const WorkspaceNode& tree, const QUrl& root)
{
    QList<WorkspaceFolder> folders;
    // Depth first, children in order, with an explicit stack.
    std::vector<std::pair<const WorkspaceNode*, size_t>> stack{{&tree, 0}};
    while (!stack.empty()) {
        auto& [node, next] = stack.back();
        if (next == node->children().size()) {
            stack.pop_back();
            continue;
        }
        const WorkspaceNode& child = node->children()[next++];
        if (!child.isDirectory())
            continue;
        WorkspaceFolder folder;
        folder.name = child.name();
        folder.url = child.url();
        folder.relativePath = WorkspaceFile::relativePathOf(folder.url, root);
        const qsizetype slash = folder.relativePath.lastIndexOf(u'/');
        folder.parent = slash < 0 ? QString() : folder.relativePath.left(slash);
        folder.noteCount = child.fileCount();
        folders.append(folder);
        stack.emplace_back(&child, 0);
    }
    return folders;
}

QJsonObject WorkspaceFolder::toJson() const
{
    return {{"name", name}, {"relativePath", relativePath}, {"parent", parent}, {"url", url.toString()},
            {"noteCount", noteCount}};
}

WorkspaceFolder WorkspaceFolder::fromJson(const QJsonObject& object)
{
    WorkspaceFolder folder;
    folder.name = object.value("name").toString();
    folder.relativePath = object.value("relativePath").toString();
    folder.parent = object.value("parent").toString();
    folder.url = QUrl(object.value("url").toString());
    folder.noteCount = object.value("noteCount").toInt();
    return folder;
}

}
