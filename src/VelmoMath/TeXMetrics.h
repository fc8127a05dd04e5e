#pragma once

#include "VelmoMath/TeXBox.h"
#include "VelmoMath/TeXFont.h"

#include <QHash>
#include <QStringView>

namespace velmo::math {

// Measures and shapes short texts (a glyph, an operator name, a \text run) in one font, and
// remembers each result: a formula asks for the same few glyphs again and again.
// Not thread-safe; it belongs to one TeXFontResolver.
class TeXMetrics {
public:
    // One line of text: its glyphs and measures, in points, y up.
    struct Line {
        QGlyphRun run;
        double advance = 0;
        double ascent = 0;  // the common bounds (TeXFont), widened to the ink
        double descent = 0; // positive below the baseline
        QRectF ink;         // the glyphs' inked area; null when nothing is inked
    };

    TeXMetrics() = default;
    TeXMetrics(const TeXMetrics&) = delete;
    TeXMetrics& operator=(const TeXMetrics&) = delete;

    // A copy (it shares its data): references into the cache would not survive its growth.
    [[nodiscard]] Line line(QStringView text, const TeXFont& font);
    // Typographic bounds: the advance, and the line's ascent and descent.
    [[nodiscard]] TeXBox box(QStringView text, const TeXFont& font, std::optional<QColor> color);
    // Ink bounds: the box hugs the inked area, the glyph shifted so that its ink starts at x 0.
    [[nodiscard]] TeXBox inkBox(QStringView text, const TeXFont& font, std::optional<QColor> color);

    [[nodiscard]] qsizetype cachedLines() const { return single.size() + longer.size(); }

private:
    static Line shape(QStringView text, const TeXFont& font);

    // Texts longer than a unit are mostly \text runs, and a long session may type many: the
    // cache starts over past this many rather than grow without end.
    static constexpr qsizetype maxLongerLines = 4096;

    // Most lookups are one UTF-16 unit: those take a key without a string.
    QHash<quint64, Line> single;
    QHash<QString, Line> longer;
};

}
