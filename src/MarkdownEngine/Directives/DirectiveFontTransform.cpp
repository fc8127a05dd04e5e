#include "MarkdownEngine/Directives/DirectiveFontTransform.h"

namespace velmo::markdown {

QFont DirectiveFontTransform::apply(const QFont& font) const
{
    QFont result = font;
    if (size) {
        if (const auto* absolute = std::get_if<Absolute>(&*size)) {
            if (absolute->points > 0)
                result.setPointSizeF(absolute->points);
        } else if (const double factor = std::get<Scale>(*size).factor; factor > 0 && font.pointSizeF() > 0) {
            result.setPointSizeF(font.pointSizeF() * factor);
        }
    }
    if (traits) {
        if (traits->weight)
            result.setWeight(*traits->weight);
        if (traits->italic)
            result.setItalic(*traits->italic);
    }
    if (familyName)
        result.setFamilies(QStringList{*familyName});
    if (custom)
        result = custom(result);
    return result;
}

}
