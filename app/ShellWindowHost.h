#pragma once

#include "Velmo/UIWindowHost.h"

class QWidget;

namespace velmo::app {
class AppState;
}

namespace velmo::ui {

class MarkdownEditorView;

// The windows as the logic sees them: pictures, sizes, menus, and the text view's input path
// driven by real key and input-method events, so that a scripted keystroke runs everything a
// typed one does.
class ShellWindowHost : public app::UIWindowHost {
public:
    explicit ShellWindowHost(app::AppState& state);

    Capture capture(const QString& path) override;
    QString resize(int width, int height, const QString& title, const QString& screen) override;
    std::optional<QString> focus() override;
    QString performMenu(const QString& path) override;
    QString validateMenus() override;

    bool typeText(const QString& text) override;
    bool setMarkedText(const QString& text) override;
    bool commitMarkedText(const QString& text) override;
    bool unmarkText() override;
    bool select(int location, int length) override;
    std::optional<Range> markedRange() const override;
    bool paste() override;

    std::optional<EditorGeometry> editorGeometry() const override;
    std::vector<LayoutLine> layoutLines() const override;
    QString menusSection() const override;
    QString windowsSection() const override;

    bool hasAttachedSheets() const override;
    void endSheets() override;

private:
    MarkdownEditorView* textView() const;

    app::AppState& m_state;
    std::optional<Range> m_marked;
    QString m_markedText;
};

}
