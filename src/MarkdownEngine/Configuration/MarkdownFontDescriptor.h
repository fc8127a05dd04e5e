#pragma once

#include <QFont>
#include <QString>
#include <cstdint>

namespace velmo::markdown {

// A font as the styler hands it on: family, size, weight and traits, nothing platform-bound.
// The text surface turns it into a QFont; tests and the command line read it as it stands.
//
// The family is held as its number in a table of the names the process has used, so that a
// descriptor, which every fragment and run of a note carries, copies, compares and is
// destroyed as plain bytes. A name keeps its number for the life of the process: equal names
// have equal numbers and different names different ones.
struct MarkdownFontDescriptor {
    MarkdownFontDescriptor() = default;
    MarkdownFontDescriptor(const QString& family, float pointSize)
        : pointSize(pointSize)
        , m_family(familyNumber(family))
    {
    }

    float pointSize = 12.0f;
    short weight = QFont::Normal; // QFont::Weight values (400 regular, 700 bold)
    bool italic = false;
    // Digits all take one width. Qt 6.4 sets no OpenType features, so measuring stands in for
    // it: every digit is measured as "0".
    bool tabularDigits = false;

    [[nodiscard]] const QString& family() const;
    void setFamily(const QString& family) { m_family = familyNumber(family); }
    // Equal exactly when the families are: for keys that hash and compare descriptors.
    [[nodiscard]] std::uint32_t familyKey() const { return m_family; }

    [[nodiscard]] bool isBold() const { return weight >= QFont::DemiBold; }
    [[nodiscard]] QFont toQFont() const;
    // Width of a short string in this font, in points.
    [[nodiscard]] double width(const QString& text) const;

    friend bool operator==(const MarkdownFontDescriptor&, const MarkdownFontDescriptor&) = default;

private:
    [[nodiscard]] static std::uint32_t familyNumber(const QString& family);

    std::uint32_t m_family = 0; // 0 is the empty name
};

}
