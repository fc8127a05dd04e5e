#include "VelmoMath/TeXLayoutEngine.h"
#include "VelmoMath/TeXParser.h"

#include "QStringPrinter.h"

#include <QRawFont>
#include <cmath>
#include <gtest/gtest.h>

using namespace velmo::math;

namespace {

constexpr double f = 16; // the font size of every test
constexpr double mu = f / 18;
constexpr double eps = 1e-6;

class TeXLayout : public ::testing::Test {
protected:
    TeXBox lay(const char* source, TeXStyle style = TeXStyle::text)
    {
        return engine.layout(TeXParser::parse(QString::fromUtf8(source), style), style);
    }
    // The formula's own row: the top-level row's items.
    static const TeXGroup& item(const TeXBox& box, size_t i) { return std::get<TeXGroup>(box.items.at(i)); }
    static const TeXBox& child(const TeXBox& box, size_t i) { return *item(box, i).box; }
    // The gap between item i and the next, in mu.
    static double gapAfter(const TeXBox& row, size_t i)
    {
        return (item(row, i + 1).dx - item(row, i).dx - child(row, i).width) / mu;
    }
    static const TeXGlyph& firstGlyph(const TeXBox& box)
    {
        for (const TeXItem& i : box.items) {
            if (const auto* glyph = std::get_if<TeXGlyph>(&i))
                return *glyph;
            if (const auto* group = std::get_if<TeXGroup>(&i))
                return firstGlyph(*group->box);
            if (const auto* scaled = std::get_if<TeXScaled>(&i))
                return firstGlyph(*scaled->box);
        }
        throw std::runtime_error("no glyph");
    }
    template <typename Item>
    static const Item* find(const TeXBox& box)
    {
        for (const TeXItem& i : box.items) {
            if (const auto* found = std::get_if<Item>(&i))
                return found;
            const TeXBox* inner = nullptr;
            if (const auto* group = std::get_if<TeXGroup>(&i))
                inner = group->box.get();
            if (const auto* scaled = std::get_if<TeXScaled>(&i))
                inner = scaled->box.get();
            if (inner) {
                if (const Item* found = find<Item>(*inner))
                    return found;
            }
        }
        return nullptr;
    }

    TeXFontResolver resolver;
    TeXLayoutEngine engine{resolver, f};
};

bool finiteTree(const TeXBox& box)
{
    if (!std::isfinite(box.width) || !std::isfinite(box.height) || !std::isfinite(box.depth) || box.width < 0)
        return false;
    for (const TeXItem& i : box.items) {
        if (const auto* group = std::get_if<TeXGroup>(&i)) {
            if (!std::isfinite(group->dx) || !std::isfinite(group->dy) || !finiteTree(*group->box))
                return false;
        } else if (const auto* scaled = std::get_if<TeXScaled>(&i)) {
            if (!std::isfinite(scaled->scaleX) || !std::isfinite(scaled->scaleY) || !finiteTree(*scaled->box))
                return false;
        } else if (const auto* rule = std::get_if<TeXRule>(&i)) {
            if (!std::isfinite(rule->rect.x() + rule->rect.y() + rule->rect.width() + rule->rect.height()))
                return false;
        }
    }
    return true;
}

}

TEST_F(TeXLayout, rowsSpaceAtomsByClass)
{
    struct Case {
        const char* source;
        std::vector<double> gaps; // in mu, between consecutive atoms
    };
    const Case cases[] = {
        {"a+b", {4, 4}},
        {"+a", {0}},              // a leading binary is ordinary
        {"a=-b", {5, 5, 0}},      // the minus after a relation is ordinary
        {"a+-b", {4, 4, 0}},
        {"(a)+b", {0, 0, 4, 4}},  // after a closing, + stays binary
        {"a,b", {0, 3}},
        {"\\sin x", {3}},
        {"a\\to b", {5, 5}},
        {"x^2+1", {4, 4}},        // scripts take their base's class
    };
    for (const Case& c : cases) {
        const TeXBox row = lay(c.source);
        ASSERT_EQ(row.items.size(), c.gaps.size() + 1) << c.source;
        for (size_t i = 0; i < c.gaps.size(); ++i)
            EXPECT_NEAR(gapAfter(row, i), c.gaps[i], eps) << c.source << " gap " << i;
    }
    // The same table in script sizes: mu shrinks with the style.
    const TeXBox script = lay("\\scriptstyle{a+b}");
    const TeXBox& inner = child(script, 0);
    EXPECT_NEAR((item(inner, 1).dx - child(inner, 0).width), 4 * 0.7 * mu, eps);
}

TEST_F(TeXLayout, emptyAndSpacing)
{
    const TeXBox empty = lay("");
    EXPECT_EQ(empty.width, 0);
    EXPECT_EQ(empty.height, 0);
    EXPECT_TRUE(empty.items.empty());
    EXPECT_NEAR(lay("\\quad").width, f, eps);
    EXPECT_NEAR(lay("\\qquad").width, 2 * f, eps);
    EXPECT_NEAR(lay("\\,").width, f / 6, eps);
    EXPECT_EQ(lay("\\!").width, 0); // never negative
    EXPECT_NEAR(lay("\\scriptstyle{\\quad}").width, 0.7 * f, eps);
}

TEST_F(TeXLayout, superscriptAndSubscript)
{
    const TeXBox box = child(lay("x^2"), 0);
    const TeXBox& base = child(box, 0);
    const TeXGroup& sup = item(box, 1);
    EXPECT_NEAR(firstGlyph(*sup.box).run.rawFont().pixelSize(), 11.2, 1e-3);
    EXPECT_GE(sup.dy, 0.42 * f - eps);
    EXPECT_NEAR(sup.dy, std::max(base.height - 0.35 * f, 0.42 * f), eps);
    EXPECT_NEAR(sup.dx, base.width + 0.03 * f, eps);
    EXPECT_NEAR(box.width, sup.dx + sup.box->width, eps);

    const TeXBox subscripted = child(lay("x_i"), 0);
    const TeXGroup& sub = item(subscripted, 1);
    EXPECT_NEAR(-sub.dy, std::max(child(subscripted, 0).depth, 0.16 * f) + 0.6 * sub.box->height, eps);
    EXPECT_NEAR(subscripted.depth, sub.box->depth - sub.dy, eps);

    // Scripts of scripts are set smaller still.
    const TeXBox nested = child(lay("x^{y^z}"), 0);
    const TeXBox& yz = child(child(nested, 1), 0); // the group {y^z}, then y^z itself
    EXPECT_NEAR(firstGlyph(child(yz, 0)).run.rawFont().pixelSize(), 0.7 * f, 1e-3);
    EXPECT_NEAR(firstGlyph(child(yz, 1)).run.rawFont().pixelSize(), 0.5 * f, 1e-3);
}

TEST_F(TeXLayout, limitsAreCentredAboveAndBelow)
{
    const TeXBox box = child(lay("\\sum_{i=1}^{n}", TeXStyle::display), 0);
    const TeXGroup& base = item(box, 0);
    EXPECT_NEAR(firstGlyph(*base.box).run.rawFont().pixelSize(), 1.45 * f, 1e-3);
    const TeXGroup& upper = item(box, 1);
    const TeXGroup& lower = item(box, 2);
    const double centre = box.width / 2;
    for (const TeXGroup* g : {&base, &upper, &lower})
        EXPECT_NEAR(g->dx + g->box->width / 2, centre, eps);
    EXPECT_NEAR(upper.dy, base.box->height + 0.18 * f + upper.box->depth, eps);
    EXPECT_NEAR(lower.dy, -(base.box->depth + 0.18 * f + lower.box->height), eps);
    // In text the operator keeps its size and the scripts go to the side.
    const TeXBox inline_ = child(lay("\\sum_{i}"), 0);
    EXPECT_NEAR(firstGlyph(inline_).run.rawFont().pixelSize(), f, 1e-3);
    EXPECT_GT(item(inline_, 1).dx, child(inline_, 0).width);
    // Named operators stay at the text size and upright, even in display.
    const TeXBox limBox = lay("\\lim_{x}", TeXStyle::display);
    const TeXGlyph& lim = firstGlyph(limBox);
    EXPECT_NEAR(lim.run.rawFont().pixelSize(), f, 1e-3);
    EXPECT_EQ(lim.text, QStringLiteral("lim"));
}

TEST_F(TeXLayout, fractionsByStyle)
{
    struct Case {
        const char* source;
        TeXStyle style;
        double z;     // the size the rule and gap follow
        double parts; // the size of the numerator's glyphs
        double gap;
    };
    const Case cases[] = {
        {"\\frac{a}{b}", TeXStyle::display, f, f, 0.16 * f},
        {"\\frac{a}{b}", TeXStyle::text, f, 0.7 * f, 0.12 * f},
        {"\\scriptstyle{\\frac{a}{b}}", TeXStyle::text, 0.7 * f, 0.7 * f, 0.12 * 0.7 * f},
        {"\\dfrac{a}{b}", TeXStyle::text, f, f, 0.16 * f},
        {"\\tfrac{a}{b}", TeXStyle::display, f, 0.7 * f, 0.12 * f},
    };
    for (const Case& c : cases) {
        TeXBox top = lay(c.source, c.style);
        const TeXBox* fraction = &child(top, 0);
        if (!std::holds_alternative<TeXRule>(fraction->items.front()))
            fraction = &child(*fraction, 0);
        const TeXRule& rule = std::get<TeXRule>(fraction->items.at(0));
        const TeXGroup& numerator = item(*fraction, 1);
        const TeXGroup& denominator = item(*fraction, 2);
        const double t = 0.06 * c.z;
        EXPECT_NEAR(rule.rect.y(), 0, eps) << c.source;
        EXPECT_NEAR(rule.rect.height(), t, eps) << c.source;
        EXPECT_NEAR(rule.rect.width(), std::max(numerator.box->width, denominator.box->width) + 0.12 * c.z, eps);
        EXPECT_NEAR(numerator.dy - numerator.box->depth - t, c.gap, eps) << c.source;
        EXPECT_NEAR(-denominator.dy - denominator.box->height, c.gap, eps) << c.source;
        EXPECT_NEAR(numerator.dx * 2 + numerator.box->width, rule.rect.width(), eps) << c.source;
        EXPECT_NEAR(firstGlyph(*numerator.box).run.rawFont().pixelSize(), c.parts, 1e-3) << c.source;
        EXPECT_NEAR(fraction->depth, denominator.box->height + denominator.box->depth + c.gap, eps);
    }
}

TEST_F(TeXLayout, surdGrowsWithTheBodyUpToItsLimit)
{
    const auto surdFactor = [](const TeXBox& radical) {
        for (const TeXItem& i : radical.items) {
            if (const auto* group = std::get_if<TeXGroup>(&i)) {
                if (!group->box->items.empty() && std::holds_alternative<TeXScaled>(group->box->items[0]))
                    return std::get<TeXScaled>(group->box->items[0]).scaleX;
            }
        }
        return 0.0;
    };
    const TeXBox small = child(lay("\\sqrt{x}"), 0);
    const TeXBox fraction = child(lay("\\sqrt{\\dfrac{a}{b}}"), 0);
    EXPECT_GT(surdFactor(fraction), surdFactor(small));
    EXPECT_LE(surdFactor(fraction), 6);

    std::string tall = "\\sqrt{\\begin{matrix}";
    for (int i = 0; i < 30; ++i)
        tall += "a\\\\";
    tall += "a\\end{matrix}}";
    const TeXBox radical = child(lay(tall.c_str()), 0);
    EXPECT_DOUBLE_EQ(surdFactor(radical), 6);
    // The rule still spans the body and clears its top.
    const TeXRule* rule = find<TeXRule>(radical);
    ASSERT_TRUE(rule);
    const TeXGroup& body = std::get<TeXGroup>(radical.items.back());
    EXPECT_LE(rule->rect.left(), body.dx);
    EXPECT_NEAR(rule->rect.right(), body.dx + body.box->width + 0.04 * f, eps);
    EXPECT_NEAR(rule->rect.y(), body.box->height + 0.05 * f, eps);
}

TEST_F(TeXLayout, delimitersStretchAroundTheBodyAndCentreOnIt)
{
    const TeXBox box = child(lay("\\left( \\dfrac{a}{b} \\right)"), 0);
    ASSERT_EQ(box.items.size(), 3u);
    const TeXGroup& open = item(box, 0);
    const TeXGroup& body = item(box, 1);
    const TeXGroup& close = item(box, 2);
    const double wanted = body.box->height + body.box->depth + 0.2 * f;
    EXPECT_NEAR(open.box->height + open.box->depth, wanted, 1e-3);
    EXPECT_NEAR(open.dy + (open.box->height - open.box->depth) / 2, (body.box->height - body.box->depth) / 2, eps);
    EXPECT_NEAR(body.dx, open.box->width + 0.05 * f, eps);
    EXPECT_NEAR(close.dx, body.dx + body.box->width + 0.05 * f, eps);
    // An empty side takes no room.
    const TeXBox half = child(lay("\\left. x \\right|"), 0);
    EXPECT_EQ(item(half, 0).dx, 0);
    // A short body never shrinks the delimiter below its natural size.
    const TeXBox paren = child(lay("\\left( \\right)"), 0);
    EXPECT_DOUBLE_EQ(std::get<TeXScaled>(child(paren, 0).items[0]).scaleY, 1.0);
}

TEST_F(TeXLayout, matricesAlignCellsAndCentreOnTheAxis)
{
    const TeXBox box = child(lay("\\begin{pmatrix} a & bbb \\\\ cc & d \\end{pmatrix}"), 0);
    ASSERT_EQ(box.items.size(), 3u);
    const TeXBox& grid = child(box, 1);
    EXPECT_NEAR((grid.height - grid.depth) / 2, 0.25 * f, eps);
    // Cells: a, bbb, cc, d; columns centred, 0.8 s apart.
    const double column0 = std::max(child(grid, 0).width, child(grid, 2).width);
    EXPECT_NEAR(item(grid, 0).dx * 2 + child(grid, 0).width, column0, eps);
    EXPECT_NEAR(item(grid, 1).dx, column0 + 0.8 * f, eps);
    EXPECT_NEAR(item(box, 1).dx, item(box, 0).box->width + 0.15 * f, eps);
    EXPECT_EQ(item(grid, 0).dy, item(grid, 1).dy);
    EXPECT_LT(item(grid, 2).dy, item(grid, 0).dy);

    // cases: the even column right aligned, the odd one left aligned; no right delimiter.
    const TeXBox cases = child(lay("\\begin{cases} a & x \\\\ bbb & yyy \\end{cases}"), 0);
    ASSERT_EQ(cases.items.size(), 2u);
    const TeXBox& casesGrid = child(cases, 1);
    EXPECT_NEAR(item(casesGrid, 0).dx + child(casesGrid, 0).width, item(casesGrid, 2).dx + child(casesGrid, 2).width, eps);
    EXPECT_NEAR(item(casesGrid, 1).dx, item(casesGrid, 3).dx, eps);
    EXPECT_NEAR(item(cases, 1).dx, child(cases, 0).width + 0.18 * f, eps);
    // smallmatrix cells are script size.
    EXPECT_NEAR(firstGlyph(lay("\\begin{smallmatrix} a \\end{smallmatrix}")).run.rawFont().pixelSize(), 0.7 * f, 1e-3);
}

TEST_F(TeXLayout, barsAccentsAndPhantoms)
{
    const TeXBox over = child(lay("\\overline{x}"), 0);
    const TeXRule& rule = std::get<TeXRule>(over.items[0]);
    EXPECT_NEAR(rule.rect.y(), child(over, 1).height + 0.1 * f, eps);
    EXPECT_NEAR(rule.rect.height(), 0.05 * f, eps);
    EXPECT_NEAR(over.height, child(over, 1).height + 0.15 * f, eps);
    const TeXBox under = child(lay("\\underline{x}"), 0);
    EXPECT_NEAR(under.depth, child(under, 1).depth + 0.15 * f, eps);

    // The accent's ink stands above the body's ink, centred on it.
    const TeXBox hat = child(lay("\\hat{x}"), 0);
    const QRectF bodyInk = child(hat, 0).inkBounds();
    const TeXGroup& mark = item(hat, 1);
    const QRectF markInk = mark.box->inkBounds().translated(mark.dx, mark.dy);
    EXPECT_NEAR(markInk.top(), bodyInk.bottom() + 0.05 * f, 1e-3);
    EXPECT_NEAR(markInk.center().x(), bodyInk.center().x(), 1e-3);
    EXPECT_GT(child(lay("\\widehat{xxxxx}"), 0).inkBounds().width(), 0);

    const TeXBox phantom = child(lay("\\phantom{\\frac{a}{b}}"), 0);
    const TeXBox real = child(lay("\\frac{a}{b}"), 0);
    EXPECT_EQ(phantom.width, real.width);
    EXPECT_EQ(phantom.height, real.height);
    EXPECT_EQ(phantom.depth, real.depth);
    EXPECT_TRUE(phantom.items.empty());
}

TEST_F(TeXLayout, fontsByRole)
{
    struct Case {
        const char* source;
        const char* text;
        const char* family; // empty: any face that has the glyph
        bool italic;
    };
    const Case cases[] = {
        {"x", "x", "Liberation Serif", true},
        {"2", "2", "Liberation Serif", false}, // digits stand upright
        {"\\alpha", "α", "Liberation Serif", true},
        {"\\Gamma", "Γ", "Liberation Serif", false},
        {"\\mathrm{d}", "d", "Liberation Serif", false},
        {"\\mathbf{v}", "v", "Liberation Serif", false},
        {"\\mathsf{A}", "A", "Liberation Sans", false},
        {"\\mathtt{A}", "A", "DejaVu Sans Mono", false},
        {"\\mathbb{R}", "ℝ", "", false},
        {"\\mathbb{A}", "\U0001D538", "", false},
        {"\\mathcal{L}", "ℒ", "", false},
        {"\\mathfrak{g}", "\U0001D524", "", false},
        {"\\otimes", "⊗", "", false},
    };
    for (const Case& c : cases) {
        const TeXBox box = lay(c.source);
        const TeXGlyph& glyph = firstGlyph(box);
        EXPECT_EQ(glyph.text, QString::fromUtf8(c.text)) << c.source;
        const QRawFont font = glyph.run.rawFont();
        if (*c.family) {
            EXPECT_EQ(font.familyName(), QString::fromUtf8(c.family)) << c.source;
        }
        EXPECT_EQ(font.style() == QFont::StyleItalic, c.italic) << c.source;
        // Whatever face was chosen has the glyph: nothing draws as a missing-glyph box.
        for (const char32_t u : glyph.text.toUcs4())
            EXPECT_TRUE(font.supportsCharacter(u)) << c.source;
    }
    // \mathbf bold really is the bold face.
    EXPECT_EQ(firstGlyph(lay("\\mathbf{v}")).run.rawFont().weight(), QFont::Bold);
}

TEST_F(TeXLayout, missingCommandsAreMonospaceInTheirColour)
{
    TeXLayoutEngine coloured(resolver, f, QColor(Qt::blue), QColor(Qt::red));
    const TeXBox box = coloured.layout(TeXParser::parse(QStringLiteral("a\\foo")), TeXStyle::text);
    const TeXGlyph& letter = firstGlyph(child(box, 0));
    const TeXGlyph& missing = firstGlyph(child(box, 1));
    EXPECT_EQ(letter.color, QColor(Qt::blue));
    EXPECT_EQ(missing.color, QColor(Qt::red));
    EXPECT_EQ(missing.text, QStringLiteral("\\foo"));
    EXPECT_NEAR(missing.run.rawFont().pixelSize(), 0.85 * f, 1e-3);
    EXPECT_EQ(missing.run.rawFont().familyName(), QStringLiteral("DejaVu Sans Mono"));
}

TEST_F(TeXLayout, halfTypedAndHostileInputStillLayOut)
{
    const char* sources[] = {
        "\\frac{a", "x^", "x_", "\\begin{pmatrix} a &", "}}}", "{}", "{", "\\sqrt", "\\sqrt[", "\\left(",
        "\\left", "\\right", "\\begin{", "\\begin{cases}", "\\end{pmatrix}", "^^^^__", "\\text{", "\\\\\\\\",
        "&&&", "\\overbrace", "\\hat", "\\binom{", "\\big", "\\mathbb", "[[[", "]]]", "\\left\\foo x \\right",
        "\\sqrt[\\sqrt[\\sqrt[3]{}]{}]{}", "x^{\\left(\\begin{matrix}\\end{matrix}\\right)}", "\\operatorname",
        "\\displaystyle", "\\phantom", "\\!\\!\\!", "\\left.\\right.", "\\Biggl\\langle", "\xF0\x9F\x98\x80^{\xE6\x97\xA5}",
    };
    for (const char* source : sources) {
        for (TeXStyle style : {TeXStyle::display, TeXStyle::text}) {
            const TeXBox box = lay(source, style);
            EXPECT_TRUE(finiteTree(box)) << source;
        }
    }
    // Deep nesting is cut off by the parser, so layout and drawing recurse only so far.
    for (const QString& deep : {QStringLiteral("\\frac{").repeated(20000), QStringLiteral("x^{\\sqrt{").repeated(20000),
                                QStringLiteral("\\left(").repeated(20000)}) {
        const TeXBox box = engine.layout(TeXParser::parse(deep), TeXStyle::display);
        EXPECT_TRUE(finiteTree(box));
        EXPECT_FALSE(box.inkBounds().isNull());
    }
}
