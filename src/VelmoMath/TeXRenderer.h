#pragma once

#include "VelmoMath/TeXBox.h"

#include <QColor>
#include <QImage>
#include <QPointF>

class QPainter;

namespace velmo::math {

// Draws laid-out formulas. Glyphs are drawn as outlines at the painter's transform, so a
// picture stays crisp at any scale.
class TeXRenderer {
public:
    // Draws `box` with its baseline's left end at `origin` (painter coordinates, y down), in
    // `ink` wherever a glyph has no colour of its own.
    static void draw(QPainter& painter, const TeXBox& box, QPointF origin, const QColor& ink);

    struct Picture {
        QImage image;         // transparent outside the ink; devicePixelRatio is the scale
        double baseline = 0;  // points from the image's top edge to the box's baseline
        double left = 0;      // points from the image's left edge to the box's origin
    };
    // A picture of the box and everything it inks (which may overhang the box), with
    // `padding` points of room around it, at `scale` pixels per point. Pictures wider or
    // taller than `maxPixels` are drawn at a smaller scale.
    [[nodiscard]] static Picture picture(const TeXBox& box, double scale, const QColor& ink, double padding = 1,
                                         int maxPixels = 16384);
};

}
