#include "ShellWindowHost.h"

#include "MarkdownEditorView.h"
#include "MarkdownEngine/Layout/MarkdownTextStorage.h"
#include "Velmo/AppState.h"

#include <QAbstractTextDocumentLayout>
#include <QApplication>
#include <QDialog>
#include <QInputMethodEvent>
#include <QKeyEvent>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>
#include <QScreen>
#include <QTextBlock>
#include <QTextBoundaryFinder>
#include <QTextLayout>
#include <QToolBar>

namespace velmo::ui {

namespace {

QString flag(bool value)
{
    return value ? QStringLiteral("true") : QStringLiteral("false");
}

QString rect(const QRect& r)
{
    return QStringLiteral("%1,%2 %3x%4").arg(r.x()).arg(r.y()).arg(r.width()).arg(r.height());
}

// The windows a user would see: top-level, visible, not a popup or tooltip.
QList<QWidget*> windows()
{
    QList<QWidget*> result;
    for (QWidget* widget : QApplication::topLevelWidgets()) {
        const Qt::WindowType type = widget->windowType();
        if (widget->isVisible() && type != Qt::Popup && type != Qt::ToolTip && type != Qt::Desktop)
            result << widget;
    }
    return result;
}

QMainWindow* mainWindow()
{
    for (QWidget* widget : windows()) {
        if (auto* window = qobject_cast<QMainWindow*>(widget))
            return window;
    }
    return nullptr;
}

// Menu titles compared without mnemonics, with "..." and "…" the same, ignoring case.
QString plainTitle(QString title)
{
    title.remove(u'&');
    title.replace(QStringLiteral("..."), QStringLiteral("…"));
    return title.trimmed().toLower();
}

QAction* findAction(const QList<QAction*>& actions, const QString& title)
{
    for (QAction* action : actions) {
        if (!action->isSeparator() && plainTitle(action->text()) == plainTitle(title))
            return action;
    }
    return nullptr;
}

// What a display of each menu would do: let it update its items.
void walkMenus(QMenuBar* bar)
{
    QList<QMenu*> pending;
    for (QAction* action : bar->actions()) {
        if (action->menu())
            pending << action->menu();
    }
    while (!pending.isEmpty()) {
        QMenu* menu = pending.takeFirst();
        emit menu->aboutToShow();
        for (QAction* action : menu->actions()) {
            if (action->menu())
                pending << action->menu();
        }
    }
}

void sendKey(QWidget* view, int key, const QString& text)
{
    QKeyEvent press(QEvent::KeyPress, key, Qt::NoModifier, text);
    QCoreApplication::sendEvent(view, &press);
    QKeyEvent release(QEvent::KeyRelease, key, Qt::NoModifier, text);
    QCoreApplication::sendEvent(view, &release);
}

}

ShellWindowHost::ShellWindowHost(app::AppState& state)
    : m_state(state)
{
}

MarkdownEditorView* ShellWindowHost::textView() const
{
    return qobject_cast<MarkdownEditorView*>(m_state.editor().textView.data());
}

app::UIWindowHost::Capture ShellWindowHost::capture(const QString& path)
{
    QWidget* window = mainWindow();
    if (!window)
        return {false, {}, QStringLiteral("no window to capture")};
    const QPixmap picture = window->grab();
    if (picture.isNull())
        return {false, window->windowTitle(), QStringLiteral("no image")};
    if (!picture.save(path, "PNG"))
        return {false, window->windowTitle(), "capture failed: cannot write " + path};
    return {true, window->windowTitle(), {}};
}

QString ShellWindowHost::resize(int width, int height, const QString& title, const QString& screenName)
{
    QWidget* window = nullptr;
    if (title.isEmpty()) {
        window = mainWindow();
    } else {
        for (QWidget* candidate : windows()) {
            if (candidate->windowTitle() == title)
                window = candidate;
        }
    }
    if (!window)
        return title.isEmpty() ? QStringLiteral("no window") : "no window called " + title;
    if (!screenName.isEmpty()) {
        QScreen* screen = nullptr;
        for (QScreen* candidate : QGuiApplication::screens()) {
            if (candidate->name() == screenName)
                screen = candidate;
        }
        if (!screen)
            return "no screen called " + screenName;
        window->move(screen->availableGeometry().topLeft());
    }
    window->resize(width, height);
    const QScreen* screen = window->screen();
    const QString name = screen ? screen->name() : QString();
    return "window \"" + window->windowTitle() + "\" content=" + QString::number(window->width()) + "x"
        + QString::number(window->height()) + " screen=" + (name.isEmpty() ? QStringLiteral("none") : name);
}

std::optional<QString> ShellWindowHost::focus()
{
    const QList<QWidget*> list = windows();
    if (list.isEmpty())
        return std::nullopt;
    QWidget* window = list.first();
    window->raise();
    window->activateWindow();
    return window->windowTitle();
}

QString ShellWindowHost::performMenu(const QString& path)
{
    QMainWindow* window = mainWindow();
    QMenuBar* bar = window ? window->menuBar() : nullptr;
    if (!bar || bar->actions().isEmpty())
        return QStringLiteral("no main menu");
    walkMenus(bar);
    const QStringList titles = path.split(u'>');
    QList<QAction*> actions = bar->actions();
    QString container = QStringLiteral("main menu");
    QAction* action = nullptr;
    for (const QString& title : titles) {
        action = findAction(actions, title);
        if (!action)
            return "no item " + title + " in " + container;
        container = title;
        actions = action->menu() ? action->menu()->actions() : QList<QAction*>{};
    }
    if (!action || action->menu() || !action->isEnabled())
        return "no action on " + titles.last();
    action->trigger();
    return "performed " + path;
}

QString ShellWindowHost::validateMenus()
{
    QMainWindow* window = mainWindow();
    if (!window || window->menuBar()->actions().isEmpty())
        return QStringLiteral("no main menu");
    walkMenus(window->menuBar());
    return QStringLiteral("validated menu");
}

bool ShellWindowHost::typeText(const QString& text)
{
    MarkdownEditorView* view = textView();
    if (!view)
        return false;
    // One key event per character, as a keyboard sends them.
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, text);
    qsizetype start = 0;
    for (qsizetype end = finder.toNextBoundary(); end > 0; end = finder.toNextBoundary()) {
        const QString character = text.mid(start, end - start);
        start = end;
        if (character == u'\n' || character == QLatin1String("\r\n"))
            sendKey(view, Qt::Key_Return, QStringLiteral("\r"));
        else if (character == u'\t')
            sendKey(view, Qt::Key_Tab, QStringLiteral("\t"));
        else
            sendKey(view, 0, character);
    }
    return true;
}

bool ShellWindowHost::setMarkedText(const QString& text)
{
    MarkdownEditorView* view = textView();
    if (!view)
        return false;
    const int location = m_marked ? m_marked->location : view->textCursor().selectionStart();
    QInputMethodEvent event(text, {QInputMethodEvent::Attribute(QInputMethodEvent::Cursor, int(text.size()), 1)});
    QCoreApplication::sendEvent(view, &event);
    m_markedText = text;
    m_marked = text.isEmpty() ? std::nullopt : std::optional<Range>(Range{location, int(text.size())});
    return true;
}

bool ShellWindowHost::commitMarkedText(const QString& text)
{
    MarkdownEditorView* view = textView();
    if (!view)
        return false;
    QInputMethodEvent event;
    event.setCommitString(text);
    QCoreApplication::sendEvent(view, &event);
    m_marked.reset();
    m_markedText.clear();
    return true;
}

bool ShellWindowHost::unmarkText()
{
    // Ending a composition keeps what was composed.
    return commitMarkedText(m_markedText);
}

bool ShellWindowHost::select(int location, int length)
{
    MarkdownEditorView* view = textView();
    if (!view)
        return false;
    const int size = int(view->toPlainText().size());
    QTextCursor cursor = view->textCursor();
    cursor.setPosition(std::clamp(location, 0, size));
    cursor.setPosition(std::clamp(location + length, 0, size), QTextCursor::KeepAnchor);
    view->setTextCursor(cursor);
    return true;
}

std::optional<app::UIWindowHost::Range> ShellWindowHost::markedRange() const
{
    return m_marked;
}

bool ShellWindowHost::paste()
{
    MarkdownEditorView* view = textView();
    if (!view)
        return false;
    view->paste();
    return true;
}

std::optional<app::UIWindowHost::EditorGeometry> ShellWindowHost::editorGeometry() const
{
    MarkdownEditorView* view = textView();
    if (!view)
        return std::nullopt;
    markdown::MarkdownLayoutManager& layout = view->layoutManager();
    EditorGeometry geometry;
    geometry.attached = view->window() != view && view->isVisible();
    geometry.window = view->window()->windowTitle();
    geometry.frame = view->size();
    geometry.documentFrame = QRectF(QPointF(), layout.documentSize());
    geometry.inset = QSizeF(layout.columnLeft(), layout.geometry().verticalInset);
    geometry.containerWidth = layout.columnWidth();
    geometry.caretRect = layout.caretRect(view->selectionStart());
    geometry.viewport = QRectF(view->visibleOrigin(), QSizeF(view->viewport()->size()));
    return geometry;
}

std::vector<app::UIWindowHost::LayoutLine> ShellWindowHost::layoutLines() const
{
    std::vector<LayoutLine> lines;
    MarkdownEditorView* view = textView();
    if (!view)
        return lines;
    const QTextDocument* document = view->document();
    markdown::MarkdownLayoutManager& layout = view->layoutManager();
    double previousBottom = 0;
    for (QTextBlock block = document->begin(); block.isValid(); block = block.next()) {
        const QRectF bounds = layout.blockBoundingRect(block);
        const QTextLayout* textLayout = block.layout();
        const auto* style = view->textStorage().blockStyle(block);
        QFont font = document->defaultFont();
        for (const QTextLayout::FormatRange& range : textLayout->formats()) {
            if (range.format.hasProperty(QTextFormat::FontPointSize) && range.format.foreground().color().alpha() != 0) {
                font = range.format.font();
                break;
            }
        }
        for (int i = 0; i < textLayout->lineCount(); ++i) {
            const QTextLine line = textLayout->lineAt(i);
            LayoutLine entry;
            entry.y = bounds.top() + line.y();
            entry.height = line.height();
            entry.gap = entry.y - previousBottom;
            entry.fontFamily = font.family();
            entry.fontSize = font.pointSizeF();
            entry.before = style && style->hasParagraph ? style->paragraph.paragraphSpacingBefore : 0;
            entry.after = style && style->hasParagraph ? style->paragraph.paragraphSpacing : 0;
            entry.text = block.text().mid(line.textStart(), line.textLength());
            previousBottom = entry.y + entry.height;
            lines.push_back(entry);
        }
    }
    return lines;
}

QString ShellWindowHost::menusSection() const
{
    QMainWindow* window = mainWindow();
    if (!window || window->menuBar()->actions().isEmpty())
        return QStringLiteral("(no main menu)\n");
    QString out;
    // Depth-first with an explicit stack; each entry is an action and its depth.
    QList<std::pair<QAction*, int>> stack;
    const QList<QAction*> top = window->menuBar()->actions();
    for (auto it = top.rbegin(); it != top.rend(); ++it)
        stack << std::pair{*it, 0};
    while (!stack.isEmpty()) {
        const auto [action, depth] = stack.takeLast();
        out += QString(depth * 2, u' ');
        if (action->isSeparator()) {
            out += "---\n";
            continue;
        }
        out += action->text().remove(u'&');
        if (!action->shortcut().isEmpty())
            out += " key=" + action->shortcut().toString(QKeySequence::PortableText);
        out += " enabled=" + flag(action->isEnabled());
        if (action->isCheckable())
            out += " checked=" + flag(action->isChecked());
        out += u'\n';
        if (QMenu* menu = action->menu()) {
            const QList<QAction*> children = menu->actions();
            for (auto it = children.rbegin(); it != children.rend(); ++it)
                stack << std::pair{*it, depth + 1};
        }
    }
    return out;
}

QString ShellWindowHost::windowsSection() const
{
    const QList<QWidget*> list = windows();
    if (list.isEmpty())
        return QStringLiteral("(no windows)\n");
    QString out;
    for (QWidget* window : list) {
        const QWidget* modal = QApplication::activeModalWidget();
        out += window->windowTitle() + " frame=" + rect(window->frameGeometry()) + " visible=" + flag(window->isVisible())
            + " key=" + flag(window->isActiveWindow()) + " sheet=" + flag(modal && modal != window) + "\n";
        out += "  windowID=" + QString::number(quintptr(window), 16) + "\n";
        QStringList toolbars;
        for (const QToolBar* toolbar : window->findChildren<QToolBar*>())
            toolbars << toolbar->windowTitle();
        out += "  toolbar: " + (toolbars.isEmpty() ? QStringLiteral("none") : toolbars.join(", ")) + "\n";
        // The view tree, depth-first with an explicit stack.
        QList<std::pair<const QWidget*, int>> stack{{window, 1}};
        while (!stack.isEmpty()) {
            const auto [widget, depth] = stack.takeLast();
            out += QString(depth * 2, u' ') + widget->metaObject()->className();
            if (!widget->objectName().isEmpty())
                out += " \"" + widget->objectName() + "\"";
            out += " frame=" + rect(widget->geometry()) + (widget->isVisible() ? QString() : QStringLiteral(" hidden")) + "\n";
            const QList<QWidget*> children = widget->findChildren<QWidget*>(Qt::FindDirectChildrenOnly);
            for (auto it = children.rbegin(); it != children.rend(); ++it) {
                if (!(*it)->isWindow())
                    stack << std::pair<const QWidget*, int>{*it, depth + 1};
            }
        }
    }
    return out;
}

bool ShellWindowHost::hasAttachedSheets() const
{
    return QApplication::activeModalWidget() != nullptr;
}

void ShellWindowHost::endSheets()
{
    // Bounded: a sheet that refuses to close must not hold the quit forever.
    for (int i = 0; i < 16; ++i) {
        QWidget* modal = QApplication::activeModalWidget();
        if (!modal)
            return;
        if (auto* dialog = qobject_cast<QDialog*>(modal))
            dialog->reject();
        else
            modal->close();
    }
}

}
