#pragma once

#include <QImage>
#include <QSizeF>

namespace velmo::markdown {

enum class LatexRenderMode : unsigned char { inline_, display };

struct LatexRenderResult {
    QImage image;
    QSizeF size;           // points
    double baselineOffset = 0; // points below the baseline
};

}
