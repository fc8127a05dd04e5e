#include "Velmo/UIDump.h"

#include "MarkdownEngine/Layout/MarkdownEditorCoordinator.h"
#include "MarkdownEngine/Layout/MarkdownTextStorage.h"
#include "MarkdownEngine/Layout/MarkdownTextView.h"
#include "MarkdownEngine/Styling/MarkdownFragmentDump.h"
#include "Velmo/AppState.h"
#include "Velmo/EditorLineEnds.h"
#include "Velmo/UIDriver.h"
#include "Velmo/UIWindowHost.h"

#include <QFile>
#include <QFileInfo>
#include <QTimer>

namespace velmo::app {

namespace {

QString flag(bool value)
{
    return value ? QStringLiteral("true") : QStringLiteral("false");
}

QString number(double value)
{
    return QString::number(value, 'g', 10);
}

QString orNone(const std::optional<QString>& value)
{
    return value ? *value : QStringLiteral("none");
}

// A short excerpt on one line: line ends and tabs shown as escapes.
QString excerpt(QStringView text)
{
    QString result;
    result.reserve(text.size() + 2);
    result += u'‹';
    for (const QChar c : text) {
        if (c == u'\n')
            result += QLatin1String("\\n");
        else if (c == u'\r')
            result += QLatin1String("\\r");
        else if (c == u'\t')
            result += QLatin1String("\\t");
        else
            result += c;
    }
    result += u'›';
    return result;
}

QString rect(const QRectF& r)
{
    return QStringLiteral("{{%1, %2}, {%3, %4}}").arg(r.x(), 0, 'f', 1).arg(r.y(), 0, 'f', 1)
        .arg(r.width(), 0, 'f', 1).arg(r.height(), 0, 'f', 1);
}

QString range(qsizetype location, qsizetype length)
{
    return QStringLiteral("{%1, %2}").arg(location).arg(length);
}

constexpr qsizetype excerptLength = 80;

void stateSection(QString& out, AppState& state)
{
    const editor::Workspace& workspace = state.workspace();
    const editor::EditorSettings& settings = state.settings();
    out += "== state ==\n";
    out += "windowTitle=" + state.windowTitle() + "\n";
    out += "workspaceRoot=" + (workspace.root() ? workspace.root()->toLocalFile() : QStringLiteral("none")) + "\n";
    out += "workspaceName=" + workspace.displayName() + " error=" + orNone(workspace.lastError())
        + " notes=" + QString::number(workspace.notes().size())
        + " selected=" + (workspace.selection() ? workspace.selection()->toLocalFile() : QStringLiteral("none")) + "\n";
    for (const char* key : {"showsSidebar", "outlineVisible", "wordCountVisible", "showsLineNumbers", "focusMode",
                            "typewriterMode", "highlightSyntax", "rawSourceMode"})
        out += QStringLiteral("settings.%1=%2\n").arg(QLatin1String(key), flag(settings.value(key).toBool()));
    out += "settings.fontSize=" + number(settings.fontSize()) + "\n";
    out += "settings.font=" + settings.font() + "\n";
    out += "settingsVisible=" + flag(state.isSettingsVisible()) + " windowID=" + QString::number(state.settingsRequestID()) + "\n";
    // No theme library yet: the chosen id stands for both id and name.
    out += "theme=" + settings.theme() + " (" + settings.theme() + ")\n";
    out += "themePalette=none\n";
    out += "documents=" + QString::number(state.documents().size()) + "\n";
    for (const OpenDocument* document : state.documents()) {
        out += "  - " + QFileInfo(document->url().toLocalFile()).fileName() + " dirty=" + flag(document->isDirty())
            + " chars=" + QString::number(document->text().size()) + " caret=" + QString::number(document->caret())
            + " stats=" + UIDump::statistics(document->statistics())
            + " outline=" + QString::number(document->outline().size()) + "\n";
    }
    const OpenDocument* active = state.activeDocument();
    out += "activeDocument=" + (active ? QFileInfo(active->url().toLocalFile()).fileName() : QStringLiteral("none")) + "\n";
    out += "statusMessage=" + orNone(state.statusMessage()) + "\n";
    out += "menuSnapshot hasDocument=" + flag(active) + " hasWorkspace=" + flag(workspace.root().has_value())
        + " recents=" + QString::number(state.session().quickOpenRecents.size()) + " themes=0"
        + " sidebar=" + flag(settings.showsSidebar()) + " outline=" + flag(settings.value("outlineVisible").toBool()) + "\n";
    out += "findVisible=" + flag(state.isFindVisible()) + " quickOpen=false query=\"" + state.findQuery()
        + "\" replaceVisible=" + flag(state.isReplaceVisible()) + " count=\"\" index=0\n";
    out += "backlinks files=0 hits=0 loading=false\n";
    out += "referenceUpdates pending=0 error=none\n";
    out += "wikiCompletion visible=false selection=0 matches=0\n";
    out += "wikiAnchor=none caret=" + QString::number(active ? active->caret() : 0)
        + " editor=" + flag(state.editor().surface() != nullptr) + "\n";
    out += "printInfo paper=none margins=none scaling=none disposition=none\n";
    const auto outline = active ? active->outline() : std::vector<markdown::OutlineEntry>{};
    out += "outlineEntries=" + QString::number(outline.size()) + "\n";
    for (const markdown::OutlineEntry& entry : outline)
        out += "  outlineEntry: level=" + QString::number(entry.level) + "  title=" + entry.title + "\n";
    out += "handle.textView=" + flag(!state.editor().textView.isNull()) + "\n";
    out += "handle.coordinator=" + flag(!state.editor().coordinator.isNull()) + "\n";
}

void panelSections(QString& out, AppState& state)
{
    out += "quickOpen: visible=false loading=false query=\"\" files="
        + QString::number(state.workspace().notes().size()) + " selection=0\n";
    out += "folderSearch: visible=" + flag(state.isSearchVisible())
        + " active=false searching=false query=\"\" files=0 hits=0 truncated=false focus=false\n";
    out += "scope=all phrase=false case=false regex=false error=none notes="
        + QString::number(state.workspace().notes().size()) + "\n";
    out += "  highlighted=none reveal=none\n";
}

void liveEditorSection(QString& out, AppState& state, const UIWindowHost* host)
{
    out += "\n== live editor ==\n";
    const EditorTextSurface* surface = state.editor().surface();
    if (!surface) {
        out += "(no text view)\n";
        return;
    }
    const QString buffer = surface->surfaceText();
    const auto geometry = host ? host->editorGeometry() : std::nullopt;
    const UIWindowHost::EditorGeometry g = geometry.value_or(UIWindowHost::EditorGeometry{});
    out += QStringLiteral("attached=%1 window=%2 frame=%3x%4 docFrame=%5\n")
               .arg(flag(g.attached), g.window.isEmpty() ? QStringLiteral("none") : g.window)
               .arg(g.frame.width(), 0, 'f', 0).arg(g.frame.height(), 0, 'f', 0)
               .arg(rect(g.documentFrame));
    out += QStringLiteral("inset=%1x%2 containerWidth=%3 chars=%4\n")
               .arg(g.inset.width(), 0, 'f', 1).arg(g.inset.height(), 0, 'f', 1)
               .arg(g.containerWidth, 0, 'f', 0).arg(buffer.size());
    out += "textViewIdentity=" + QString::number(quintptr(state.editor().textView.data()), 16)
        + " editorDocumentID=" + (surface->documentId().isEmpty() ? QStringLiteral("none") : surface->documentId()) + "\n";
    out += "nativeSelection=" + range(surface->selectionStart(), surface->selectionLength()) + "\n";
    out += "bufferHead=" + excerpt(QStringView(buffer).left(excerptLength)) + "\n";
    out += "bufferTail=" + excerpt(QStringView(buffer).right(excerptLength)) + "\n";
    out += "caretRect=" + rect(g.caretRect) + "\n";
    out += "viewport=" + rect(g.viewport) + "\n";
    const auto marked = host ? host->markedRange() : std::nullopt;
    out += "hasMarkedText=" + flag(surface->isComposing()) + " markedRange="
        + (marked ? range(marked->location, marked->length) : QStringLiteral("none")) + "\n";
    const OpenDocument* active = state.activeDocument();
    // The buffer's line ends are LF; a note written with CRLF keeps its own.
    const QString noteBuffer = active ? EditorLineEnds::of(active->text()).toNote(buffer) : buffer;
    out += "modelMatchesBuffer=" + flag(active && active->text() == noteBuffer)
        + " modelChars=" + QString::number(active ? active->text().size() : 0) + "\n";
    QString disk;
    bool readable = false;
    if (active) {
        try {
            disk = active->file().read(false);
            readable = true;
        } catch (const editor::MarkdownFileError&) {
        }
    }
    out += "diskMatchesBuffer=" + flag(readable && disk == noteBuffer) + " diskChars=" + QString::number(disk.size()) + "\n";
    out += "diskHead=" + excerpt(QStringView(disk).left(excerptLength)) + "\n";
}

void windowSections(QString& out, AppState& state, const UIWindowHost* host)
{
    out += "\n== configuration in force ==\n";
    out += "(no configuration)\n";
    out += "\n== menus ==\n";
    out += "enforcer: touched=0 saveEnabled=" + flag(state.activeDocument() != nullptr) + " delegate: none\n";
    out += host ? host->menusSection() : QStringLiteral("(no main menu)\n");
    out += "\n== windows ==\n";
    out += host ? host->windowsSection() : QStringLiteral("(no windows)\n");
    out += u'\n';
    if (const auto* coordinator = qobject_cast<const markdown::MarkdownEditorCoordinator*>(state.editor().coordinator.data())) {
        out += markdown::MarkdownFragmentDump::section(coordinator->config, coordinator->fragments, coordinator->text());
        return;
    }
    out += "config body=none h1=none bodyFontName=" + state.settings().font()
        + " bodySize=" + number(state.settings().fontSize()) + "\n";
    out += "fragments=0\n";
}

void linesSection(QString& out, const UIWindowHost* host)
{
    out += "\n== lines ==\n";
    if (!host)
        return;
    int index = 0;
    for (const UIWindowHost::LayoutLine& line : host->layoutLines()) {
        out += QString::asprintf("  line%3d y=%7.1f h=%5.1f gap=%5.1f font=", index++, line.y, line.height, line.gap);
        out += line.fontFamily + QString::asprintf("@%.1f before=%.1f after=%.1f ", line.fontSize, line.before, line.after);
        out += excerpt(line.text) + "\n";
    }
}

}

QString UIDump::statistics(const markdown::MarkdownTextStatistics& s)
{
    return QStringLiteral("words=%1 chars=%2 cjk=%3 total=%4 reading=%5m selection=%6")
        .arg(s.words).arg(s.characters).arg(s.cjkCharacters).arg(s.totalWords()).arg(s.readingMinutes())
        .arg(flag(s.isSelection));
}

QString UIDump::body(AppState& state, const UIWindowHost* host, const UIDriverEnvironment& environment)
{
    QString out;
    stateSection(out, state);
    panelSections(out, state);
    liveEditorSection(out, state, host);
    windowSections(out, state, host);
    if (environment.attributes) {
        const auto* coordinator = qobject_cast<const markdown::MarkdownEditorCoordinator*>(state.editor().coordinator.data());
        if (coordinator && state.activeDocument()) {
            const auto runs = coordinator->textView.textStorage().runs();
            const QString text = coordinator->text();
            out += "\n== styled text ==\nruns=" + QString::number(runs.size()) + "\n";
            for (const auto& run : runs) {
                out += QStringLiteral("  [%1,%2] role=%3 hidden=%4 font=%5 ").arg(run.range.location).arg(run.range.length)
                    .arg(run.attributes.has(markdown::MarkdownTextAttributes::Role) ? markdown::rawValue(run.attributes.role) : QStringLiteral("none"))
                    .arg(flag(run.attributes.has(markdown::MarkdownTextAttributes::Hidden) && run.attributes.hidden))
                    .arg(run.attributes.has(markdown::MarkdownTextAttributes::Font) ? markdown::MarkdownFragmentDump::font(run.attributes.font) : QStringLiteral("none"));
                out += excerpt(QStringView(text).mid(run.range.location, std::min(run.range.length, 60))) + "\n";
            }
        } else {
            out += QStringLiteral("\n== styled text ==\nnone\n");
        }
    }
    if (environment.lines)
        linesSection(out, host);
    return out;
}

QString UIDump::block(const QString& header, AppState& state, const UIWindowHost* host,
                      const UIDriverEnvironment& environment)
{
    QString out = "\n\n========== " + header + " ==========\n";
    if (!environment.light)
        out += body(state, host, environment);
    return out;
}

void UIDump::append(const QString& path, const QString& header, AppState& state, const UIWindowHost* host,
                    const UIDriverEnvironment& environment)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Append))
        return;
    file.write(block(header, state, host, environment).toUtf8());
}

UIDriver* UIDump::scheduleIfRequested(AppState& state, UIWindowHost* host, std::function<void()> terminate,
                                      const UIDriverEnvironment& environment)
{
    if (!environment.isEnabled())
        return nullptr;
    auto* driver = new UIDriver(state, host, environment, std::move(terminate), &state);
    const int delayMs = int(std::max(0.0, environment.dumpDelay) * 1000.0);
    QTimer::singleShot(delayMs, driver, [driver] {
        if (driver->environment().isScripted())
            driver->runIfRequested();
        else
            driver->writeSingleDump();
    });
    return driver;
}

}
