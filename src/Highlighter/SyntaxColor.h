#pragma once

#include <cstdint>

namespace velmo::highlighter {

// A colour as 0xRRGGBBAA; the library has no QtGui, so adapters turn this into a QColor.
struct SyntaxColor {
    std::uint32_t rgba = 0x000000ff;

    [[nodiscard]] constexpr int red() const { return int(rgba >> 24); }
    [[nodiscard]] constexpr int green() const { return int((rgba >> 16) & 0xff); }
    [[nodiscard]] constexpr int blue() const { return int((rgba >> 8) & 0xff); }
    [[nodiscard]] constexpr int alpha() const { return int(rgba & 0xff); }

    friend constexpr bool operator==(SyntaxColor, SyntaxColor) = default;
};

}
