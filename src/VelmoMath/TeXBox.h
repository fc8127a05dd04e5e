#pragma once

#include <QColor>
#include <QGlyphRun>
#include <QJsonObject>
#include <QRectF>
#include <QString>
#include <memory>
#include <optional>
#include <variant>
#include <vector>

namespace velmo::math {

struct TeXBox;
using TeXBoxPtr = std::shared_ptr<const TeXBox>;

// What a box holds. Coordinates are points in the box's own frame: x to the right, y up,
// origin on the box's baseline at its left edge.
//
// A glyph sits with its origin on the box's origin; `run` holds the shaped glyphs and the
// font (the font of a glyph is run.rawFont()); `ink` is the glyphs' inked area, y up.
// No colour means the ink colour the box is drawn with.
struct TeXGlyph {
    QString text;
    QGlyphRun run;
    QRectF ink;
    std::optional<QColor> color;
};
struct TeXRule {
    QRectF rect; // y up: rect.y() is the lower edge
};
struct TeXGroup {
    TeXBoxPtr box;
    double dx = 0;
    double dy = 0;
};
// A box drawn scaled about its origin.
struct TeXScaled {
    TeXBoxPtr box;
    double scaleX = 1;
    double scaleY = 1;
};

using TeXItem = std::variant<TeXGlyph, TeXRule, TeXGroup, TeXScaled>;

// A measured piece of a formula, ready to draw. Lengths are points; `height` rises above the
// baseline and `depth` falls below it.
struct TeXBox {
    double width = 0;
    double height = 0;
    double depth = 0;
    std::vector<TeXItem> items;

    [[nodiscard]] static TeXBox empty() { return {}; }

    // The area the items ink, y up, in this box's frame; empty when nothing is inked.
    [[nodiscard]] QRectF inkBounds() const;
    // The box tree with positions, glyph texts, font families and sizes (numbers rounded
    // to thousandths of a point), for the command line and for tests.
    [[nodiscard]] QJsonObject toJson() const;
};

[[nodiscard]] inline TeXBoxPtr share(TeXBox box)
{
    return std::make_shared<const TeXBox>(std::move(box));
}

}
