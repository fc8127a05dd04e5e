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

namespace {

// What a width depends on: the face and the text. Keys are compared, not formatted into
// strings, since the styler asks for a width per list marker and table cell.
struct FaceKey {
    QString family;
    float pointSize;
    short weight;
    bool italic;
    bool operator==(const FaceKey&) const = default;
};
size_t qHash(const FaceKey& k, size_t seed = 0)
{
    return qHashMulti(seed, k.family, k.pointSize, k.weight, k.italic);
}

struct WidthKey {
    FaceKey face;
    QString text;
    bool operator==(const WidthKey&) const = default;
};
size_t qHash(const WidthKey& k, size_t seed = 0)
{
    return qHashMulti(seed, k.face, k.text);
}

}

double MarkdownFontDescriptor::width(const QString& text) const
{
    // Metrics are costly to make and the styler measures the same few fonts over and over.
    // Made once and kept for the process, as the font database is: tearing metrics down after
    // the application object would touch a dead database.
    static QMutex mutex;
    static auto* const metrics = new QHash<FaceKey, QFontMetricsF*>();
    // Shaping a string costs microseconds, and list markers ("- ", "12. ", "- [ ] ") come back
    // by the thousand in a long note: short strings keep their widths, up to a bound.
    static auto* const widths = new QHash<WidthKey, double>();
    constexpr qsizetype longestRemembered = 12;
    constexpr qsizetype widthsKept = 4096;
    QString measured = text;
    if (tabularDigits) {
        for (QChar& c : measured) {
            if (c.isDigit())
                c = u'0';
        }
    }
    const bool remembered = measured.size() <= longestRemembered;
    WidthKey key{{family, pointSize, weight, italic}, remembered ? measured : QString()};
    QMutexLocker lock(&mutex);
    if (remembered) {
        if (const auto it = widths->constFind(key); it != widths->constEnd())
            return *it;
    }
    QFontMetricsF*& m = (*metrics)[key.face];
    if (!m)
        m = new QFontMetricsF(toQFont());
    const double width = m->horizontalAdvance(measured);
    if (remembered) {
        if (widths->size() >= widthsKept)
            widths->clear();
        widths->insert(std::move(key), width);
    }
    return width;
}

}
