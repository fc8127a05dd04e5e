#include "MarkdownEngine/Core/MarkdownTextColor.h"

#include "MarkdownEngine/Core/TextCharacters.h"

namespace velmo::markdown {

namespace {

struct Row {
    const char* raw;
    const char* title;
    const char* hex;
};

constexpr Row rows[] = {
    {"red", "Red", "#E5484D"},       {"orange", "Orange", "#F76B15"}, {"yellow", "Yellow", "#D4A017"},
    {"green", "Green", "#30A46C"},   {"blue", "Blue", "#0090FF"},     {"purple", "Purple", "#8E4EC6"},
    {"gray", "Gray", "#8B8D98"},
};

std::optional<int> hexDigit(QChar c)
{
    const char16_t u = c.unicode();
    if (u >= '0' && u <= '9')
        return u - '0';
    if ((u | 0x20) >= 'a' && (u | 0x20) <= 'f')
        return (u | 0x20) - 'a' + 10;
    return std::nullopt;
}

}

QString MarkdownTextColor::rawValue() const { return QLatin1String(rows[m_kind].raw); }
QString MarkdownTextColor::title() const { return QLatin1String(rows[m_kind].title); }
QString MarkdownTextColor::hexValue() const { return QLatin1String(rows[m_kind].hex); }
QColor MarkdownTextColor::color() const { return QColor(hexValue()); }

QString MarkdownTextColor::openTag() const
{
    return QStringLiteral("<span style=\"color:") + hexValue() + QStringLiteral("\">");
}

QString MarkdownTextColor::spanPattern()
{
    return QStringLiteral("<span\\s+style\\s*=\\s*[\"']\\s*color\\s*:\\s*([^;\"'<>]+?)\\s*;?\\s*[\"']\\s*>([^\\n]*?)</span>");
}

std::optional<QColor> MarkdownTextColor::parse(QStringView value)
{
    const QStringView v = chars::trimmed(value);
    for (int kind = red; kind <= gray; ++kind) {
        if (v.compare(QLatin1String(rows[kind].raw), Qt::CaseInsensitive) == 0)
            return MarkdownTextColor(Kind(kind)).color();
    }
    if (v.size() == 7 && v[0] == u'#') {
        int rgb[3];
        for (int i = 0; i < 3; ++i) {
            const auto high = hexDigit(v[1 + 2 * i]), low = hexDigit(v[2 + 2 * i]);
            if (!high || !low)
                return std::nullopt;
            rgb[i] = *high * 16 + *low;
        }
        return QColor(rgb[0], rgb[1], rgb[2]);
    }
    if (v.startsWith(u"rgb(", Qt::CaseInsensitive) && v.endsWith(u')')) {
        const QStringView inner = v.mid(4, v.size() - 5);
        int rgb[3];
        int count = 0;
        for (QStringView part : inner.tokenize(u',')) {
            bool ok = false;
            const int component = chars::trimmed(part).toInt(&ok);
            if (!ok || count >= 3 || component < 0 || component > 255)
                return std::nullopt;
            rgb[count++] = component;
        }
        if (count == 3)
            return QColor(rgb[0], rgb[1], rgb[2]);
    }
    return std::nullopt;
}

}
