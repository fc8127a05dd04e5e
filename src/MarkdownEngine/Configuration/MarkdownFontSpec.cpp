#include "MarkdownEngine/Configuration/MarkdownFontSpec.h"

#include <QFontMetricsF>
#include <QHash>
#include <QMutex>

namespace velmo::markdown {

QFont MarkdownFontSpec::toQFont() const
{
    QFont font(family);
    font.setPointSizeF(std::max(0.1f, pointSize));
    font.setWeight(QFont::Weight(weight));
    font.setItalic(italic);
    return font;
}

double MarkdownFontSpec::width(const QString& text) const
{
    // Metrics are costly to make and the styler measures the same few fonts over and over.
    static QMutex mutex;
    static QHash<QString, QFontMetricsF*> metrics;
    const QString key = family + u'|' + QString::number(pointSize) + u'|' + QString::number(weight)
        + (italic ? u'i' : u'r');
    QString measured = text;
    if (tabularDigits) {
        for (QChar& c : measured) {
            if (c.isDigit())
                c = u'0';
        }
    }
    QMutexLocker lock(&mutex);
    QFontMetricsF*& m = metrics[key];
    if (!m)
        m = new QFontMetricsF(toQFont()); // lives for the process, as the font database does
    return m->horizontalAdvance(measured);
}

}
