#include "Editor/Model/WorkspaceSession.h"

#include "Editor/Model/VelmoPaths.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSaveFile>

namespace velmo::editor {

static QString standardizedPath(const QUrl& url)
{
    return QDir::cleanPath(url.toLocalFile());
}

WorkspaceSession WorkspaceSession::load()
{
    QFile file(VelmoPaths::session());
    if (!file.open(QIODevice::ReadOnly))
        return empty();
    return decode(file.readAll());
}

static std::optional<QString> optionalString(const QJsonObject& object, const char* key)
{
    const QJsonValue value = object.value(QLatin1String(key));
    if (!value.isString())
        return std::nullopt;
    return value.toString();
}

static QStringList stringList(const QJsonObject& object, const char* key)
{
    QStringList list;
    for (const QJsonValue& value : object.value(QLatin1String(key)).toArray()) {
        if (value.isString())
            list << value.toString();
    }
    return list;
}

WorkspaceSession WorkspaceSession::decode(const QByteArray& json)
{
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(json, &error);
    if (error.error != QJsonParseError::NoError || !document.isObject())
        return empty();
    const QJsonObject object = document.object();
    WorkspaceSession session;
    session.rootPath = optionalString(object, "rootPath");
    session.openPaths = stringList(object, "openPaths");
    session.selectedPath = optionalString(object, "selectedPath");
    session.expandedPaths = stringList(object, "expandedPaths");
    const QJsonObject carets = object.value(QLatin1String("carets")).toObject();
    for (auto it = carets.begin(); it != carets.end(); ++it) {
        if (it.value().isDouble())
            session.carets.insert(it.key(), qint64(it.value().toDouble()));
    }
    session.sidebarVisible = object.value(QLatin1String("sidebarVisible")).toBool(true);
    session.outlineVisible = object.value(QLatin1String("outlineVisible")).toBool(true);
    session.quickOpenRecents = stringList(object, "quickOpenRecents");
    session.lastOpenedPath = optionalString(object, "lastOpenedPath");
    return session;
}

QByteArray WorkspaceSession::encode() const
{
    // QJsonObject keeps its keys sorted, which is the file's promised order.
    QJsonObject object;
    if (rootPath)
        object.insert("rootPath", *rootPath);
    object.insert("openPaths", QJsonArray::fromStringList(openPaths));
    if (selectedPath)
        object.insert("selectedPath", *selectedPath);
    object.insert("expandedPaths", QJsonArray::fromStringList(expandedPaths));
    QJsonObject caretObject;
    for (auto it = carets.begin(); it != carets.end(); ++it)
        caretObject.insert(it.key(), double(it.value()));
    object.insert("carets", caretObject);
    object.insert("sidebarVisible", sidebarVisible);
    object.insert("outlineVisible", outlineVisible);
    object.insert("quickOpenRecents", QJsonArray::fromStringList(quickOpenRecents));
    if (lastOpenedPath)
        object.insert("lastOpenedPath", *lastOpenedPath);
    return QJsonDocument(object).toJson(QJsonDocument::Indented);
}

void WorkspaceSession::save() const
{
    if (!VelmoPaths::ensureDirectories())
        return;
    QSaveFile file(VelmoPaths::session());
    if (file.open(QIODevice::WriteOnly)) {
        file.write(encode());
        file.commit();
    }
}

void WorkspaceSession::rememberCaret(qint64 caret, const QUrl& url)
{
    const QString key = standardizedPath(url);
    // The map stops growing at its limit; keys already present go on being updated.
    if (carets.size() >= caretLimit && !carets.contains(key))
        return;
    carets.insert(key, caret);
}

std::optional<qint64> WorkspaceSession::caret(const QUrl& url) const
{
    const auto it = carets.constFind(standardizedPath(url));
    if (it == carets.cend())
        return std::nullopt;
    return *it;
}

void WorkspaceSession::addRecent(const QUrl& url)
{
    const QString path = standardizedPath(url);
    quickOpenRecents.removeAll(path);
    quickOpenRecents.prepend(path);
    while (quickOpenRecents.size() > recentLimit)
        quickOpenRecents.removeLast();
    lastOpenedPath = path;
}

void WorkspaceSession::removeRecent(const QUrl& url)
{
    const QString path = standardizedPath(url);
    quickOpenRecents.removeAll(path);
    if (lastOpenedPath == path) {
        if (quickOpenRecents.isEmpty())
            lastOpenedPath.reset();
        else
            lastOpenedPath = quickOpenRecents.first();
    }
    save();
}

void WorkspaceSession::clearRecents()
{
    quickOpenRecents.clear();
    lastOpenedPath.reset();
}

QList<QUrl> WorkspaceSession::recentURLs() const
{
    QList<QUrl> urls;
    for (const QString& path : quickOpenRecents) {
        if (QFileInfo::exists(path))
            urls << QUrl::fromLocalFile(path);
    }
    return urls;
}

}
