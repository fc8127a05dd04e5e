#include "MarkdownEngine/Configuration/MarkdownFontDescriptor.h"

#include <QFontMetricsF>
#include <QHash>
#include <QMutex>
#include <deque>

namespace velmo::markdown {

namespace {

// The family names by number. A deque, so that a name handed out by reference stays where it
// is while others are added; it only grows, by one entry for each name ever used, and the
// names are few: the configured and system families, and what font directives name.
struct FamilyNames {
    QMutex mutex;
    std::deque<QString> names{QString()};
    QHash<QString, std::uint32_t> numbers{{QString(), 0}};
};

FamilyNames& familyNames()
{
    // Kept for the process: descriptors in static objects may outlive any other owner.
    static auto* const table = new FamilyNames;
    return *table;
}

}

std::uint32_t MarkdownFontDescriptor::familyNumber(const QString& family)
{
    if (family.isEmpty())
        return 0;
    FamilyNames& table = familyNames();
    QMutexLocker lock(&table.mutex);
    const auto it = table.numbers.constFind(family);
    if (it != table.numbers.constEnd())
        return *it;
    const auto number = std::uint32_t(table.names.size());
    table.names.push_back(family);
    table.numbers.insert(family, number);
    return number;
}

const QString& MarkdownFontDescriptor::family() const
{
    static const QString none;
    if (m_family == 0)
        return none;
    FamilyNames& table = familyNames();
    QMutexLocker lock(&table.mutex);
    return table.names[m_family];
}

QFont MarkdownFontDescriptor::toQFont() const
{
    QFont font(family());
    font.setPointSizeF(std::max(0.1f, pointSize));
    font.setWeight(QFont::Weight(weight));
    font.setItalic(italic);
    return font;
}

namespace {

// What a width depends on: the face and the text. Keys are compared, not formatted into
// strings, since the styler asks for a width per list marker and table cell.
struct FaceKey {
    std::uint32_t family;
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
    WidthKey key{{m_family, pointSize, weight, italic}, remembered ? measured : QString()};
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
