// The driver's document group: folders and notes.
#include "Velmo/UIDriverCommands.h"

#include "Editor/Model/NoteTitle.h"
#include "Velmo/AppState.h"
#include "Velmo/UIWindowHost.h"

#include <QClipboard>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QGuiApplication>
#include <QMimeData>

namespace velmo::app::UIDriverCommands {

namespace {

using editor::MarkdownFile;
using editor::MarkdownFileError;

QUrl fileURL(const QString& path)
{
    return QUrl::fromLocalFile(QDir::cleanPath(QFileInfo(path).absoluteFilePath()));
}

QString fileName(const QUrl& url)
{
    return QFileInfo(url.toLocalFile()).fileName();
}

QString activate(AppState& state, const QString& name)
{
    const QString wanted = name.toLower();
    auto matches = [&](const QUrl& url) {
        const QFileInfo info(url.toLocalFile());
        return info.fileName().toLower() == wanted || info.completeBaseName().toLower() == wanted;
    };
    for (OpenDocument* document : state.documents()) {
        if (matches(document->url())) {
            state.selectDocument(document->id());
            return "opened and activated " + name;
        }
    }
    QStringList names;
    for (const MarkdownFile& note : state.workspace().notes()) {
        if (matches(note.url()) && state.open(note.url(), true))
            return "opened and activated " + name;
        names << note.name();
    }
    return "could not open " + name + " — workspace has: " + (names.isEmpty() ? QStringLiteral("nothing") : names.join(", "));
}

}

std::vector<Entry> documentGroup()
{
    return {
        {"open", [](Context& c, const UIDriverCommand& command) {
             c.state.openAny(fileURL(expandedPath(command.argument)));
             return "opened " + command.argument;
         }},
        {"openClipboard", [](Context& c, const UIDriverCommand& command) -> QString {
             const QString path = expandedPath(command.argument);
             if (!QFileInfo::exists(path))
                 return "no file " + command.argument;
             QClipboard* clipboard = QGuiApplication::clipboard();
             auto* data = new QMimeData;
             data->setUrls({fileURL(path)});
             clipboard->setMimeData(data);
             QStringList names;
             const QMimeData* pasted = clipboard->mimeData();
             for (const QUrl& url : pasted ? pasted->urls() : QList<QUrl>{}) {
                 if (!url.isLocalFile())
                     continue;
                 c.state.openAny(url);
                 names << fileName(url);
             }
             return names.isEmpty() ? QStringLiteral("nothing on the pasteboard") : "opened " + names.join(", ");
         }},
        {"openFolder", [](Context& c, const UIDriverCommand& command) -> QString {
             const QString path = expandedPath(command.argument);
             if (path.isEmpty() || !QFileInfo(path).isDir())
                 return "no folder " + command.argument;
             c.state.openWorkspace(fileURL(path));
             return "folder " + c.state.workspace().displayName() + " notes=" + QString::number(c.state.workspace().notes().size());
         }},
        {"new", [](Context& c, const UIDriverCommand& command) {
             const QString name = command.argument.isEmpty() ? QStringLiteral("Untitled") : command.argument;
             return c.state.newNote(name) ? QStringLiteral("new note") : QStringLiteral("could not create note");
         }},
        {"newfolder", [](Context& c, const UIDriverCommand& command) {
             const QString name = command.argument.isEmpty() ? QStringLiteral("New Folder") : command.argument;
             return c.state.newFolder(name) ? QStringLiteral("new folder") : QStringLiteral("could not create folder");
         }},
        {"folderselect", [](Context& c, const UIDriverCommand& command) -> QString {
             // The path is taken as written: relative to the workspace root when not absolute.
             const auto& root = c.state.workspace().root();
             if (!root)
                 return QStringLiteral("no workspace folder");
             const QString path = QDir(root->toLocalFile()).filePath(command.argument);
             const QUrl url = QUrl::fromLocalFile(QDir::cleanPath(path));
             if (!QFileInfo(path).isDir() || !c.state.workspace().contains(url))
                 return QStringLiteral("no workspace folder");
             c.state.workspace().select(url);
             c.state.workspace().setExpanded(url, true);
             return "selected folder " + command.argument;
         }},
        {"save", [](Context& c, const UIDriverCommand&) {
             OpenDocument* active = c.state.activeDocument();
             return active && c.state.save(active, true) ? QStringLiteral("saved") : QStringLiteral("could not save");
         }},
        {"saveas", [](Context& c, const UIDriverCommand& command) -> QString {
             OpenDocument* active = c.state.activeDocument();
             if (!active)
                 return QStringLiteral("no active document");
             QString path = command.argument;
             if (QFileInfo(path).isRelative() && c.state.workspace().root())
                 path = QDir(c.state.workspace().root()->toLocalFile()).filePath(path);
             if (command.argument.isEmpty() || !c.state.saveAs(active, fileURL(path)))
                 return QStringLiteral("could not save as");
             return "saved as " + command.argument;
         }},
        {"duplicate", [](Context& c, const UIDriverCommand&) -> QString {
             if (!c.state.activeDocument())
                 return QStringLiteral("no active document");
             return c.state.duplicate(c.state.activeDocument()->url()) ? QStringLiteral("duplicated active")
                                                                          : QStringLiteral("could not duplicate");
         }},
        {"move", [](Context& c, const UIDriverCommand& command) -> QString {
             const qsizetype bar = command.argument.indexOf(u'|');
             if (bar <= 0 || bar == command.argument.size() - 1)
                 return QStringLiteral("move needs source|folder");
             const QString source = expandedPath(command.argument.left(bar));
             const QString folder = expandedPath(command.argument.mid(bar + 1));
             const bool moved = c.state.receiveSidebarDrop({fileURL(source)}, fileURL(folder), std::nullopt, false);
             return moved ? QStringLiteral("moved or imported") : QStringLiteral("could not move");
         }},
        {"close", [](Context& c, const UIDriverCommand&) -> QString {
             OpenDocument* active = c.state.activeDocument();
             if (!active)
                 return QStringLiteral("no active document");
             return c.state.close(active) ? QStringLiteral("closed active") : QStringLiteral("could not close");
         }},
        {"closeall", [](Context& c, const UIDriverCommand&) {
             return c.state.closeAll() ? QStringLiteral("closed all") : QStringLiteral("could not close all");
         }},
        {"home", [](Context& c, const UIDriverCommand&) {
             return c.state.goHome() ? QStringLiteral("home") : QStringLiteral("could not leave the note");
         }},
        {"rename", [](Context& c, const UIDriverCommand& command) {
             return c.state.renameActive(command.argument) ? "renamed to " + command.argument : QStringLiteral("could not rename");
         }},
        {"delete", [](Context& c, const UIDriverCommand&) {
             return c.state.deleteActive() ? QStringLiteral("deleted active") : QStringLiteral("could not delete");
         }},
        {"activate", [](Context& c, const UIDriverCommand& command) { return activate(c.state, command.argument); }},
        {"focus", [](Context& c, const UIDriverCommand&) {
             const auto title = c.host ? c.host->focus() : std::nullopt;
             return "keyWindow=" + title.value_or(QStringLiteral("none"));
         }},
    };
}

}
