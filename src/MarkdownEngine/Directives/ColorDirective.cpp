#include "MarkdownEngine/Directives/ColorDirective.h"

#include "MarkdownEngine/Core/MarkdownTextColor.h"
#include "MarkdownEngine/Core/TextCharacters.h"

namespace velmo::markdown {

namespace {

struct Named {
    const char* name;
    QRgb rgb;
};

constexpr Named names[] = {
    {"black", 0x000000},  {"white", 0xFFFFFF}, {"gray", 0x808080},   {"red", 0xFF0000},
    {"orange", 0xFFA500}, {"yellow", 0xFFFF00}, {"green", 0x008000}, {"blue", 0x0000FF},
    {"purple", 0x800080}, {"pink", 0xFFC0CB},  {"brown", 0xA52A2A},  {"cyan", 0x00FFFF},
    {"magenta", 0xFF00FF}, {"teal", 0x008080}, {"navy", 0x000080},   {"olive", 0x808000},
};

}

ColorDirective::ColorDirective()
{
    m_syntax.name = QStringLiteral("color");
    m_syntax.form = DirectiveSyntax::Form::container;
    m_syntax.marker = u':';
    m_syntax.parsesBody = true;
    m_syntax.parameters = {
        {QStringLiteral("value"), DirectiveParameter::String{}, true, std::nullopt,
         QStringLiteral("Text colour: `#rrggbb`, `rgb(…)` or a name.")},
        {QStringLiteral("background"), DirectiveParameter::Boolean{}, false, std::nullopt,
         QStringLiteral("Paint `value` behind the text instead.")},
    };
}

std::optional<QColor> ColorDirective::parseColor(QStringView value)
{
    const QStringView v = chars::trimmed(value);
    for (const Named& named : names) {
        if (v.compare(QLatin1String(named.name), Qt::CaseInsensitive) == 0)
            return QColor::fromRgb(named.rgb);
    }
    if (v.size() == 4 && v[0] == u'#') {
        const QString expanded = QStringLiteral("#") + v[1] + v[1] + v[2] + v[2] + v[3] + v[3];
        return MarkdownTextColor::parse(expanded);
    }
    if (v.startsWith(u'#') || v.startsWith(u"rgb(", Qt::CaseInsensitive))
        return MarkdownTextColor::parse(v);
    return std::nullopt;
}

DirectiveStyle ColorDirective::style(const DirectiveArguments& arguments, const DirectiveContext&) const
{
    DirectiveStyle style;
    const std::optional<QString> value = arguments.string(QStringLiteral("value"));
    const std::optional<QColor> color = value ? parseColor(*value) : std::nullopt;
    if (!color)
        return style;
    if (arguments.boolean(QStringLiteral("background")).value_or(false))
        style.attributes.setBackground(*color);
    else
        style.attributes.setForeground(*color);
    return style;
}

QString ColorDirective::html(const QString& body, const DirectiveArguments& arguments) const
{
    const QString property = arguments.boolean(QStringLiteral("background")).value_or(false)
        ? QStringLiteral("background-color")
        : QStringLiteral("color");
    const QString value = arguments.string(QStringLiteral("value")).value_or(QStringLiteral("inherit"));
    return QStringLiteral("<span style=\"") + property + u':' + value.toHtmlEscaped() + QStringLiteral("\">") + body
        + QStringLiteral("</span>");
}

}
