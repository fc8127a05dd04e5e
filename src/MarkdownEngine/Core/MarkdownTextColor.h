#pragma once

#include <QColor>
#include <QString>
#include <QStringView>
#include <optional>

namespace velmo::markdown {

// The named text colours the colour menu writes as HTML spans.
class MarkdownTextColor {
public:
    enum Kind : unsigned char { red, orange, yellow, green, blue, purple, gray };

    constexpr MarkdownTextColor(Kind kind) : m_kind(kind) {}

    constexpr Kind kind() const { return m_kind; }
    [[nodiscard]] QString rawValue() const; // "red"
    [[nodiscard]] QString title() const;    // "Red"
    [[nodiscard]] QString hexValue() const; // "#E5484D"
    [[nodiscard]] QColor color() const;
    // `<span style="color:#E5484D">`, the form spanPattern reads back.
    [[nodiscard]] QString openTag() const;

    // ICU syntax; group 1 is the colour value, group 2 the coloured text.
    [[nodiscard]] static QString spanPattern();
    // One of the seven names, "#rrggbb" or "rgb(r, g, b)"; anything else is no colour.
    [[nodiscard]] static std::optional<QColor> parse(QStringView value);

    friend constexpr bool operator==(MarkdownTextColor, MarkdownTextColor) = default;

private:
    Kind m_kind;
};

}
