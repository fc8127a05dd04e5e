#pragma once

#include "MarkdownEngine/Configuration/MarkdownFontDescriptor.h"

#include <QString>
#include <optional>

namespace velmo::markdown {

// Font helpers. Families are looked up in the font database once and remembered.
class MarkdownFont {
public:
    MarkdownFont() = delete;

    enum class Design : unsigned char { system, serif, rounded, monospaced };
    [[nodiscard]] static QString rawValue(Design design);
    [[nodiscard]] static std::optional<Design> design(const QString& rawValue);

    // A trait that `applying` and `removing` take besides a weight.
    enum class Trait : unsigned char { bold, italic };

    [[nodiscard]] static MarkdownFontDescriptor font(Design design, double size, int weight = QFont::Normal);
    [[nodiscard]] static MarkdownFontDescriptor named(const std::optional<QString>& name, double size,
                                                int weight = QFont::Normal);
    [[nodiscard]] static MarkdownFontDescriptor monospaced(double size, int weight = QFont::Normal);
    [[nodiscard]] static MarkdownFontDescriptor serif(double size, int weight = QFont::Normal);
    [[nodiscard]] static MarkdownFontDescriptor rounded(double size, int weight = QFont::Normal);
    [[nodiscard]] static MarkdownFontDescriptor system(double size, int weight = QFont::Normal);

    [[nodiscard]] static MarkdownFontDescriptor withSize(const MarkdownFontDescriptor& font, double size);
    [[nodiscard]] static MarkdownFontDescriptor tabularDigits(const MarkdownFontDescriptor& font);
    // A weight at or above semibold makes it bold; at or below light takes bold away.
    [[nodiscard]] static MarkdownFontDescriptor applying(int weight, const MarkdownFontDescriptor& font);
    [[nodiscard]] static MarkdownFontDescriptor applying(Trait trait, const MarkdownFontDescriptor& font);
    [[nodiscard]] static MarkdownFontDescriptor removing(Trait trait, const MarkdownFontDescriptor& font);

    // The first of the preferred serif families that is installed; may be none.
    [[nodiscard]] static const std::optional<QString>& preferredSerif();
    [[nodiscard]] static QString systemSerif();
    [[nodiscard]] static QString systemMonospaced();
    [[nodiscard]] static QString systemRounded();
    // The family of the system font; empty when the platform gives none.
    [[nodiscard]] static QString systemFamily();
    [[nodiscard]] static bool isAvailable(const QString& family);
};

}
