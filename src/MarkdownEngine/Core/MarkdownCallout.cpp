#include "MarkdownEngine/Core/MarkdownCallout.h"

#include "MarkdownEngine/Core/TextCharacters.h"

namespace velmo::markdown {

namespace {

struct Row {
    const char* raw;
    const char* title;
    const char* marker;
    const char* symbol;
};

constexpr Row rows[] = {
    {"note", "Note", "NOTE", "info.circle.fill"},
    {"tip", "Tip", "TIP", "lightbulb.fill"},
    {"important", "Important", "IMPORTANT", "exclamationmark.circle.fill"},
    {"warning", "Warning", "WARNING", "exclamationmark.triangle.fill"},
    {"caution", "Caution", "CAUTION", "flame.fill"},
};

}

QString MarkdownCallout::rawValue() const { return QLatin1String(rows[m_kind].raw); }
QString MarkdownCallout::title() const { return QLatin1String(rows[m_kind].title); }
QString MarkdownCallout::marker() const { return QLatin1String(rows[m_kind].marker); }
QString MarkdownCallout::symbolName() const { return QLatin1String(rows[m_kind].symbol); }

std::optional<MarkdownCallout> MarkdownCallout::detect(QStringView text)
{
    const qsizetype open = text.indexOf(u'[');
    if (open < 0)
        return std::nullopt;
    const qsizetype close = text.indexOf(u']', open + 1);
    if (close < 0)
        return std::nullopt;
    const QStringView inner = text.mid(open + 1, close - open - 1);
    if (inner.size() < 2 || inner[0] != u'!')
        return std::nullopt;
    const QStringView name = chars::trimmed(inner.mid(1));
    for (int kind = note; kind <= caution; ++kind) {
        if (name.compare(QLatin1String(rows[kind].marker), Qt::CaseInsensitive) == 0)
            return MarkdownCallout(Kind(kind));
    }
    return std::nullopt;
}

}
