// The driver's editing group: the text view's input path, settings, pictures, menus and quit.
#include "Velmo/UIDriverCommands.h"

#include "MarkdownEngine/Layout/MarkdownEditorCoordinator.h"
#include "Velmo/AppState.h"
#include "Velmo/UIDriver.h"
#include "Velmo/UIWindowHost.h"

#include <QClipboard>
#include <QFileInfo>
#include <QGuiApplication>
#include <QImage>
#include <QMimeData>
#include <QTextBoundaryFinder>

namespace velmo::app::UIDriverCommands {

namespace {

const QString noEditor = QStringLiteral("no editor");

QString range(qsizetype location, qsizetype length)
{
    return QStringLiteral("{%1, %2}").arg(location).arg(length);
}

// The editor takes input only with a view that shows an open note.
bool hasEditor(Context& c)
{
    return c.host && c.state.editor().surface() && c.state.activeDocument();
}

qsizetype characterCount(const QString& text)
{
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, text);
    qsizetype count = 0;
    while (finder.toNextBoundary() > 0)
        ++count;
    return count;
}

QString selection(Context& c)
{
    const EditorTextSurface* surface = c.state.editor().surface();
    return range(surface->selectionStart(), surface->selectionLength());
}

QString selectTheme(Context& c, const QString& name)
{
    // No theme library yet: any id is kept and resolved when themes load.
    if (name.isEmpty())
        return "no theme " + name;
    c.state.settings().setValue("theme", name);
    return "theme " + name;
}

QString sendPaste(Context& c, QMimeData* data)
{
    QGuiApplication::clipboard()->setMimeData(data);
    if (!hasEditor(c))
        return noEditor;
    const OpenDocument* active = c.state.activeDocument();
    c.host->paste();
    const QString text = c.state.editor().surface()->surfaceText();
    return "pasted into " + (active ? active->title() : QStringLiteral("none")) + " via responder chain "
        + QString::number(text.size()) + " characters";
}

}

std::vector<Entry> editingGroup()
{
    return {
        {"wait", [](Context& c, const UIDriverCommand& command) {
             bool ok = false;
             const double seconds = command.argument.toDouble(&ok);
             c.driver.setDelayOverride(ok ? seconds : 1.0);
             return "wait " + command.argument;
         }},
        {"dump", [](Context&, const UIDriverCommand&) { return QStringLiteral("dump"); }},
        {"shot", [](Context& c, const UIDriverCommand& command) -> QString {
             if (!c.host)
                 return QStringLiteral("no window to capture");
             const QString path = expandedPath(command.argument);
             const UIWindowHost::Capture capture = c.host->capture(path);
             if (!capture.ok)
                 return capture.error;
             return "captured \"" + capture.title + "\" to " + path;
         }},
        {"theme", [](Context& c, const UIDriverCommand& command) { return selectTheme(c, command.argument); }},
        {"set", [](Context& c, const UIDriverCommand& command) -> QString {
             const qsizetype equals = command.argument.indexOf(u'=');
             if (equals <= 0)
                 return QStringLiteral("set needs key=value");
             const QString key = command.argument.left(equals);
             const QString value = command.argument.mid(equals + 1);
             if (key == QLatin1String("theme"))
                 return selectTheme(c, value);
             return c.state.settings().assign(key, value).message;
         }},
        {"pasteHTML", [](Context& c, const UIDriverCommand& command) -> QString {
             const auto decoded = QByteArray::fromBase64Encoding(command.argument.toLatin1(),
                                                                 QByteArray::AbortOnBase64DecodingErrors);
             if (!decoded)
                 return QStringLiteral("bad base64");
             auto* data = new QMimeData;
             data->setHtml(QString::fromUtf8(*decoded));
             return sendPaste(c, data);
         }},
        {"pasteImage", [](Context& c, const UIDriverCommand& command) -> QString {
             const QString path = expandedPath(command.argument);
             const QImage image(path);
             if (!QFileInfo::exists(path) || image.isNull())
                 return "no file " + command.argument;
             auto* data = new QMimeData;
             data->setImageData(image);
             return sendPaste(c, data);
         }},
        {"type", [](Context& c, const UIDriverCommand& command) -> QString {
             const QString text = command.freeText();
             if (!hasEditor(c) || !c.host->typeText(text))
                 return noEditor;
             return QString::number(characterCount(text)) + " characters";
         }},
        {"mark", [](Context& c, const UIDriverCommand& command) -> QString {
             if (!hasEditor(c) || !c.host->setMarkedText(command.freeText()))
                 return noEditor;
             const auto marked = c.host->markedRange();
             return "marked " + (marked ? range(marked->location, marked->length) : QStringLiteral("none"))
                 + " selection " + selection(c);
         }},
        {"commit", [](Context& c, const UIDriverCommand& command) -> QString {
             if (!hasEditor(c) || !c.host->commitMarkedText(command.freeText()))
                 return noEditor;
             return "committed selection " + selection(c);
         }},
        {"unmark", [](Context& c, const UIDriverCommand&) -> QString {
             if (!hasEditor(c) || !c.host->unmarkText())
                 return noEditor;
             return QStringLiteral("unmark");
         }},
        {"restyle", [](Context& c, const UIDriverCommand&) -> QString {
             auto* coordinator = qobject_cast<markdown::MarkdownEditorCoordinator*>(c.state.editor().coordinator.data());
             if (!coordinator)
                 return noEditor;
             coordinator->restyleNow();
             return QStringLiteral("restyle");
         }},
        {"text", [](Context& c, const UIDriverCommand&) -> QString {
             const OpenDocument* active = c.state.activeDocument();
             if (!active)
                 return QStringLiteral("no active document");
             return "text[\n" + active->text() + "\ntext]";
         }},
        {"select", [](Context& c, const UIDriverCommand& command) -> QString {
             const QStringList parts = command.argument.split(u',');
             bool locationOK = false;
             bool lengthOK = false;
             const int location = parts.value(0).trimmed().toInt(&locationOK);
             const int length = parts.value(1).trimmed().toInt(&lengthOK);
             if (parts.size() != 2 || !locationOK || !lengthOK || location < 0 || length < 0)
                 return QStringLiteral("select needs loc,length");
             if (!hasEditor(c) || !c.host->select(location, length))
                 return noEditor;
             return selection(c);
         }},
        {"menu", [](Context& c, const UIDriverCommand& command) {
             return c.host ? c.host->performMenu(command.argument) : QStringLiteral("no main menu");
         }},
        {"validate", [](Context& c, const UIDriverCommand&) {
             return c.host ? c.host->validateMenus() : QStringLiteral("no main menu");
         }},
        {"quit", [](Context& c, const UIDriverCommand&) {
             c.state.quit();
             return QStringLiteral("quit");
         }},
    };
}

}
