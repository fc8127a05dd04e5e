#include "VelmoMath/TeXFontResolver.h"
#include "VelmoMath/TeXParser.h"
#include "VelmoMath/TeXSymbolTable.h"

#include "QStringPrinter.h"

#include <QRawFont>
#include <gtest/gtest.h>

using namespace velmo::math;

TEST(TeXSymbolTable, classesOfTheUsualNames)
{
    struct Case {
        const char16_t* name;
        const char16_t* text;
        TeXAtomClass atomClass;
    };
    const Case cases[] = {
        {u"alpha", u"α", TeXAtomClass::ordinary},    {u"Omega", u"Ω", TeXAtomClass::ordinary},
        {u"pm", u"±", TeXAtomClass::binary},         {u"cdot", u"⋅", TeXAtomClass::binary},
        {u"leq", u"≤", TeXAtomClass::relation},      {u"in", u"∈", TeXAtomClass::relation},
        {u"Rightarrow", u"⇒", TeXAtomClass::relation}, {u"langle", u"⟨", TeXAtomClass::opening},
        {u"rceil", u"⌉", TeXAtomClass::closing},     {u"infty", u"∞", TeXAtomClass::ordinary},
        {u"colon", u":", TeXAtomClass::punctuation},
    };
    for (const Case& c : cases) {
        const TeXSymbolTable::Entry* entry = TeXSymbolTable::lookup(c.name);
        ASSERT_TRUE(entry) << QString::fromUtf16(c.name).toStdString();
        const auto& atom = std::get<TeXNode::Atom>(*entry);
        EXPECT_EQ(atom.text, QString::fromUtf16(c.text));
        EXPECT_EQ(atom.atomClass, c.atomClass) << QString::fromUtf16(c.name).toStdString();
    }
    const auto& sum = std::get<TeXNode::LargeOperator>(*TeXSymbolTable::lookup(u"sum"));
    EXPECT_TRUE(sum.takesLimits);
    EXPECT_FALSE(std::get<TeXNode::LargeOperator>(*TeXSymbolTable::lookup(u"int")).takesLimits);
    EXPECT_FALSE(TeXSymbolTable::lookup(u"foo"));
    EXPECT_TRUE(TeXSymbolTable::isClosingDelimiter(u"⟩"));
    EXPECT_FALSE(TeXSymbolTable::isClosingDelimiter(u"("));
}

// Every name in the table draws with some installed face: no missing-glyph boxes.
TEST(TeXSymbolTable, everySymbolHasAFace)
{
    TeXFontResolver resolver;
    QStringList missing;
    const auto& table = TeXSymbolTable::symbols();
    for (auto it = table.cbegin(); it != table.cend(); ++it) {
        QString text;
        TeXFontRole role = TeXFontRole::symbol;
        if (const auto* atom = std::get_if<TeXNode::Atom>(&it.value())) {
            text = atom->text;
            role = atom->role;
        } else {
            text = std::get<TeXNode::LargeOperator>(it.value()).text;
        }
        const QRawFont font = resolver.font(role, 16, text).raw;
        for (const char32_t u : text.toUcs4()) {
            if (u != U' ' && !font.supportsCharacter(u))
                missing << it.key().toString();
        }
    }
    EXPECT_TRUE(missing.isEmpty()) << missing.join(QLatin1Char(' ')).toStdString();
}

TEST(TeXSymbolTable, mathAlphabets)
{
    EXPECT_EQ(TeXFontResolver::alphabetText(TeXFontRole::blackboard, u"NZa1"), QString::fromUtf16(u"ℕℤ\U0001D552\U0001D7D9"));
    EXPECT_EQ(TeXFontResolver::alphabetText(TeXFontRole::calligraphic, u"AB"), QString::fromUtf16(u"\U0001D49Cℬ"));
    EXPECT_EQ(TeXFontResolver::alphabetText(TeXFontRole::fraktur, u"Ra+"), QString::fromUtf16(u"ℜ\U0001D51E+"));
    EXPECT_EQ(TeXFontResolver::alphabetText(TeXFontRole::bold, u"R"), QStringLiteral("R"));
}
