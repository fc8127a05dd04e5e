#include "Velmo/EditorConfigurationBuilder.h"

#include "Editor/Settings/EditorSettings.h"
#include "MarkdownEngine/Configuration/HighlighterSyntaxHighlighter.h"

namespace velmo::app {

markdown::MarkdownEditorConfiguration EditorConfigurationBuilder::make(const editor::EditorSettings& settings, bool isDark)
{
    using markdown::MarkdownEditorConfiguration;
    MarkdownEditorConfiguration config;
    config.theme = isDark ? markdown::MarkdownEditorTheme::dark() : markdown::MarkdownEditorTheme::light();
    const double size = settings.fontSize();
    if (size >= 6 && size <= 72)
        config.bodySize = size;
    if (const auto design = markdown::MarkdownFont::design(settings.font()))
        config.bodyFontDesign = *design;
    config.rawSourceMode = settings.rawSourceMode();
    config.markers.revealsMarkersOnActiveLine = settings.revealMarkersOnActiveLine();
    config.focusMode = settings.value("focusMode").toBool();
    config.typewriterMode = settings.value("typewriterMode").toBool();
    const QString width = settings.value("lineWidth").toString();
    config.readingWidth = width == QLatin1String("narrow") ? 600.0 : width == QLatin1String("wide") ? 900.0 : 720.0;
    const QString spacing = settings.value("lineSpacing").toString();
    if (spacing == QLatin1String("compact"))
        config.paragraph.lineHeightFactor = 1.2;
    else if (spacing == QLatin1String("relaxed"))
        config.paragraph.lineHeightFactor = 1.55;
    if (settings.value("highlightSyntax").toBool())
        config.services.syntaxHighlighter = std::make_shared<markdown::HighlighterSyntaxHighlighter>();
    config.textInsets = {24.0, 28.0};
    return config;
}

}
