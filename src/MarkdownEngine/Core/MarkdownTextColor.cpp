#include "MarkdownEngine/Core/MarkdownTextColor.h"

#include "MarkdownEngine/Core/TextCharacters.h"

namespace velmo::markdown::text_color {

namespace {

struct Names {
    const char* raw;
    const char* title;
    const char* value;
};

constexpr Names names[] = {
    {"red", "Red", "#E5484D"},       {"orange", "Orange", "#F76B15"}, {"yellow", "Yellow", "#D4A017"},
    {"green", "Green", "#30A46C"},   {"blue", "Blue", "#0090FF"},     {"purple", "Purple", "#8E4EC6"},
    {"gray", "Gray", "#8B8D98"},
};

const Names& namesOf(MarkdownTextColor color)
{
    return names[static_cast<int>(color)];
}

bool isHexColor(QStringView value)
{
    if (value.size() != 7 || value[0] != u'#')
        return false;
    for (qsizetype i = 1; i < value.size(); ++i) {
        const char16_t c = value[i].unicode();
        if (!((c >= u'0' && c <= u'9') || (c >= u'a' && c <= u'f') || (c >= u'A' && c <= u'F')))
            return false;
    }
    return true;
}

}

QString rawValue(MarkdownTextColor color)
{
    return QString::fromLatin1(namesOf(color).raw);
}

QString title(MarkdownTextColor color)
{
    return QString::fromLatin1(namesOf(color).title);
}

QString value(MarkdownTextColor color)
{
    return QString::fromLatin1(namesOf(color).value);
}

QString openTag(MarkdownTextColor color)
{
    return QStringLiteral("<span style=\"color:") + value(color) + QStringLiteral("\">");
}

QString spanPattern()
{
    return QStringLiteral("<span\\s+style\\s*=\\s*[\"']\\s*color\\s*:\\s*([^;\"'<>]+?)\\s*;?\\s*[\"']\\s*>([^\\n]*?)</span>");
}

std::optional<MarkdownTextColor> fromName(QStringView name)
{
    for (MarkdownTextColor color : all) {
        if (chars::trimmed(name).compare(QLatin1String(namesOf(color).raw), Qt::CaseInsensitive) == 0)
            return color;
    }
    return std::nullopt;
}

std::optional<QColor> parse(QStringView text)
{
    const QStringView v = chars::trimmed(text);
    if (const auto named = fromName(v))
        return QColor(QLatin1String(namesOf(*named).value));
    if (isHexColor(v))
        return QColor(v.toString());
    if (!v.startsWith(QLatin1String("rgb("), Qt::CaseInsensitive) || !v.endsWith(u')'))
        return std::nullopt;
    const QList<QStringView> parts = v.mid(4, v.size() - 5).split(u',');
    if (parts.size() != 3)
        return std::nullopt;
    int channels[3] = {};
    for (int i = 0; i < 3; ++i) {
        bool ok = false;
        channels[i] = chars::trimmed(parts[i]).toInt(&ok);
        if (!ok || channels[i] < 0 || channels[i] > 255)
            return std::nullopt;
    }
    return QColor(channels[0], channels[1], channels[2]);
}

}
