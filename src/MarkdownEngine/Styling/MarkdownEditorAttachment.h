#pragma once

#include <QImage>
#include <QSizeF>
#include <QString>
#include <optional>

namespace velmo::markdown {

// A picture drawn over a range of the text: a formula, a diagram or an embedded image.
struct MarkdownEditorAttachment {
    struct Placement {
        enum class Kind : unsigned char { inline_, block };
        Kind kind = Kind::block;
        double baselineOffset = 0; // inline only
    };

    QImage image;
    QSizeF size; // points
    Placement placement;
    double lineHeight = 0;
    bool ownsItsRow = false;

    // An absent width is written as -1.0.
    [[nodiscard]] static QString cacheKey(const QString& source, const QString& mode, std::optional<double> width)
    {
        return source + u'\x1f' + mode + u'\x1f' + QString::number(width.value_or(-1.0), 'f', 1);
    }
};

}
