#include "MarkdownEngine/Configuration/MarkdownEditorTheme.h"

#include <QGuiApplication>
#include <QPalette>

namespace velmo::markdown {

namespace {

QColor hex(const char* value) { return QColor(QString::fromLatin1(value)); }

const char* calloutHex(MarkdownCallout::Kind kind)
{
    switch (kind) {
    case MarkdownCallout::note: return "#4493f8";
    case MarkdownCallout::tip: return "#3fb950";
    case MarkdownCallout::important: return "#ab7df8";
    case MarkdownCallout::warning: return "#d29922";
    case MarkdownCallout::caution: return "#f85149";
    }
    return "#4493f8";
}

std::map<MarkdownCallout::Kind, QColor> builtInCallouts()
{
    std::map<MarkdownCallout::Kind, QColor> colors;
    for (auto kind : {MarkdownCallout::note, MarkdownCallout::tip, MarkdownCallout::important,
                      MarkdownCallout::warning, MarkdownCallout::caution})
        colors[kind] = hex(calloutHex(kind));
    return colors;
}

}

MarkdownEditorTheme MarkdownEditorTheme::light()
{
    MarkdownEditorTheme t;
    t.isDark = false;
    t.background = hex("#FFFFFF");
    t.bodyText = hex("#1F2328");
    t.mutedText = hex("#6E7781");
    t.disabledText = hex("#8C959F");
    t.headingMarker = hex("#8C959F");
    t.marker = hex("#AFB8C1");
    t.link = hex("#0969DA");
    t.incompleteLink = hex("#CF222E");
    t.tag = hex("#8250DF");
    t.findMatchHighlight = hex("#FFF8C5");
    t.findCurrentMatchHighlight = hex("#FFD33D");
    t.latexLightModeText = hex("#1F2328");
    t.latexDarkModeText = hex("#FFFFFF");
    t.strikethroughColor = hex("#6E7781");
    t.highlightColor = hex("#FFF8C5");
    t.codeBackground = hex("#F6F8FA");
    t.quoteBar = hex("#D0D7DE");
    t.calloutColors = builtInCallouts();
    return t;
}

MarkdownEditorTheme MarkdownEditorTheme::dark()
{
    MarkdownEditorTheme t;
    t.isDark = true;
    t.background = hex("#0D1117");
    t.bodyText = hex("#E6EDF3");
    t.mutedText = hex("#8B949E");
    t.disabledText = hex("#6E7681");
    t.headingMarker = hex("#6E7681");
    t.marker = hex("#6E7681");
    t.link = hex("#4493F8");
    t.incompleteLink = hex("#F85149");
    t.tag = hex("#A371F7");
    t.findMatchHighlight = hex("#3A2D00");
    t.findCurrentMatchHighlight = hex("#9E6A03");
    t.latexLightModeText = hex("#1F2328");
    t.latexDarkModeText = hex("#E6EDF3");
    t.strikethroughColor = hex("#8B949E");
    t.highlightColor = hex("#3B2F00");
    t.codeBackground = hex("#161B22");
    t.quoteBar = hex("#30363D");
    t.calloutColors = builtInCallouts();
    return t;
}

MarkdownEditorTheme MarkdownEditorTheme::defaultTheme()
{
    // Qt 6.4 has no colour-scheme query: a dark window colour is a dark appearance.
    if (!qobject_cast<QGuiApplication*>(QCoreApplication::instance()))
        return light();
    return QGuiApplication::palette().color(QPalette::Window).lightnessF() < 0.5 ? dark() : light();
}

QColor MarkdownEditorTheme::defaultTag(bool isDark)
{
    return isDark ? hex("#A371F7") : hex("#8250DF");
}

QColor MarkdownEditorTheme::color(MarkdownCallout callout) const
{
    if (auto found = calloutColors.find(callout.kind()); found != calloutColors.end())
        return found->second;
    QColor base = hex(calloutHex(callout.kind()));
    if (isDark)
        return base;
    return QColor::fromRgbF(base.redF() * 0.85f, base.greenF() * 0.85f, base.blueF() * 0.85f, base.alphaF());
}

MarkdownEditorTheme MarkdownEditorTheme::overriding(const ThemePatch& patch) const
{
    MarkdownEditorTheme t = *this;
    auto take = [](QColor& field, const std::optional<QColor>& value) {
        if (value)
            field = *value;
    };
    take(t.background, patch.background);
    take(t.bodyText, patch.bodyText);
    take(t.mutedText, patch.mutedText);
    take(t.disabledText, patch.disabledText);
    take(t.headingMarker, patch.headingMarker);
    take(t.marker, patch.marker);
    take(t.link, patch.link);
    take(t.incompleteLink, patch.incompleteLink);
    take(t.findMatchHighlight, patch.findMatchHighlight);
    take(t.findCurrentMatchHighlight, patch.findCurrentMatchHighlight);
    take(t.strikethroughColor, patch.strikethroughColor);
    take(t.highlightColor, patch.highlightColor);
    take(t.codeBackground, patch.codeBackground);
    take(t.quoteBar, patch.quoteBar);
    take(t.tag, patch.tag);
    for (const auto& [kind, value] : patch.calloutColors)
        t.calloutColors[kind] = value;
    return t;
}

}
