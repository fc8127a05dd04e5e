#pragma once

#include <QRectF>
#include <QSizeF>
#include <QString>
#include <optional>
#include <vector>

namespace velmo::app {

// What the logic asks of the windows: the scripted driver's window commands and dump sections,
// and the quit handshake. The shell implements it; without a window toolkit there is none, and
// every caller answers as if no window existed.
class UIWindowHost {
public:
    virtual ~UIWindowHost() = default;

    // A PNG of the main window at `path`: absent on success, else the reason.
    struct Capture {
        bool ok = false;
        QString title;
        QString error;
    };
    virtual Capture capture(const QString& path) = 0;
    // Sets the content size of the window titled `title` (the main window when empty) and moves
    // it to `screen` when given. The note describes the window, or says what was missing.
    virtual QString resize(int width, int height, const QString& title, const QString& screen) = 0;
    // Makes the first visible window key; its title, absent when no window exists.
    virtual std::optional<QString> focus() = 0;
    // "Menu>Item": the note of the `menu` command.
    virtual QString performMenu(const QString& path) = 0;
    virtual QString validateMenus() = 0;

    // The text view's input path, as keystrokes and input-method events. False without a view.
    virtual bool typeText(const QString& text) = 0;
    virtual bool setMarkedText(const QString& text) = 0;
    virtual bool commitMarkedText(const QString& text) = 0;
    virtual bool unmarkText() = 0;
    virtual bool select(int location, int length) = 0;
    // The marked range of the text view; absent while nothing is composed.
    struct Range {
        int location = 0;
        int length = 0;
    };
    virtual std::optional<Range> markedRange() const = 0;
    // Pastes what the clipboard holds through the view's paste action. False without a view.
    virtual bool paste() = 0;

    struct EditorGeometry {
        bool attached = false;
        QString window;
        QSizeF frame;
        QRectF documentFrame;
        QSizeF inset;
        double containerWidth = 0;
        QRectF caretRect;
        QRectF viewport;
    };
    virtual std::optional<EditorGeometry> editorGeometry() const = 0;
    struct LayoutLine {
        double y = 0;
        double height = 0;
        double gap = 0;
        QString fontFamily;
        double fontSize = 0;
        double before = 0;
        double after = 0;
        QString text;
    };
    virtual std::vector<LayoutLine> layoutLines() const = 0;
    // The menu tree and the window list, already formatted, one line each.
    virtual QString menusSection() const = 0;
    virtual QString windowsSection() const = 0;

    // The quit handshake: a modal sheet or dialog on screen.
    virtual bool hasAttachedSheets() const = 0;
    virtual void endSheets() = 0;
};

}
