#pragma once

#include "Editor/Model/WorkspaceNode.h"
#include "Editor/Model/WorkspaceOrder.h"

#include <QSet>
#include <QString>
#include <QStringView>
#include <QUrl>
#include <optional>
#include <vector>

namespace velmo::editor {

// The scanner that turns a folder into a tree of WorkspaceNode values, and the walks over it.
class WorkspaceTree {
public:
    WorkspaceTree() = delete;

    // Names never listed, at any level.
    static const QSet<QString> ignoredNames;
    static constexpr int defaultMaxDepth = 16;

    // Folders first, then notes (files with a Markdown extension), each in natural order
    // ("note 2" before "note 10", case ignored), with the manual order laid over that.
    // Hidden names are skipped; symlinked folders are listed but never followed (a symlink
    // given as the root is); a folder that is its own ancestor is listed without children.
    // A folder that cannot be listed is empty. Never fails.
    [[nodiscard]] static WorkspaceNode build(const QUrl& root, int maxDepth = defaultMaxDepth,
                                             const WorkspaceOrder& order = {});

    // Keeps files whose lower-cased name contains the trimmed, lower-cased text, and folders
    // with such files; a folder with none stays, childless, when its own name matches.
    // Absent when nothing is left; an empty text returns the node unchanged.
    [[nodiscard]] static std::optional<WorkspaceNode> filtered(const WorkspaceNode& node, QStringView text);

    // All files, tree order.
    [[nodiscard]] static std::vector<const WorkspaceNode*> files(const WorkspaceNode& node);
    // By standardized path; null when absent.
    [[nodiscard]] static const WorkspaceNode* find(const QUrl& url, const WorkspaceNode& node);
    // The nodes from `node` down to the one at `url`, both included; empty when absent.
    [[nodiscard]] static std::vector<const WorkspaceNode*> path(const QUrl& url, const WorkspaceNode& node);
    // The folder's path relative to the root, "" for the root itself: the key of the manual order.
    [[nodiscard]] static QString orderKey(const QUrl& folder, const QUrl& root);

    // Natural order of two names, as the sidebar sorts them (negative, zero, positive).
    [[nodiscard]] static int compareNames(const QString& a, const QString& b);
};

}
