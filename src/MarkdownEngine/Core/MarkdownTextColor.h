#pragma once

#include <QColor>
#include <QString>
#include <QStringView>
#include <array>
#include <optional>

namespace velmo::markdown {

// The named text colours, written into a note as an inline HTML span.
enum class MarkdownTextColor : unsigned char { red, orange, yellow, green, blue, purple, gray };

namespace text_color {
inline constexpr std::array<MarkdownTextColor, 7> all{MarkdownTextColor::red,   MarkdownTextColor::orange,
                                                      MarkdownTextColor::yellow, MarkdownTextColor::green,
                                                      MarkdownTextColor::blue,  MarkdownTextColor::purple,
                                                      MarkdownTextColor::gray};
// "red", "orange", ...
[[nodiscard]] QString rawValue(MarkdownTextColor color);
[[nodiscard]] QString title(MarkdownTextColor color);
// "#E5484D", ...
[[nodiscard]] QString value(MarkdownTextColor color);
// "<span style=\"color:" + value + "\">".
[[nodiscard]] QString openTag(MarkdownTextColor color);
// The pattern that finds a colour span again: group 1 is the colour, group 2 the text.
[[nodiscard]] QString spanPattern();
// The named colour with that raw value, case ignored.
[[nodiscard]] std::optional<MarkdownTextColor> fromName(QStringView name);
// One of the seven names (its fixed value), "#rrggbb" or "rgb(r, g, b)"; anything else is no
// colour.
[[nodiscard]] std::optional<QColor> parse(QStringView value);
}

}
