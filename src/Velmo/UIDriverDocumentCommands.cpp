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

// The workspace has no file operations of its own yet: these stand in for them, with the same
// care for the open note (saved first, retargeted after).
std::optional<QUrl> createNote(AppState& state, const QString& name)
{
    const auto& root = state.workspace().root();
    if (!root || !state.prepareForDocumentSwitch())
        return std::nullopt;
    QString base = name.trimmed().isEmpty() ? QStringLiteral("Untitled") : name.trimmed();
    QString extension = QStringLiteral("md");
    const QFileInfo named(base);
    if (MarkdownFile::markdownExtensions.contains(named.suffix().toLower())) {
        extension = named.suffix();
        base = named.completeBaseName();
    }
    if (!editor::NoteTitle::isValidFilename(base, extension))
        return std::nullopt;
    const QString unique = state.workspace().uniqueName(base, extension, root);
    const QUrl url = QUrl::fromLocalFile(QDir(root->toLocalFile()).filePath(unique));
    try {
        MarkdownFile(url).write("# " + QFileInfo(unique).completeBaseName() + "\n\n");
    } catch (const MarkdownFileError& error) {
        state.reportFileError(error, QObject::tr("Could Not Complete File Operation"));
        return std::nullopt;
    }
    state.workspace().rescan();
    return state.open(url, true) ? std::optional<QUrl>(url) : std::nullopt;
}

bool createFolder(AppState& state, const QString& name)
{
    const auto& root = state.workspace().root();
    if (!root)
        return false;
    const QString base = name.trimmed().isEmpty() ? QStringLiteral("New Folder") : name.trimmed();
    if (!editor::NoteTitle::isValidFilename(base, {}))
        return false;
    const QDir dir(root->toLocalFile());
    QString candidate = base;
    for (int n = 2; QFileInfo::exists(dir.filePath(candidate)); ++n)
        candidate = base + u' ' + QString::number(n);
    if (!QDir().mkpath(dir.filePath(candidate)))
        return false;
    state.workspace().rescan();
    return true;
}

// Moves or renames `from` to `to`, keeping open notes on their files.
bool moveItem(AppState& state, const QUrl& from, const QUrl& to)
{
    const auto under = state.documentsUnder(from);
    if (!state.saveDirtyDocuments(under))
        return false;
    if (QFileInfo::exists(to.toLocalFile()) || !QFile::rename(from.toLocalFile(), to.toLocalFile()))
        return false;
    std::vector<std::pair<OpenDocument*, QUrl>> pairs;
    const QString fromPath = QDir::cleanPath(from.toLocalFile());
    for (OpenDocument* document : under) {
        const QString path = QDir::cleanPath(document->url().toLocalFile());
        pairs.emplace_back(document, QUrl::fromLocalFile(to.toLocalFile() + path.mid(fromPath.size())));
    }
    state.retargetDocuments(pairs);
    state.workspace().rescan();
    return true;
}

bool renameActive(AppState& state, const QString& name)
{
    OpenDocument* document = state.activeDocument();
    if (!document || name.trimmed().isEmpty())
        return false;
    const QFileInfo info(document->url().toLocalFile());
    const QString extension = info.suffix();
    if (!editor::NoteTitle::isValidFilename(name, extension))
        return false;
    if (state.editor().isComposing())
        return false;
    const QUrl target = QUrl::fromLocalFile(info.dir().filePath(extension.isEmpty() ? name : name + u'.' + extension));
    if (!editor::NoteTitle::name(document->text()))
        return moveItem(state, document->url(), target);
    // The note's first line takes the new name, and saving renames the file after it.
    document->setText(editor::NoteTitle::replacingName(document->text(), name));
    return state.save(document, false) && document->url() == target;
}

bool duplicateActive(AppState& state)
{
    OpenDocument* document = state.activeDocument();
    if (!document || !state.saveDirtyDocuments({document}))
        return false;
    const QFileInfo info(document->url().toLocalFile());
    const QString extension = info.suffix();
    QString copy = info.completeBaseName() + " copy";
    for (int n = 2; QFileInfo::exists(info.dir().filePath(copy + u'.' + extension)); ++n)
        copy = info.completeBaseName() + " copy " + QString::number(n);
    const QUrl url = QUrl::fromLocalFile(info.dir().filePath(copy + u'.' + extension));
    try {
        MarkdownFile(url).write(editor::NoteTitle::replacingName(document->text(), copy));
    } catch (const MarkdownFileError& error) {
        state.reportFileError(error, QObject::tr("Could Not Complete File Operation"));
        return false;
    }
    state.workspace().rescan();
    return state.open(url, true) != nullptr;
}

bool deleteActive(AppState& state)
{
    OpenDocument* document = state.activeDocument();
    if (!document || !state.saveDirtyDocuments({document}))
        return false;
    const QString path = document->url().toLocalFile();
    // The Trash keeps it: nothing is destroyed.
    if (!QFile::moveToTrash(path))
        return false;
    state.detach(document);
    state.workspace().rescan();
    return true;
}

bool saveAs(AppState& state, OpenDocument* document, const QUrl& url)
{
    const QFileInfo info(url.toLocalFile());
    if (!editor::NoteTitle::isValidFilename(info.completeBaseName(), info.suffix()) || state.editor().isComposing())
        return false;
    QString text = document->text();
    qsizetype caret = document->caret();
    if (editor::NoteTitle::name(text)) {
        caret = editor::NoteTitle::caretAfterReplacingName(text, info.completeBaseName(), int(caret));
        text = editor::NoteTitle::replacingName(text, info.completeBaseName());
    }
    try {
        MarkdownFile(url).write(text);
    } catch (const MarkdownFileError& error) {
        state.reportFileError(error, QObject::tr("Could Not Save Document"));
        return false;
    }
    // The old file stays where it was: save as copies.
    state.retargetDocuments({{document, url}});
    state.synchronizeEditorContents(text, document, caret);
    document->acceptSavedContents(text, caret);
    state.workspace().rescan();
    return true;
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
             return createNote(c.state, command.argument) ? QStringLiteral("new note") : QStringLiteral("could not create note");
         }},
        {"newfolder", [](Context& c, const UIDriverCommand& command) {
             return createFolder(c.state, command.argument) ? QStringLiteral("new folder") : QStringLiteral("could not create folder");
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
             if (command.argument.isEmpty() || !saveAs(c.state, active, fileURL(path)))
                 return QStringLiteral("could not save as");
             return "saved as " + command.argument;
         }},
        {"duplicate", [](Context& c, const UIDriverCommand&) -> QString {
             if (!c.state.activeDocument())
                 return QStringLiteral("no active document");
             return duplicateActive(c.state) ? QStringLiteral("duplicated active") : QStringLiteral("could not duplicate");
         }},
        {"move", [](Context& c, const UIDriverCommand& command) -> QString {
             const qsizetype bar = command.argument.indexOf(u'|');
             if (bar <= 0 || bar == command.argument.size() - 1)
                 return QStringLiteral("move needs source|folder");
             const QString source = expandedPath(command.argument.left(bar));
             const QString folder = expandedPath(command.argument.mid(bar + 1));
             if (!QFileInfo::exists(source) || !QFileInfo(folder).isDir())
                 return QStringLiteral("could not move");
             const QUrl from = fileURL(source);
             const QUrl to = QUrl::fromLocalFile(QDir(fileURL(folder).toLocalFile()).filePath(fileName(from)));
             return moveItem(c.state, from, to) ? QStringLiteral("moved or imported") : QStringLiteral("could not move");
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
             return renameActive(c.state, command.argument) ? "renamed to " + command.argument : QStringLiteral("could not rename");
         }},
        {"delete", [](Context& c, const UIDriverCommand&) {
             return deleteActive(c.state) ? QStringLiteral("deleted active") : QStringLiteral("could not delete");
         }},
        {"activate", [](Context& c, const UIDriverCommand& command) { return activate(c.state, command.argument); }},
        {"focus", [](Context& c, const UIDriverCommand&) {
             const auto title = c.host ? c.host->focus() : std::nullopt;
             return "keyWindow=" + title.value_or(QStringLiteral("none"));
         }},
    };
}

}
