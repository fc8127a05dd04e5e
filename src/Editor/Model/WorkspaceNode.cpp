#include "Editor/Model/WorkspaceNode.h"

namespace velmo::editor {

QString WorkspaceNode::name() const
{
    const qsizetype slash = m_path.lastIndexOf(u'/');
    return slash < 0 ? m_path : m_path.mid(slash + 1);
}

// The walks below use an explicit stack: a tree made by hand need not respect the scanner's
// depth limit.
int WorkspaceNode::fileCount() const
{
    int count = 0;
    std::vector<const WorkspaceNode*> stack{this};
    while (!stack.empty()) {
        const WorkspaceNode* node = stack.back();
        stack.pop_back();
        for (const WorkspaceNode& child : node->m_children) {
            if (child.m_isDirectory)
                stack.push_back(&child);
            else
                ++count;
        }
    }
    return count;
}

std::vector<const WorkspaceNode*> WorkspaceNode::descendantFiles() const
{
    // Tree order: a node's children in order, depth first.
    std::vector<const WorkspaceNode*> files;
    std::vector<std::pair<const WorkspaceNode*, size_t>> stack{{this, 0}};
    while (!stack.empty()) {
        auto& [node, next] = stack.back();
        if (next == node->m_children.size()) {
            stack.pop_back();
            continue;
        }
        const WorkspaceNode& child = node->m_children[next++];
        if (child.m_isDirectory)
            stack.emplace_back(&child, 0);
        else
            files.push_back(&child);
    }
    return files;
}

}
