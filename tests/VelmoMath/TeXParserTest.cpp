#include "VelmoMath/TeXParser.h"

#include "QStringPrinter.h"

#include <QElapsedTimer>
#include <gtest/gtest.h>

using namespace velmo::math;

namespace {

QString parsed(const QString& source, TeXStyle style = TeXStyle::text)
{
    return TeXParser::parse(source, style).dump();
}

struct Case {
    const char* source;
    const char* tree;
};

void expectTrees(std::initializer_list<Case> cases)
{
    for (const Case& c : cases)
        EXPECT_EQ(parsed(QString::fromUtf8(c.source)), QString::fromUtf8(c.tree)) << c.source;
}

}

TEST(TeXParser, atomsGroupsAndScripts)
{
    expectTrees({
        {"", "[]"},
        {"}x", "[]"},           // a top-level closing brace ends the formula
        {"a}b", "[a]"},
        {"a-b*c'", "[a − b ∗ c ′]"},
        {"x^2^3", "[x^{3}]"},   // the later superscript wins
        {"x ^2", "[x 2]"},      // a space ends the scripts
        {"x_i^2", "[x^{2}_{i}]"},
        {"x^{a+b}", "[x^{[a + b]}]"},
        {"x^\\alpha", "[x^{α}]"},
        {"x^", "[x^{[]}]"},
        {"x^}", "[x^{[]}]"},
        {"[a]", "[[a]]"},       // brackets group without ink
        {"[a]b]c", "[[a b c]]"}, // a stray ] inside is skipped; the group runs to the end
        {"{}", "[[]]"},
        {"{a", "[[a]]"},
        {"&\\\\^_ a", "[a]"},
    });
}

TEST(TeXParser, largeOperatorsTakeLimitsOnlyInDisplay)
{
    EXPECT_EQ(parsed(QStringLiteral("\\sum_i"), TeXStyle::display), QStringLiteral("[limits(op(∑,limits)_{i})]"));
    EXPECT_EQ(parsed(QStringLiteral("\\sum_i"), TeXStyle::text), QStringLiteral("[op(∑,limits)_{i}]"));
    EXPECT_EQ(parsed(QStringLiteral("\\sum\\nolimits_i"), TeXStyle::display), QStringLiteral("[op(∑,limits)_{i}]"));
    EXPECT_EQ(parsed(QStringLiteral("\\int\\limits_0^1"), TeXStyle::text), QStringLiteral("[limits(op(∫)^{1}_{0})]"));
    // \limits without a script leaves the operator alone.
    EXPECT_EQ(parsed(QStringLiteral("\\sum\\limits x")), QStringLiteral("[op(∑,limits) x]"));
}

TEST(TeXParser, structuralCommands)
{
    expectTrees({
        {"\\frac12", "[frac(1,2)]"},
        {"\\frac{a}{b}", "[frac([a],[b])]"},
        {"\\dfrac a b", "[dfrac(a,b)]"},
        {"\\tfrac{a}", "[tfrac([a],[])]"},
        {"\\frac{a", "[frac([a],[])]"},
        {"\\binom{n}{k}", "[left( stack([n],[k]) right)]"},
        {"\\sqrt{2}", "[sqrt([2])]"},
        {"\\sqrt[3]{x}", "[sqrt[[3]]([x])]"},
        {"\\sqrt[3", "[sqrt[[3]]([])]"},
        {"\\left( x \\right)", "[left( [x] right)]"},
        {"\\left. x \\right|", "[left. [x] right|]"},
        {"\\left\\{ x \\right\\}", "[left{ [x] right}]"},
        {"\\left\\langle x \\right\\rangle", "[left⟨ [x] right⟩]"},
        {"\\left[ x \\right]", "[left[ [x] right]]"},
        {"\\left\\| x", "[left‖ [x] right.]"},
        {"\\left( x", "[left( [x] right.]"},
        {"\\right)", "[)]"},
        {"x\\end{y} z", "[x y]"}, // a stray \end drops its brace; the closing brace then ends the formula
        {"\\not= \\relax a", "[= a]"},
    });
}

TEST(TeXParser, environments)
{
    expectTrees({
        {"\\begin{pmatrix}a&b\\\\c&d\\end{pmatrix}", "[pmatrix{[a]&[b]\\\\[c]&[d]}]"},
        {"\\begin{bmatrix} -1 & 0 \\end{bmatrix}", "[bmatrix{[− 1]&[0]}]"},
        {"\\begin{pmatrix} a &", "[pmatrix{[a]&[]}]"},
        {"\\begin{matrix}a\\\\\\end{matrix}", "[matrix{[a]\\\\[]}]"}, // a trailing row break leaves an empty row
        {"\\begin{array}{cc}a&b\\end{array}", "[aligned{[a]&[b]}]"},
        {"\\begin{cases}x&y\\end{cases}", "[cases{[x]&[y]}]"},
        {"\\begin{aligned}x&=y\\end{aligned}", "[aligned{[x]&[= y]}]"},
        {"\\begin{smallmatrix}a\\end{smallmatrix}", "[smallmatrix{[a]}]"},
        {"\\begin{weird}a\\end{weird}", "[matrix{[a]}]"},
        {"\\begin{Vmatrix}a\\end{Vmatrix}^2", "[Vmatrix{[a]}^{2}]"},
    });
}

TEST(TeXParser, decorationsFontsAndSpacing)
{
    expectTrees({
        {"\\text{if } x", "[if  x]"},
        {"\\operatorname{sin}", "[sin]"},
        {"\\text{a{b}c}", "[a{b}c]"},
        {"\\text{abc", "[]"},
        {"\\mathbb{R}", "[[R]]"},
        {"\\hat{x} \\widehat{xy} \\vec v \\bar a", "[hat([x]) hat([x y]) vec(v) bar(a)]"},
        {"\\overline{x}\\underline y", "[overline([x]) underline(y)]"},
        {"\\overbrace{x}", "[[overline([x]) ⏞]]"},
        {"\\phantom{x}", "[phantom([x])]"},
        {"\\displaystyle x + y", "[display(x) + y]"}, // the style covers the next group only
        {"a\\,b\\!c\\quad d", "[a space(0.167) b space(-0.167) c space(1) d]"},
        {"\\{x\\}", "[{ x }]"},
        {"\\bigl( x \\bigr)", "[( x )]"},
        {"\\big", "[[]]"},
        {"\\foo + \\alpha", "[missing(\\foo) + α]"},
        {"\\@", "[missing(\\@)]"},
    });
}

TEST(TeXParser, fontCommandsRecastAtomsKeepingClasses)
{
    const TeXNode tree = TeXParser::parse(QStringLiteral("\\mathbf{a+\\frac{b}{c}}"));
    const auto& group = std::get<TeXNode::Row>(std::get<TeXNode::Row>(tree.value).children[0].value);
    const auto& plus = std::get<TeXNode::Atom>(group.children[1].value);
    EXPECT_EQ(plus.role, TeXFontRole::bold);
    EXPECT_EQ(plus.atomClass, TeXAtomClass::binary);
    const auto& fraction = std::get<TeXNode::Fraction>(group.children[2].value);
    const auto& b = std::get<TeXNode::Atom>(std::get<TeXNode::Row>(fraction.numerator->value).children[0].value);
    EXPECT_EQ(b.role, TeXFontRole::bold);
}

TEST(TeXParser, deepNestingIsCutOffInLinearTime)
{
    QElapsedTimer timer;
    timer.start();
    const QString braces = QString(100000, QLatin1Char('{')) + QLatin1Char('x');
    const QString roots = QStringLiteral("\\sqrt").repeated(50000) + QLatin1Char('x');
    const QString scripts = QStringLiteral("x^{").repeated(50000);
    for (const QString& source : {braces, roots, scripts}) {
        const QString tree = TeXParser::parse(source).dump();
        EXPECT_TRUE(tree.contains(QStringLiteral("missing(…)")));
    }
    EXPECT_LT(timer.elapsed(), 5000);
}
