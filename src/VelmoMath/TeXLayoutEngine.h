#pragma once

#include "VelmoMath/TeXBox.h"
#include "VelmoMath/TeXFontResolver.h"
#include "VelmoMath/TeXNode.h"

#include <QColor>
#include <optional>

namespace velmo::math {

// Lays out a parsed formula as a box of positioned glyphs and rules. All spacing comes from
// fixed fractions of the current size (no math font tables); lengths are points, y up, the
// origin on the baseline. A layout starts from scratch each time; only fonts and glyph
// measures are kept, by the resolver.
class TeXLayoutEngine {
public:
    explicit TeXLayoutEngine(TeXFontResolver& resolver, double fontSize = 16, std::optional<QColor> color = {},
                             QColor missingColor = QColor(0xD3, 0x2F, 0x2F));

    [[nodiscard]] TeXBox layout(const TeXNode& node, TeXStyle style) const;
    // Parses and lays out in one step.
    [[nodiscard]] TeXBox layout(QStringView source, TeXStyle style) const;

    // The size of a style relative to `fontSize`.
    [[nodiscard]] static double scale(TeXStyle style);
    [[nodiscard]] double size(TeXStyle style) const { return baseSize() * scale(style); }

    TeXFontResolver& resolver;
    double fontSize;
    std::optional<QColor> color;
    QColor missingColor;

private:
    // fontSize, kept to sizes a font can have so that no box turns out NaN or negative.
    [[nodiscard]] double baseSize() const;
    TeXBox glyph(QStringView text, TeXFontRole role, double size, std::optional<QColor> ink) const;
    TeXBox layoutAtom(const TeXNode::Atom& atom, TeXStyle style) const;
    TeXBox layoutRow(const std::vector<TeXNode>& children, TeXStyle style) const;
    TeXBox layoutLargeOperator(const TeXNode::LargeOperator& op, TeXStyle style) const;
    TeXBox layoutFraction(const TeXNode::Fraction& fraction, TeXStyle style) const;
    TeXBox layoutStack(const TeXNode::Stack& stack, TeXStyle style) const;
    TeXBox layoutRadical(const TeXNode::Radical& radical, TeXStyle style) const;
    TeXBox layoutScripts(const TeXNode::Scripts& scripts, TeXStyle style) const;
    TeXBox layoutDelimited(const TeXNode::Delimited& delimited, TeXStyle style) const;
    TeXBox layoutAccent(const TeXNode::Accent& accent, TeXStyle style) const;
    TeXBox layoutBar(const TeXNode::Bar& bar, TeXStyle style) const;
    TeXBox layoutMatrix(const TeXNode::Matrix& matrix, TeXStyle style) const;
    // A delimiter scaled vertically to at least `height` (never below its natural size).
    TeXBox stretched(QStringView text, double height, TeXStyle style) const;
    // Places a delimiter box beside `body`, centred on it vertically.
    static void appendCentred(TeXBox& row, const TeXBox& delimiter, const TeXBox& body);
    TeXBox layoutChild(const TeXNodePtr& node, TeXStyle style) const;
};

}
