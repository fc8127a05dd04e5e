#include "MarkdownEngine/Directives/FontDirective.h"

#include <QStringList>

namespace velmo::markdown {

namespace {

struct Weight {
    const char* keyword;
    QFont::Weight weight;
};

constexpr Weight weights[] = {
    {"thin", QFont::Thin},     {"ultralight", QFont::ExtraLight}, {"light", QFont::Light},
    {"regular", QFont::Normal}, {"medium", QFont::Medium},         {"semibold", QFont::DemiBold},
    {"bold", QFont::Bold},     {"heavy", QFont::ExtraBold},        {"black", QFont::Black},
};

std::optional<QFont::Weight> weightFor(const QString& keyword)
{
    for (const Weight& w : weights) {
        if (keyword == QLatin1String(w.keyword))
            return w.weight;
    }
    return std::nullopt;
}

QString cssLength(const DirectiveValue& value)
{
    if (const auto* length = std::get_if<directive_value::Length>(&value.value)) {
        switch (length->unit) {
        case DirectiveUnit::em:
            return DirectiveValue::format(length->value) + QStringLiteral("em");
        case DirectiveUnit::percent:
            return DirectiveValue::format(length->value) + QStringLiteral("%");
        case DirectiveUnit::none:
        case DirectiveUnit::point:
            return DirectiveValue::format(length->value) + QStringLiteral("pt");
        }
    }
    return value.displayText();
}

}

FontDirective::FontDirective()
{
    QStringList weightKeywords;
    for (const Weight& w : weights)
        weightKeywords << QLatin1String(w.keyword);
    m_syntax.name = QStringLiteral("font");
    m_syntax.form = DirectiveSyntax::Form::container;
    m_syntax.marker = u':';
    m_syntax.parsesBody = true;
    m_syntax.parameters = {
        {QStringLiteral("size"), DirectiveParameter::Length{}, false, std::nullopt,
         QStringLiteral("Absolute (14pt) or relative (1.2em, 120%).")},
        {QStringLiteral("family"), DirectiveParameter::String{}, false, std::nullopt,
         QStringLiteral("Font family name, e.g. “New York”.")},
        {QStringLiteral("weight"), DirectiveParameter::Keyword{weightKeywords}, false, std::nullopt,
         QStringLiteral("Font weight keyword.")},
        {QStringLiteral("style"), DirectiveParameter::Keyword{{"italic", "upright", "normal"}}, false, std::nullopt,
         QStringLiteral("Italic or upright.")},
        {QStringLiteral("monospaced"), DirectiveParameter::Boolean{}, false, std::nullopt,
         QStringLiteral("Use the code font.")},
    };
}

DirectiveStyle FontDirective::style(const DirectiveArguments& arguments, const DirectiveContext& context) const
{
    DirectiveStyle style;
    if (const std::optional<DirectiveValue> size = arguments[QStringLiteral("size")]) {
        const auto* length = std::get_if<directive_value::Length>(&size->value);
        if (length && (length->unit == DirectiveUnit::em || length->unit == DirectiveUnit::percent))
            style.font.size = DirectiveFontTransform::Scale{length->unit == DirectiveUnit::em ? length->value
                                                                                              : length->value / 100};
        else if (const std::optional<double> points = size->resolvedLength(std::nullopt))
            style.font.size = DirectiveFontTransform::Absolute{*points};
    }
    DirectiveFontTransform::Traits traits;
    if (const std::optional<QString> weight = arguments.string(QStringLiteral("weight")))
        traits.weight = weightFor(*weight);
    if (const std::optional<QString> italic = arguments.string(QStringLiteral("style")))
        traits.italic = *italic == QLatin1String("italic");
    if (traits.weight || traits.italic)
        style.font.traits = traits;
    if (arguments.boolean(QStringLiteral("monospaced")).value_or(false))
        style.font.familyName = context.codeFontFamily;
    else if (const std::optional<QString> family = arguments.string(QStringLiteral("family")))
        style.font.familyName = *family;
    return style;
}

QString FontDirective::html(const QString& body, const DirectiveArguments& arguments) const
{
    QStringList declarations;
    if (const std::optional<DirectiveValue> size = arguments[QStringLiteral("size")])
        declarations << QStringLiteral("font-size:") + cssLength(*size);
    if (const std::optional<QString> family = arguments.string(QStringLiteral("family")))
        declarations << QStringLiteral("font-family:'") + *family + QStringLiteral("'");
    if (const std::optional<QString> weight = arguments.string(QStringLiteral("weight"))) {
        if (const std::optional<QFont::Weight> w = weightFor(*weight))
            declarations << QStringLiteral("font-weight:") + QString::number(int(*w));
    }
    if (arguments.string(QStringLiteral("style")) == QStringLiteral("italic"))
        declarations << QStringLiteral("font-style:italic");
    if (arguments.boolean(QStringLiteral("monospaced")).value_or(false))
        declarations << QStringLiteral("font-family:ui-monospace,monospace");
    return QStringLiteral("<span style=\"") + declarations.join(u';').toHtmlEscaped() + QStringLiteral("\">") + body
        + QStringLiteral("</span>");
}

}
