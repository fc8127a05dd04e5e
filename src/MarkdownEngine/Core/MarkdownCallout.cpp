#include "MarkdownEngine/Core/MarkdownCallout.h"

#include "MarkdownEngine/Core/TextCharacters.h"

namespace velmo::markdown::callout {

namespace {

struct Names {
    const char* raw;
    const char* title;
    const char* marker;
    const char* symbol;
};

constexpr Names names[] = {
    {"note", "Note", "NOTE", "info.circle.fill"},
    {"tip", "Tip", "TIP", "lightbulb.fill"},
    {"important", "Important", "IMPORTANT", "exclamationmark.circle.fill"},
    {"warning", "Warning", "WARNING", "exclamationmark.triangle.fill"},
    {"caution", "Caution", "CAUTION", "flame.fill"},
};

const Names& namesOf(MarkdownCallout kind)
{
    return names[static_cast<int>(kind)];
}

}

QString rawValue(MarkdownCallout kind)
{
    return QString::fromLatin1(namesOf(kind).raw);
}

QString title(MarkdownCallout kind)
{
    return QString::fromLatin1(namesOf(kind).title);
}

QString marker(MarkdownCallout kind)
{
    return QString::fromLatin1(namesOf(kind).marker);
}

QString symbolName(MarkdownCallout kind)
{
    return QString::fromLatin1(namesOf(kind).symbol);
}

std::optional<MarkdownCallout> fromName(QStringView name)
{
    for (MarkdownCallout kind : all) {
        if (name.compare(QLatin1String(namesOf(kind).marker), Qt::CaseInsensitive) == 0)
            return kind;
    }
    return std::nullopt;
}

std::optional<MarkdownCallout> detect(QStringView quoteText)
{
    const qsizetype open = quoteText.indexOf(u'[');
    if (open < 0)
        return std::nullopt;
    const qsizetype close = quoteText.indexOf(u']', open + 1);
    if (close < 0)
        return std::nullopt;
    const QStringView inside = quoteText.mid(open + 1, close - open - 1);
    if (inside.size() < 2 || inside[0] != u'!')
        return std::nullopt;
    return fromName(chars::trimmed(inside.mid(1)));
}

}
