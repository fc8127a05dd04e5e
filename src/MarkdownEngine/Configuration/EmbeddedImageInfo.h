#pragma once

#include <QImage>
#include <QSizeF>
#include <QString>
#include <optional>

namespace velmo::markdown {

// A picture handed back by an image or diagram service; `size` is in points.
struct EmbeddedImageInfo {
    QImage image;
    QSizeF size;
    std::optional<QString> error;
};

}
