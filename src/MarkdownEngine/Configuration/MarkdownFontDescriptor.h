#pragma once

#include <QFont>
#include <QString>

namespace velmo::markdown {

// A font as the styler hands it on: family, size, weight and traits, nothing platform-bound.
// The text surface turns it into a QFont; tests and the command line read it as it stands.
struct MarkdownFontDescriptor {
    QString family;
    float pointSize = 12.0f;
    short weight = QFont::Normal; // QFont::Weight values (400 regular, 700 bold)
    bool italic = false;
    // Digits all take one width. Qt 6.4 sets no OpenType features, so measuring stands in for
    // it: every digit is measured as "0".
    bool tabularDigits = false;

    [[nodiscard]] bool isBold() const { return weight >= QFont::DemiBold; }
    [[nodiscard]] QFont toQFont() const;
    // Width of a short string in this font, in points.
    [[nodiscard]] double width(const QString& text) const;

    friend bool operator==(const MarkdownFontDescriptor&, const MarkdownFontDescriptor&) = default;
};

}
