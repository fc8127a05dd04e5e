#include "Editor/Model/WorkspaceOrder.h"

#include "Editor/Model/MarkdownFile.h"
#include "Editor/Model/MarkdownFileError.h"
#include "Editor/Model/WorkspaceNode.h"

#include <QDir>
#include <QFile>
#include <QHash>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <algorithm>
#include <limits>

namespace velmo::editor {

QString WorkspaceOrder::location(const QUrl& root)
{
    return QDir::cleanPath(root.toLocalFile()) + QStringLiteral("/.velmo/order.json");
}

WorkspaceOrder WorkspaceOrder::load(const QUrl& root)
{
    QFile file(location(root));
    if (!file.open(QIODevice::ReadOnly))
        return {};
    return decode(file.readAll());
}

WorkspaceOrder WorkspaceOrder::decode(const QByteArray& json)
{
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(json, &error);
    if (error.error != QJsonParseError::NoError || !document.isObject())
        return {};
    const QJsonValue folders = document.object().value(QStringLiteral("folders"));
    if (!folders.isObject())
        return {};
    // Anything not shaped as the file should be makes the whole file count as undecodable.
    WorkspaceOrder order;
    const QJsonObject object = folders.toObject();
    for (auto it = object.begin(); it != object.end(); ++it) {
        if (!it.value().isArray())
            return {};
        QStringList names;
        for (const QJsonValue& name : it.value().toArray()) {
            if (!name.isString())
                return {};
            names << name.toString();
        }
        order.folders.insert(it.key(), names);
    }
    return order;
}

QByteArray WorkspaceOrder::encode() const
{
    QJsonObject object;
    for (auto it = folders.begin(); it != folders.end(); ++it)
        object.insert(it.key(), QJsonArray::fromStringList(it.value()));
    // QJsonObject keeps its keys sorted, which gives the sorted file.
    return QJsonDocument(QJsonObject{{QStringLiteral("folders"), object}}).toJson(QJsonDocument::Indented);
}

void WorkspaceOrder::save(const QUrl& root) const
{
    const QString path = location(root);
    const QString folder = QFileInfo(path).absolutePath();
    if (!QDir().mkpath(folder))
        throw MarkdownFileError::notWritable(folder);
    MarkdownFile::atPath(path).write(QString::fromUtf8(encode()));
}

std::vector<WorkspaceNode> WorkspaceOrder::ordered(std::vector<WorkspaceNode> children, const QString& folder) const
{
    const auto entry = folders.constFind(folder);
    if (entry == folders.cend() || entry->isEmpty())
        return children;
    QHash<QString, qsizetype> index;
    index.reserve(entry->size());
    for (qsizetype i = 0; i < entry->size(); ++i) {
        if (!index.contains(entry->at(i)))
            index.insert(entry->at(i), i);
    }
    constexpr qsizetype unlisted = std::numeric_limits<qsizetype>::max();
    std::vector<std::pair<qsizetype, qsizetype>> keys; // (place in list, place given)
    keys.reserve(children.size());
    for (size_t i = 0; i < children.size(); ++i)
        keys.emplace_back(index.value(children[i].name(), unlisted), qsizetype(i));
    std::sort(keys.begin(), keys.end());
    std::vector<WorkspaceNode> result;
    result.reserve(children.size());
    for (const auto& key : keys)
        result.push_back(std::move(children[size_t(key.second)]));
    return result;
}

void WorkspaceOrder::place(const QString& name, const std::optional<QString>& before, const QString& folder,
                           const QStringList& current)
{
    QStringList list = current;
    list.removeAll(name);
    const qsizetype at = before ? list.indexOf(*before) : -1;
    list.insert(at >= 0 ? at : list.size(), name);
    folders.insert(folder, list);
}

void WorkspaceOrder::rename(const QString& name, const QString& to, const QString& folder)
{
    const auto entry = folders.find(folder);
    if (entry == folders.end())
        return;
    const qsizetype at = entry->indexOf(name);
    if (at >= 0)
        (*entry)[at] = to;
}

void WorkspaceOrder::remove(const QString& name, const QString& folder)
{
    const auto entry = folders.find(folder);
    if (entry == folders.end())
        return;
    entry->removeAll(name);
    if (entry->isEmpty())
        folders.erase(entry);
}

void WorkspaceOrder::retargetFolder(const QString& from, const QString& to)
{
    if (from == to)
        return;
    const QString prefix = from + u'/';
    QMap<QString, QStringList> rebuilt;
    for (auto it = folders.begin(); it != folders.end(); ++it) {
        QString key = it.key();
        if (key == from)
            key = to;
        else if (key.startsWith(prefix))
            key = to + key.mid(from.size());
        rebuilt.insert(key, it.value());
    }
    folders = std::move(rebuilt);
}

}
