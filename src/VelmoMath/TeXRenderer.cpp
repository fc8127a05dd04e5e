#include "VelmoMath/TeXRenderer.h"

#include <QPainter>
#include <cmath>

namespace velmo::math {

namespace {

// Box coordinates are y up; (x, y) is the box's origin in painter coordinates (y down).
void drawBox(QPainter& painter, const TeXBox& box, double x, double y, const QColor& ink)
{
    for (const TeXItem& item : box.items) {
        if (const auto* glyph = std::get_if<TeXGlyph>(&item)) {
            painter.setPen(glyph->color.value_or(ink));
            painter.drawGlyphRun(QPointF(x, y), glyph->run);
        } else if (const auto* rule = std::get_if<TeXRule>(&item)) {
            const QRectF& r = rule->rect;
            painter.fillRect(QRectF(x + r.x(), y - r.y() - r.height(), r.width(), r.height()), ink);
        } else if (const auto* group = std::get_if<TeXGroup>(&item)) {
            drawBox(painter, *group->box, x + group->dx, y - group->dy, ink);
        } else if (const auto* scaled = std::get_if<TeXScaled>(&item)) {
            painter.save();
            painter.translate(x, y);
            painter.scale(scaled->scaleX, scaled->scaleY);
            drawBox(painter, *scaled->box, 0, 0, ink);
            painter.restore();
        }
    }
}

}

void TeXRenderer::draw(QPainter& painter, const TeXBox& box, QPointF origin, const QColor& ink)
{
    painter.save();
    painter.setRenderHints(QPainter::Antialiasing | QPainter::TextAntialiasing);
    drawBox(painter, box, origin.x(), origin.y(), ink);
    painter.restore();
}

TeXRenderer::Picture TeXRenderer::picture(const TeXBox& box, double scale, const QColor& ink, double padding,
                                          int maxPixels)
{
    // The area to show, y up: the box itself and any ink beyond it.
    QRectF area(0, -box.depth, box.width, box.height + box.depth);
    const QRectF inked = box.inkBounds();
    if (!inked.isNull())
        area = area.united(inked);
    area.adjust(-padding, -padding, padding, padding);

    const double largest = std::max(area.width(), area.height());
    if (!(scale > 0) || !std::isfinite(scale))
        scale = 1;
    if (largest * scale > maxPixels)
        scale = maxPixels / largest;
    const int width = std::max(1, int(std::ceil(area.width() * scale)));
    const int height = std::max(1, int(std::ceil(area.height() * scale)));

    Picture picture;
    picture.image = QImage(width, height, QImage::Format_ARGB32_Premultiplied);
    picture.image.setDevicePixelRatio(scale);
    picture.image.fill(Qt::transparent);
    picture.baseline = area.bottom(); // the top edge, y up, is the distance down to the baseline
    picture.left = -area.left();
    QPainter painter(&picture.image);
    draw(painter, box, QPointF(picture.left, picture.baseline), ink);
    return picture;
}

}
