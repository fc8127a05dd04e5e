#include "VelmoMath/TeXLayoutEngine.h"

#include "VelmoMath/TeXParser.h"
#include "VelmoMath/TeXSymbolTable.h"

#include <algorithm>
#include <array>
#include <cmath>

// Layout, one function per kind of node. Each builds its box from its children's boxes:
//  rows space their children by atom class; scripts, fractions, stacks, radicals, delimiters,
//  accents, bars and matrices place theirs by the constants below, all fractions of the
//  style's size s (or of the font size f where a rule says so).

namespace velmo::math {

namespace {

using Class = TeXAtomClass;

// Space between neighbours in a row, in mu (1/18 of the size), by the left and right classes.
// The row of `opening` keeps the same values as ordinary on purpose.
constexpr std::array<std::array<int, 8>, 8> classSpacing = {{
    //  ord bin rel open close punct op inner
    {{0, 4, 5, 0, 0, 0, 3, 3}}, // ordinary
    {{4, 0, 0, 4, 0, 0, 4, 4}}, // binary
    {{5, 0, 0, 5, 0, 0, 5, 5}}, // relation
    {{0, 4, 5, 0, 0, 0, 3, 3}}, // opening
    {{0, 4, 5, 0, 0, 0, 3, 3}}, // closing
    {{3, 0, 3, 3, 3, 3, 3, 3}}, // punctuation
    {{3, 0, 5, 0, 0, 0, 3, 3}}, // largeOperator
    {{3, 4, 5, 3, 0, 3, 3, 3}}, // inner
}};

// Scripts.
constexpr double scriptKern = 0.03;
constexpr double superscriptDrop = 0.35;
constexpr double superscriptMinimum = 0.42;
constexpr double subscriptMinimum = 0.16;
constexpr double subscriptRaise = 0.6; // of the subscript's height
constexpr double limitsGap = 0.18;
// Fractions and stacks.
constexpr double fractionRule = 0.06;
constexpr double fractionRoom = 0.12;
constexpr double stackGap = 0.12;
constexpr double stackRoom = 0.25;
// Radicals.
constexpr double radicalClearance = 0.05;
constexpr double radicalRuleRoom = 0.1;
constexpr double radicalRule = 0.06;
constexpr double radicalPadding = 0.04;
constexpr double radicalMinimumFactor = 0.5;
constexpr double radicalMaximumFactor = 6;
constexpr double radicalOverlap = 0.92; // where on the surd the rule starts
// Delimiters, bars, accents, operators, matrices.
constexpr double delimiterExtra = 0.2;
constexpr double delimiterPadding = 0.05;
constexpr double barRule = 0.05;
constexpr double barGap = 0.1;
constexpr double accentGap = 0.05;
constexpr double displayOperatorScale = 1.45;
constexpr double missingScale = 0.85;
constexpr double columnGap = 0.8;
constexpr double rowGap = 0.35;
constexpr double matrixRoom = 0.15;
constexpr double casesRoom = 0.18;
constexpr double maxFontSize = 10000;
// The math axis, where matrices and stacks are centred: the height of a minus sign's bar.
constexpr double axisHeight = 0.25;

void place(TeXBox& into, TeXBox child, double dx, double dy)
{
    into.height = std::max(into.height, dy + child.height);
    into.depth = std::max(into.depth, child.depth - dy);
    into.items.push_back(TeXGroup{share(std::move(child)), dx, dy});
}

TeXStyle scriptStyle(TeXStyle style)
{
    return style == TeXStyle::display || style == TeXStyle::text ? TeXStyle::script : TeXStyle::scriptScript;
}

bool startsWithLetter(QStringView text)
{
    if (text.isEmpty())
        return false;
    const char32_t c = QChar::isHighSurrogate(text[0].unicode()) && text.size() > 1
                           ? QChar::surrogateToUcs4(text[0], text[1])
                           : char32_t(text[0].unicode());
    return QChar::isLetter(c);
}

// Resolves binary atoms that cannot be binary: one at the start of a row, or one after an
// atom that leaves nothing for it to operate on (another operator, a relation, an opening,
// punctuation). After closings and inner groups it stays binary, as "(a)+b" needs.
std::vector<Class> resolvedClasses(const std::vector<TeXNode>& children)
{
    std::vector<Class> classes;
    classes.reserve(children.size());
    for (const TeXNode& child : children) {
        Class c = child.atomClass();
        if (c == Class::binary) {
            const bool afterOperand = !classes.empty() && (classes.back() == Class::ordinary ||
                                                           classes.back() == Class::closing ||
                                                           classes.back() == Class::inner);
            if (!afterOperand)
                c = Class::ordinary;
        }
        classes.push_back(c);
    }
    return classes;
}

}

TeXLayoutEngine::TeXLayoutEngine(TeXFontResolver& resolver, double fontSize, std::optional<QColor> color,
                                 QColor missingColor)
    : resolver(resolver), fontSize(fontSize), color(std::move(color)), missingColor(missingColor)
{
}

double TeXLayoutEngine::baseSize() const
{
    return std::isfinite(fontSize) && fontSize > 0 ? std::min(fontSize, maxFontSize) : 0.0;
}

double TeXLayoutEngine::scale(TeXStyle style)
{
    switch (style) {
    case TeXStyle::display:
    case TeXStyle::text: return 1.0;
    case TeXStyle::script: return 0.7;
    case TeXStyle::scriptScript: return 0.5;
    }
    return 1.0;
}

TeXBox TeXLayoutEngine::layout(QStringView source, TeXStyle style) const
{
    return layout(TeXParser::parse(source, style), style);
}

TeXBox TeXLayoutEngine::layoutChild(const TeXNodePtr& node, TeXStyle style) const
{
    return node ? layout(*node, style) : TeXBox::empty();
}

TeXBox TeXLayoutEngine::layout(const TeXNode& node, TeXStyle style) const
{
    const double s = size(style);
    if (const auto* row = node.as<TeXNode::Row>())
        return layoutRow(row->children, style);
    if (const auto* atom = node.as<TeXNode::Atom>())
        return layoutAtom(*atom, style);
    if (const auto* op = node.as<TeXNode::LargeOperator>())
        return layoutLargeOperator(*op, style);
    if (const auto* fraction = node.as<TeXNode::Fraction>())
        return layoutFraction(*fraction, style);
    if (const auto* stack = node.as<TeXNode::Stack>())
        return layoutStack(*stack, style);
    if (const auto* radical = node.as<TeXNode::Radical>())
        return layoutRadical(*radical, style);
    if (const auto* scripts = node.as<TeXNode::Scripts>())
        return layoutScripts(*scripts, style);
    if (const auto* delimited = node.as<TeXNode::Delimited>())
        return layoutDelimited(*delimited, style);
    if (const auto* accent = node.as<TeXNode::Accent>())
        return layoutAccent(*accent, style);
    if (const auto* bar = node.as<TeXNode::Bar>())
        return layoutBar(*bar, style);
    if (const auto* styled = node.as<TeXNode::Styled>())
        return layoutChild(styled->node, styled->style);
    if (const auto* matrix = node.as<TeXNode::Matrix>())
        return layoutMatrix(*matrix, style);
    if (const auto* spacing = node.as<TeXNode::Spacing>()) {
        TeXBox box;
        box.width = std::max(0.0, spacing->em * s);
        return box;
    }
    if (const auto* phantom = node.as<TeXNode::Phantom>()) {
        TeXBox inner = layoutChild(phantom->node, style);
        inner.items.clear();
        return inner;
    }
    if (const auto* missing = node.as<TeXNode::Missing>())
        return glyph(missing->text, TeXFontRole::monospace, missingScale * s, missingColor);
    return TeXBox::empty();
}

TeXBox TeXLayoutEngine::glyph(QStringView text, TeXFontRole role, double size, std::optional<QColor> ink) const
{
    if (text.isEmpty())
        return TeXBox::empty();
    const TeXFont font = resolver.font(role, size, text);
    return resolver.metrics().box(text, font, std::move(ink));
}

TeXBox TeXLayoutEngine::layoutAtom(const TeXNode::Atom& atom, TeXStyle style) const
{
    TeXFontRole role = atom.role;
    // Math italic is for letters: digits, operators and punctuation typed as characters
    // stand upright, as TeX sets them.
    if (role == TeXFontRole::italic && !startsWithLetter(atom.text))
        role = TeXFontRole::roman;
    if (role == TeXFontRole::blackboard || role == TeXFontRole::calligraphic || role == TeXFontRole::fraktur)
        return glyph(TeXFontResolver::alphabetText(role, atom.text), role, size(style), color);
    return glyph(atom.text, role, size(style), color);
}

TeXBox TeXLayoutEngine::layoutRow(const std::vector<TeXNode>& children, TeXStyle style) const
{
    TeXBox row;
    if (children.empty())
        return row;
    const double mu = size(style) / 18;
    const std::vector<Class> classes = resolvedClasses(children);
    double x = 0;
    for (size_t i = 0; i < children.size(); ++i) {
        if (i > 0)
            x += classSpacing[size_t(classes[i - 1])][size_t(classes[i])] * mu;
        TeXBox child = layout(children[i], style);
        const double width = child.width;
        place(row, std::move(child), x, 0);
        x += width;
    }
    row.width = x;
    return row;
}

TeXBox TeXLayoutEngine::layoutLargeOperator(const TeXNode::LargeOperator& op, TeXStyle style) const
{
    // Named operators (lim, sin) are words set upright at the text size; only symbols grow.
    if (startsWithLetter(op.text))
        return glyph(op.text, TeXFontRole::roman, size(style), color);
    const double grow = style == TeXStyle::display ? displayOperatorScale : 1.0;
    return glyph(op.text, TeXFontRole::symbol, size(style) * grow, color);
}

TeXBox TeXLayoutEngine::layoutFraction(const TeXNode::Fraction& fraction, TeXStyle style) const
{
    const double f = baseSize();
    TeXStyle parts = TeXStyle::script;
    double z = f;
    double gap = 0.12 * f;
    switch (fraction.style) {
    case TeXFractionStyle::display:
        parts = TeXStyle::text;
        gap = 0.16 * f;
        break;
    case TeXFractionStyle::text:
        break;
    case TeXFractionStyle::automatic:
        switch (style) {
        case TeXStyle::display:
            parts = TeXStyle::text;
            gap = 0.16 * f;
            break;
        case TeXStyle::text: break;
        case TeXStyle::script:
        case TeXStyle::scriptScript:
            z = f * scale(style);
            gap = 0.12 * z;
            break;
        }
        break;
    }
    const double t = fractionRule * z;
    TeXBox numerator = layoutChild(fraction.numerator, parts);
    TeXBox denominator = layoutChild(fraction.denominator, parts);
    const double width = std::max(numerator.width, denominator.width) + fractionRoom * z;

    TeXBox box;
    box.width = width;
    box.items.push_back(TeXRule{QRectF(0, 0, width, t)});
    const double numeratorDx = (width - numerator.width) / 2;
    const double numeratorDy = t + gap + numerator.depth;
    const double denominatorDx = (width - denominator.width) / 2;
    const double denominatorDy = -(gap + denominator.height);
    box.height = numerator.height + t + gap + numerator.depth;
    box.depth = denominator.height + denominator.depth + gap;
    box.items.push_back(TeXGroup{share(std::move(numerator)), numeratorDx, numeratorDy});
    box.items.push_back(TeXGroup{share(std::move(denominator)), denominatorDx, denominatorDy});
    return box;
}

TeXBox TeXLayoutEngine::layoutStack(const TeXNode::Stack& stack, TeXStyle style) const
{
    const double s = size(style);
    const TeXStyle parts = style == TeXStyle::display ? TeXStyle::text : TeXStyle::script;
    TeXBox upper = layoutChild(stack.upper, parts);
    TeXBox lower = layoutChild(stack.lower, parts);
    const double width = std::max(upper.width, lower.width) + stackRoom * s;
    // The two parts sit either side of the axis, gap apart, like a fraction without its rule.
    const double axis = axisHeight * s;
    const double gap = stackGap * s;
    TeXBox box;
    box.width = width;
    const double upperDx = (width - upper.width) / 2;
    const double upperDy = axis + gap / 2 + upper.depth;
    const double lowerDx = (width - lower.width) / 2;
    const double lowerDy = axis - gap / 2 - lower.height;
    place(box, std::move(upper), upperDx, upperDy);
    place(box, std::move(lower), lowerDx, lowerDy);
    return box;
}

TeXBox TeXLayoutEngine::layoutRadical(const TeXNode::Radical& radical, TeXStyle style) const
{
    const double s = size(style);
    const double clearance = radicalClearance * s;
    const double rule = radicalRule * s;
    TeXBox body = layoutChild(radical.body, style);

    const TeXFont font = resolver.font(TeXFontRole::roman, s, u"\u221A");
    TeXBox surd = resolver.metrics().inkBox(u"\u221A", font, color);
    const double wanted = body.height + body.depth + radicalRuleRoom * s + clearance;
    const double natural = surd.height + surd.depth;
    const double factor =
        natural > 0 ? std::clamp(wanted / natural, radicalMinimumFactor, radicalMaximumFactor) : 1.0;
    TeXBox scaledSurd;
    scaledSurd.width = surd.width * factor;
    scaledSurd.height = surd.height * factor;
    scaledSurd.depth = surd.depth * factor;
    scaledSurd.items.push_back(TeXScaled{share(std::move(surd)), factor, factor});

    // The surd's top meets the rule's top; a surd that stopped growing hangs from the rule.
    const double ruleBottom = body.height + clearance;
    const double ruleTop = ruleBottom + rule;
    const double surdDy = ruleTop - scaledSurd.height;

    TeXBox box;
    double surdX = 0;
    if (radical.index) {
        TeXBox index = layout(*radical.index, TeXStyle::scriptScript);
        const double extent = scaledSurd.height + scaledSurd.depth;
        const double raise = std::max(0.55 * extent - body.depth, 0.02 * s);
        // The index tucks over the surd's short left arm.
        surdX = std::max(0.0, index.width - 0.5 * scaledSurd.width);
        const double indexX = surdX + 0.5 * scaledSurd.width - index.width;
        place(box, std::move(index), std::max(0.0, indexX), raise);
    }
    const double surdWidth = scaledSurd.width;
    place(box, std::move(scaledSurd), surdX, surdDy);
    const double bodyX = surdX + surdWidth;
    const double ruleX = surdX + radicalOverlap * surdWidth;
    const double end = bodyX + body.width + radicalPadding * s;
    box.items.push_back(TeXRule{QRectF(ruleX, ruleBottom, end - ruleX, rule)});
    box.height = std::max(box.height, ruleTop);
    place(box, std::move(body), bodyX, 0);
    box.width = end;
    return box;
}

TeXBox TeXLayoutEngine::layoutScripts(const TeXNode::Scripts& scripts, TeXStyle style) const
{
    const double s = size(style);
    const TeXStyle small = scriptStyle(style);
    TeXBox base = layoutChild(scripts.base, style);
    std::optional<TeXBox> superscript;
    std::optional<TeXBox> subscript;
    if (scripts.superscript)
        superscript = layout(*scripts.superscript, small);
    if (scripts.subscriptNode)
        subscript = layout(*scripts.subscriptNode, small);

    TeXBox box;
    if (scripts.limits) {
        const double gap = limitsGap * s;
        double width = base.width;
        if (superscript)
            width = std::max(width, superscript->width);
        if (subscript)
            width = std::max(width, subscript->width);
        box.width = width;
        const double baseHeight = base.height;
        const double baseDepth = base.depth;
        const double baseDx = (width - base.width) / 2;
        place(box, std::move(base), baseDx, 0);
        if (superscript) {
            const double dx = (width - superscript->width) / 2;
            const double dy = baseHeight + gap + superscript->depth;
            place(box, std::move(*superscript), dx, dy);
        }
        if (subscript) {
            const double dx = (width - subscript->width) / 2;
            const double dy = -(baseDepth + gap + subscript->height);
            place(box, std::move(*subscript), dx, dy);
        }
        return box;
    }

    const double x = base.width + scriptKern * s;
    const double baseHeight = base.height;
    const double baseDepth = base.depth;
    box.width = base.width;
    place(box, std::move(base), 0, 0);
    if (superscript) {
        const double raise = std::max(baseHeight - superscriptDrop * s, superscriptMinimum * s);
        box.width = std::max(box.width, x + superscript->width);
        place(box, std::move(*superscript), x, raise);
    }
    if (subscript) {
        const double drop = std::max(baseDepth, subscriptMinimum * s) + subscriptRaise * subscript->height;
        box.width = std::max(box.width, x + subscript->width);
        place(box, std::move(*subscript), x, -drop);
    }
    return box;
}

TeXBox TeXLayoutEngine::stretched(QStringView text, double height, TeXStyle style) const
{
    const double s = size(style);
    const TeXFont font = resolver.font(TeXFontRole::roman, s, text);
    const TeXMetrics::Line line = resolver.metrics().line(text, font);
    TeXBox glyphBox = resolver.metrics().box(text, font, color);
    const double inkHeight = line.ink.isNull() ? 0 : line.ink.height();
    // Ink, not the font's ascent, decides the scale: the drawn stroke must span the body.
    const double factor = inkHeight > 0 ? std::max(1.0, height / inkHeight) : 1.0;
    TeXBox box;
    box.width = glyphBox.width;
    box.height = line.ink.isNull() ? 0 : line.ink.bottom() * factor;
    box.depth = line.ink.isNull() ? 0 : -line.ink.top() * factor;
    box.items.push_back(TeXScaled{share(std::move(glyphBox)), 1.0, factor});
    return box;
}

void TeXLayoutEngine::appendCentred(TeXBox& row, const TeXBox& delimiter, const TeXBox& body)
{
    const double dy = (body.height - body.depth) / 2 - (delimiter.height - delimiter.depth) / 2;
    const double x = row.width;
    place(row, delimiter, x, dy);
    row.width = x + delimiter.width;
}

TeXBox TeXLayoutEngine::layoutDelimited(const TeXNode::Delimited& delimited, TeXStyle style) const
{
    const double s = size(style);
    TeXBox body = layoutChild(delimited.body, style);
    const double wanted = body.height + body.depth + delimiterExtra * s;
    const auto present = [](const QString& text) { return !text.isEmpty() && text != u"."; };

    TeXBox box;
    if (present(delimited.open)) {
        appendCentred(box, stretched(delimited.open, wanted, style), body);
        box.width += delimiterPadding * s;
    }
    const double bodyX = box.width;
    const double bodyWidth = body.width;
    const TeXBox measured{body.width, body.height, body.depth, {}};
    place(box, std::move(body), bodyX, 0);
    box.width = bodyX + bodyWidth;
    if (present(delimited.close)) {
        box.width += delimiterPadding * s;
        appendCentred(box, stretched(delimited.close, wanted, style), measured);
    }
    return box;
}

TeXBox TeXLayoutEngine::layoutAccent(const TeXNode::Accent& accent, TeXStyle style) const
{
    const double s = size(style);
    TeXBox body = layoutChild(accent.node, style);
    QRectF bodyInk = body.inkBounds();
    if (bodyInk.isNull())
        bodyInk = QRectF(0, 0, body.width, 0.45 * s);

    const QString text = TeXSymbolTable::accentText(accent.accent);
    // The combining arrow lives in math fonts; the spacing accents in the text face.
    const TeXFontRole role = accent.accent == TeXAccent::vector ? TeXFontRole::symbol : TeXFontRole::roman;
    const TeXFont font = resolver.font(role, s, text);
    const TeXMetrics::Line line = resolver.metrics().line(text, font);
    TeXBox mark = resolver.metrics().box(text, font, color);
    QRectF ink = line.ink.isNull() ? QRectF(0, 0, mark.width, 0) : line.ink;

    // Wide hats and tildes stretch across a wide body.
    const bool stretches = accent.accent == TeXAccent::hat || accent.accent == TeXAccent::tilde;
    if (stretches && ink.width() > 0 && bodyInk.width() > 1.5 * ink.width()) {
        const double factor = bodyInk.width() * 0.9 / ink.width();
        TeXBox wide;
        wide.width = mark.width * factor;
        wide.height = mark.height;
        wide.depth = mark.depth;
        wide.items.push_back(TeXScaled{share(std::move(mark)), factor, 1.0});
        mark = std::move(wide);
        ink = QRectF(ink.left() * factor, ink.top(), ink.width() * factor, ink.height());
    }
    const double dx = bodyInk.center().x() - ink.center().x();
    const double dy = bodyInk.bottom() + accentGap * s - ink.top();

    TeXBox box;
    box.width = body.width;
    const double accentTop = dy + ink.bottom();
    place(box, std::move(body), 0, 0);
    box.items.push_back(TeXGroup{share(std::move(mark)), dx, dy});
    box.height = std::max(box.height, accentTop);
    return box;
}

TeXBox TeXLayoutEngine::layoutBar(const TeXNode::Bar& bar, TeXStyle style) const
{
    const double s = size(style);
    const double thickness = barRule * s;
    const double gap = barGap * s;
    TeXBox body = layoutChild(bar.node, style);
    TeXBox box;
    box.width = body.width;
    if (bar.above) {
        box.items.push_back(TeXRule{QRectF(0, body.height + gap, body.width, thickness)});
        box.height = body.height + gap + thickness;
    } else {
        box.items.push_back(TeXRule{QRectF(0, -(body.depth + gap + thickness), body.width, thickness)});
        box.depth = body.depth + gap + thickness;
    }
    place(box, std::move(body), 0, 0);
    return box;
}

TeXBox TeXLayoutEngine::layoutMatrix(const TeXNode::Matrix& matrix, TeXStyle style) const
{
    const double s = size(style);
    const TeXMatrixKind kind = matrix.kind;
    const TeXStyle cellStyle = kind == TeXMatrixKind::small      ? TeXStyle::script
                               : kind == TeXMatrixKind::gathered ? style
                                                                 : TeXStyle::text;
    const double cellSize = size(cellStyle);

    // Lay out every cell; rows carry a strut so that empty rows keep their place.
    size_t columns = 0;
    std::vector<std::vector<TeXBox>> cells;
    cells.reserve(matrix.rows.size());
    std::vector<double> heights;
    std::vector<double> depths;
    for (const auto& row : matrix.rows) {
        std::vector<TeXBox> boxes;
        boxes.reserve(row.size());
        double height = 0.7 * cellSize;
        double depth = 0.3 * cellSize;
        for (const TeXNode& cell : row) {
            boxes.push_back(layout(cell, cellStyle));
            height = std::max(height, boxes.back().height);
            depth = std::max(depth, boxes.back().depth);
        }
        columns = std::max(columns, boxes.size());
        heights.push_back(height);
        depths.push_back(depth);
        cells.push_back(std::move(boxes));
    }

    // columnWidths
    std::vector<double> widths(columns, 0.0);
    for (const auto& row : cells) {
        for (size_t c = 0; c < row.size(); ++c)
            widths[c] = std::max(widths[c], row[c].width);
    }
    // In aligned rows the pairs of columns meet at the alignment point: the relation that
    // starts the right-hand cell gets the space it would have had inside a row.
    const auto gapBefore = [&](size_t column) {
        if (kind == TeXMatrixKind::aligned && column % 2 == 1)
            return classSpacing[size_t(Class::ordinary)][size_t(Class::relation)] * s / 18;
        return columnGap * s;
    };
    std::vector<double> columnX(columns, 0.0);
    double gridWidth = 0;
    for (size_t c = 0; c < columns; ++c) {
        if (c > 0)
            gridWidth += gapBefore(c);
        columnX[c] = gridWidth;
        gridWidth += widths[c];
    }

    // rowBaselines, from the grid's top, then the grid centred on the axis.
    double total = 0;
    std::vector<double> baselines;
    for (size_t r = 0; r < cells.size(); ++r) {
        if (r > 0)
            total += depths[r - 1] + rowGap * s;
        total += heights[r];
        baselines.push_back(-total);
    }
    total += depths.empty() ? 0 : depths.back();
    const double top = axisHeight * s + total / 2;

    // gridBody
    const bool pairedAlignment = kind == TeXMatrixKind::cases || kind == TeXMatrixKind::aligned;
    TeXBox grid;
    grid.width = gridWidth;
    grid.height = top;
    grid.depth = total - top;
    for (size_t r = 0; r < cells.size(); ++r) {
        for (size_t c = 0; c < cells[r].size(); ++c) {
            TeXBox& cell = cells[r][c];
            double dx = columnX[c] + (widths[c] - cell.width) / 2;
            if (pairedAlignment)
                dx = c % 2 == 0 ? columnX[c] + widths[c] - cell.width : columnX[c];
            place(grid, std::move(cell), dx, top + baselines[r]);
        }
    }

    // wrap
    QString open;
    QString close;
    double room = matrixRoom * s;
    switch (kind) {
    case TeXMatrixKind::parenthesized: open = QStringLiteral("("), close = QStringLiteral(")"); break;
    case TeXMatrixKind::bracketed: open = QStringLiteral("["), close = QStringLiteral("]"); break;
    case TeXMatrixKind::braced: open = QStringLiteral("{"), close = QStringLiteral("}"); break;
    case TeXMatrixKind::verticalBar: open = close = QStringLiteral("|"); break;
    case TeXMatrixKind::doubleBar: open = close = QStringLiteral("\u2016"); break;
    case TeXMatrixKind::cases:
        open = QStringLiteral("{");
        room = casesRoom * s;
        break;
    default: return grid;
    }
    const double wanted = grid.height + grid.depth + delimiterExtra * s;
    TeXBox box;
    appendCentred(box, stretched(open, wanted, style), grid);
    box.width += room;
    const double gridX = box.width;
    const TeXBox measured{grid.width, grid.height, grid.depth, {}};
    place(box, std::move(grid), gridX, 0);
    box.width = gridX + measured.width;
    if (!close.isEmpty()) {
        box.width += room;
        appendCentred(box, stretched(close, wanted, style), measured);
    }
    return box;
}

}
