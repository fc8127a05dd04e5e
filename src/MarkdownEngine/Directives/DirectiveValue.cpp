#include "MarkdownEngine/Directives/DirectiveValue.h"

#include <QLocale>

namespace velmo::markdown {

namespace {

std::optional<double> parseDouble(QStringView text)
{
    bool ok = false;
    const double value = QLocale::c().toDouble(text, &ok);
    if (!ok || !std::isfinite(value))
        return std::nullopt;
    return value;
}

}

std::optional<DirectiveValue> DirectiveValue::parseLengthValue(QStringView text)
{
    struct Suffix { QStringView text; DirectiveUnit unit; };
    static constexpr Suffix suffixes[] = {{u"px", DirectiveUnit::point}, {u"pt", DirectiveUnit::point},
                                          {u"em", DirectiveUnit::em},    {u"rem", DirectiveUnit::em},
                                          {u"%", DirectiveUnit::percent}};
    for (const Suffix& suffix : suffixes) {
        if (!text.endsWith(suffix.text))
            continue;
        // "2rem" also ends in "em": a suffix whose number does not parse gives way to the next.
        if (const std::optional<double> value = parseDouble(text.chopped(suffix.text.size())))
            return DirectiveValue{directive_value::Length{*value, suffix.unit}};
    }
    if (text.endsWith(u'%') || text.endsWith(u"px") || text.endsWith(u"pt") || text.endsWith(u"em"))
        return std::nullopt;
    if (const std::optional<double> value = parseDouble(text))
        return DirectiveValue{directive_value::Length{*value, DirectiveUnit::none}};
    return std::nullopt;
}

std::optional<double> DirectiveValue::parseLength(QStringView text, std::optional<double> base)
{
    const std::optional<DirectiveValue> value = parseLengthValue(text);
    return value ? value->resolvedLength(base) : std::nullopt;
}

std::optional<double> DirectiveValue::resolvedLength(std::optional<double> base) const
{
    if (const auto* number = std::get_if<directive_value::Number>(&value))
        return number->value;
    const auto* length = std::get_if<directive_value::Length>(&value);
    if (!length)
        return std::nullopt;
    switch (length->unit) {
    case DirectiveUnit::none:
    case DirectiveUnit::point:
        return length->value;
    case DirectiveUnit::em:
        return base ? std::optional(length->value * *base) : std::nullopt;
    case DirectiveUnit::percent:
        return base ? std::optional(length->value / 100 * *base) : std::nullopt;
    }
    return std::nullopt;
}

QString DirectiveValue::format(double value)
{
    if (value == std::floor(value) && std::abs(value) < 1e15)
        return QString::number(qint64(value));
    return QString::number(value, 'g', QLocale::FloatingPointShortest);
}

QString DirectiveValue::displayText() const
{
    return std::visit(
        [](const auto& v) -> QString {
            using V = std::decay_t<decltype(v)>;
            if constexpr (std::is_same_v<V, directive_value::String> || std::is_same_v<V, directive_value::Keyword>)
                return v.text;
            else if constexpr (std::is_same_v<V, directive_value::Number>)
                return format(v.value);
            else if constexpr (std::is_same_v<V, directive_value::Boolean>)
                return v.value ? QStringLiteral("true") : QStringLiteral("false");
            else {
                static constexpr const char16_t* units[] = {u"", u"pt", u"em", u"%"};
                return format(v.value) + QString::fromUtf16(units[int(v.unit)]);
            }
        },
        value);
}

}
