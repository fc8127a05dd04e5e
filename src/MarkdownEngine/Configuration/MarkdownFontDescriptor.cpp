#include "MarkdownEngine/Configuration/MarkdownFontDescriptor.h"

#include <QFontMetricsF>
#include <QHash>
#include <QMutex>

namespace velmo::markdown {

QFont MarkdownFontDescriptor::toQFont() const
{
    QFont font(family);
    font.setPointSizeF(std::max(0.1f, pointSize));
    font.setWeight(QFont::Weight(weight));
    font.setItalic(italic);
    return font;
}

double MarkdownFontDescriptor::width(const QString& text) const
{
    // Metrics are costly to make and the styler measures the same few fonts over and over.
    // Made once and kept for the process, as the font database is: tearing metrics down after
    // the application object would touch a dead database.
    static QMutex mutex;
    static auto* const metrics = new QHash<QString, QFontMetricsF*>();
    // Shaping a string costs microseconds, and list markers ("- ", "12. ", "- [ ] ") come back
    // by the thousand in a long note: short strings keep their widths, up to a bound.
    static auto* const widths = new QHash<QString, double>();
    constexpr qsizetype longestRemembered = 12;
    constexpr qsizetype widthsKept = 4096;
    const QString key = family + u'|' + QString::number(pointSize) + u'|' + QString::number(weight)
        + (italic ? u'i' : u'r');
    QString measured = text;
    if (tabularDigits) {
        for (QChar& c : measured) {
            if (c.isDigit())
                c = u'0';
        }
    }
    const bool remembered = measured.size() <= longestRemembered;
    const QString widthKey = remembered ? key + u'\x1f' + measured : QString();
    QMutexLocker lock(&mutex);
    if (remembered) {
        if (const auto it = widths->constFind(widthKey); it != widths->constEnd())
            return *it;
    }
    QFontMetricsF*& m = (*metrics)[key];
    if (!m)
        m = new QFontMetricsF(toQFont());
    const double width = m->horizontalAdvance(measured);
    if (remembered) {
        if (widths->size() >= widthsKept)
            widths->clear();
        widths->insert(widthKey, width);
    }
    return width;
}

}
