#pragma once

#include "Editor/Model/MarkdownFile.h"

#include <QString>
#include <QUrl>
#include <vector>

namespace velmo::editor {

// One row of the workspace's file tree. The path is kept, not the URL: a tree of a hundred
// thousand notes is built in one go, and a QUrl per row costs more than the scan.
class WorkspaceNode {
public:
    WorkspaceNode() = default;
    WorkspaceNode(QString path, bool isDirectory, bool isSymbolicLink, std::vector<WorkspaceNode> children = {})
        : m_path(std::move(path)), m_isDirectory(isDirectory), m_isSymbolicLink(isSymbolicLink),
          m_children(std::move(children))
    {
    }

    // Standardized ("." and ".." removed, no trailing "/"); symbolic links are not resolved.
    const QString& path() const { return m_path; }
    QUrl url() const { return QUrl::fromLocalFile(m_path); }
    const QString& id() const { return m_path; }
    QString name() const;
    MarkdownFile file() const { return MarkdownFile::atStandardizedPath(m_path); }
    // For a symbolic link, whether its target is a folder.
    bool isDirectory() const { return m_isDirectory; }
    bool isSymbolicLink() const { return m_isSymbolicLink; }
    const std::vector<WorkspaceNode>& children() const { return m_children; }
    std::vector<WorkspaceNode>& children() { return m_children; }
    bool isEmpty() const { return m_path.isEmpty(); }

    // A file row; a folder is never a leaf, even a childless one.
    bool isLeaf() const { return !m_isDirectory; }
    bool hasChildren() const { return !m_children.empty(); }
    // Every non-directory below, at any depth.
    [[nodiscard]] int fileCount() const;
    [[nodiscard]] std::vector<const WorkspaceNode*> descendantFiles() const;

    bool operator==(const WorkspaceNode&) const = default;

private:
    QString m_path;
    bool m_isDirectory = false;
    bool m_isSymbolicLink = false;
    std::vector<WorkspaceNode> m_children;
};

}
