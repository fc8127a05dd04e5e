#include "VelmoMath/TeXMetrics.h"

#include <cmath>

namespace velmo::math {

TeXMetrics::Line TeXMetrics::line(QStringView text, const TeXFont& font)
{
    if (text.size() == 1) {
        const quint64 key = (quint64(font.id) << 32) | text[0].unicode();
        auto found = single.find(key);
        if (found == single.end())
            found = single.insert(key, shape(text, font));
        return found.value();
    }
    // The font id in front keeps texts of different fonts apart.
    QString key;
    key.reserve(text.size() + 2);
    key.append(QChar(ushort(font.id >> 16))).append(QChar(ushort(font.id & 0xFFFF))).append(text);
    auto found = longer.find(key);
    if (found == longer.end()) {
        if (longer.size() >= maxLongerLines)
            longer.clear();
        found = longer.insert(key, shape(text, font));
    }
    return found.value();
}

TeXMetrics::Line TeXMetrics::shape(QStringView text, const TeXFont& font)
{
    Line line;
    const QRawFont& raw = font.raw;
    if (!raw.isValid() || text.isEmpty())
        return line;
    const QList<quint32> glyphs = raw.glyphIndexesForString(text.toString());
    const QList<QPointF> advances =
        raw.advancesForGlyphIndexes(glyphs, QRawFont::SeparateAdvances | QRawFont::KernedAdvances);
    QList<QPointF> positions;
    positions.reserve(glyphs.size());
    double x = 0;
    QRectF ink;
    for (qsizetype i = 0; i < glyphs.size(); ++i) {
        positions.append(QPointF(x, 0));
        const QRectF bounds = raw.boundingRect(glyphs[i]); // y down, relative to the origin
        if (!bounds.isEmpty()) {
            const QRectF up(x + bounds.left(), -bounds.bottom(), bounds.width(), bounds.height());
            ink = ink.isNull() ? up : ink.united(up);
        }
        const double advance = i < advances.size() ? advances[i].x() : 0;
        x += std::isfinite(advance) ? advance : 0;
    }
    line.run.setRawFont(raw);
    line.run.setGlyphIndexes(glyphs);
    line.run.setPositions(positions);
    line.advance = std::max(0.0, x);
    // Tall glyphs (a display sum, an integral) reach beyond the common bounds: their ink counts.
    line.ascent = std::max(font.ascent, ink.isNull() ? 0.0 : ink.bottom());
    line.descent = std::max(font.descent, ink.isNull() ? 0.0 : -ink.top());
    line.ink = ink;
    return line;
}

TeXBox TeXMetrics::box(QStringView text, const TeXFont& font, std::optional<QColor> color)
{
    const Line measured = line(text, font);
    TeXBox box;
    box.width = measured.advance;
    box.height = measured.ascent;
    box.depth = measured.descent;
    box.items.push_back(TeXGlyph{text.toString(), measured.run, measured.ink, std::move(color)});
    return box;
}

TeXBox TeXMetrics::inkBox(QStringView text, const TeXFont& font, std::optional<QColor> color)
{
    const Line measured = line(text, font);
    if (measured.ink.isNull())
        return TeXBox::empty();
    TeXBox glyph = box(text, font, std::move(color));
    TeXBox box;
    box.width = measured.ink.width();
    box.height = measured.ink.bottom(); // y up: the top edge
    box.depth = -measured.ink.top();
    box.items.push_back(TeXGroup{share(std::move(glyph)), -measured.ink.left(), 0});
    return box;
}

}
