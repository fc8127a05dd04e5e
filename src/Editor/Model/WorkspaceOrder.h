#pragma once

#include <QMap>
#include <QString>
#include <QStringList>
#include <QUrl>
#include <optional>
#include <vector>

namespace velmo::editor {

class WorkspaceNode;

// The sidebar's manual order, kept in ".velmo/order.json" inside the workspace so that it
// travels with the folder. A folder is keyed by its path relative to the root ("" for the root
// itself); a child is named by its last path component. A folder without an entry keeps the
// natural sort.
struct WorkspaceOrder {
    QMap<QString, QStringList> folders; // a QMap, so the file's keys come out sorted

    [[nodiscard]] static QString location(const QUrl& root);
    // A missing or undecodable file gives the empty order.
    [[nodiscard]] static WorkspaceOrder load(const QUrl& root);
    [[nodiscard]] static WorkspaceOrder decode(const QByteArray& json);
    [[nodiscard]] QByteArray encode() const;
    // Creates ".velmo", then replaces the file atomically. Throws MarkdownFileError.
    void save(const QUrl& root) const;

    // Listed children first, by their place in the list (a name listed twice counts at its
    // first place); the rest follow in the order given. Names no child has are passed over.
    [[nodiscard]] std::vector<WorkspaceNode> ordered(std::vector<WorkspaceNode> children, const QString& folder) const;
    // Records a drop: `current` is the folder's names as shown now, so the first drop in a
    // folder freezes its whole order.
    void place(const QString& name, const std::optional<QString>& before, const QString& folder, const QStringList& current);
    void rename(const QString& name, const QString& to, const QString& folder);
    void remove(const QString& name, const QString& folder);
    // A folder moved or renamed: its key and every key below it follow.
    void retargetFolder(const QString& from, const QString& to);

    bool isEmpty() const { return folders.isEmpty(); }
    bool operator==(const WorkspaceOrder&) const = default;
};

}
