#pragma once

#include "VelmoMath/TeXFont.h"
#include "VelmoMath/TeXMetrics.h"
#include "VelmoMath/TeXNode.h"

#include <QHash>
#include <QStringList>
#include <QStringView>
#include <vector>

namespace velmo::math {

// Finds the font for a role, a size and a text, and keeps every font it has built: loading a
// face and sizing it are the expensive steps of a layout. Roles map to the Times faces
// (served by the metric-compatible Liberation Serif on Linux), Helvetica (Liberation Sans) and
// Menlo (DejaVu Sans Mono); symbols and the blackboard, calligraphic and fraktur letters come
// from a math font. When a face lacks a character of the text, the next candidate that has
// them all is taken, and when no font is installed at all the application's default font is.
// Not thread-safe: one resolver per thread.
class TeXFontResolver {
public:
    TeXFontResolver() = default;
    TeXFontResolver(const TeXFontResolver&) = delete;
    TeXFontResolver& operator=(const TeXFontResolver&) = delete;

    // `size` in points (one point is one unit of the layout).
    [[nodiscard]] TeXFont font(TeXFontRole role, double size, QStringView text);
    [[nodiscard]] TeXMetrics& metrics() { return measures; }

    // Blackboard, calligraphic and fraktur Latin letters (and blackboard digits) become the
    // letters of the Unicode mathematical alphanumeric block; anything else is unchanged.
    [[nodiscard]] static QString alphabetText(TeXFontRole role, QStringView text);

private:
    struct Face {
        QString family;
        bool bold = false;
        bool italic = false;
        QRawFont raw; // invalid when the family is not installed
        bool loaded = false;
    };

    int faceIndex(const QString& family, bool bold, bool italic);
    const QRawFont& faceFont(int index);
    const std::vector<int>& candidates(TeXFontRole role);
    TeXFont sized(int face, double size);
    static bool covers(const QRawFont& raw, QStringView text);

    std::vector<Face> faces;
    std::vector<std::vector<int>> roleCandidates; // by role, the faces to try in order
    QHash<quint64, TeXFont> sizedFonts;           // face and size to font
    QHash<quint64, TeXFont> singleChoices;        // role, size and one unit to font
    QHash<QString, TeXFont> longerChoices;        // role, size and text to font
    TeXMetrics measures;
};

}
