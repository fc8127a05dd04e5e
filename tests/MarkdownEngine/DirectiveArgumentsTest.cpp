#include "MarkdownEngine/Directives/ColorDirective.h"
#include "MarkdownEngine/Directives/DirectiveArguments.h"
#include "MarkdownEngine/Directives/DirectiveRegistry.h"
#include "MarkdownEngine/Directives/DirectiveRegistryError.h"
#include "MarkdownEngine/Directives/FontDirective.h"
#include "MarkdownEngine/Extensions/MarkdownExtensionRegistry.h"

#include <gtest/gtest.h>

using namespace velmo::markdown;

namespace {

DirectiveSyntax sampleSyntax()
{
    DirectiveSyntax syntax;
    syntax.name = QStringLiteral("sample");
    syntax.parameters = {
        {QStringLiteral("a"), DirectiveParameter::Number{}, false, std::nullopt, {}},
        {QStringLiteral("b"), DirectiveParameter::String{}, false, std::nullopt, {}},
        {QStringLiteral("size"), DirectiveParameter::Length{}, false, std::nullopt, {}},
        {QStringLiteral("on"), DirectiveParameter::Boolean{}, false, DirectiveValue{directive_value::Boolean{true}}, {}},
        {QStringLiteral("mode"), DirectiveParameter::Keyword{{"x", "y"}}, false, std::nullopt, {}},
        {QStringLiteral("need"), DirectiveParameter::String{}, true, std::nullopt, {}},
        {std::nullopt, DirectiveParameter::String{}, false, std::nullopt, {}},
    };
    return syntax;
}

QString diagnosticName(const DirectiveDiagnostic& diagnostic)
{
    static constexpr const char* names[] = {"unknownLabel", "typeMismatch", "missingRequired", "tooManyPositional"};
    return QLatin1String(names[diagnostic.kind.index()]);
}

}

TEST(DirectiveArguments, parsesLabelsQuotesAndPositionals)
{
    const DirectiveSyntax syntax = sampleSyntax();
    const auto args = DirectiveArguments::parse(u"a=1 b=\"x y\" size=120% mode:Y =x need='q", syntax);
    EXPECT_EQ(args.number(QStringLiteral("a")), 1.0);
    EXPECT_EQ(args.string(QStringLiteral("b")), QStringLiteral("x y"));
    EXPECT_EQ(args.ranges.value(QStringLiteral("b")), (MarkdownSourceRange{7, 3}));
    EXPECT_EQ(args.length(10), 12.0);
    EXPECT_EQ(args.string(QStringLiteral("mode")), QStringLiteral("y"));
    EXPECT_EQ(args.string(QStringLiteral("need")), QStringLiteral("q")); // an unclosed quote runs to the end
    EXPECT_EQ(args.boolean(QStringLiteral("on")), true);                  // default filled in
    ASSERT_EQ(args.positional.size(), 1);
    EXPECT_EQ(args.positional[0], (DirectiveValue{directive_value::String{QStringLiteral("=x")}}));
    EXPECT_TRUE(args.diagnostics.isEmpty());
}

TEST(DirectiveArguments, diagnostics)
{
    const DirectiveSyntax syntax = sampleSyntax();
    struct Case { const char16_t* source; const char* expected; };
    const Case cases[] = {
        {u"need=1 z:b", "unknownLabel"},
        {u"need=1 a=x", "typeMismatch"},
        {u"need=1 mode=z", "typeMismatch"},
        {u"need=1 on=yes", "typeMismatch"},
        {u"need=1 p q", "tooManyPositional"},
        {u"a=1", "missingRequired"},
    };
    for (const Case& c : cases) {
        const auto args = DirectiveArguments::parse(QString::fromUtf16(c.source), syntax);
        ASSERT_EQ(args.diagnostics.size(), 1) << QString::fromUtf16(c.source).toStdString();
        EXPECT_EQ(diagnosticName(args.diagnostics[0]), QLatin1String(c.expected));
    }
    // A repeated label keeps its first range and the last value.
    const auto repeated = DirectiveArguments::parse(u"need=1 b=x b=yy", syntax);
    EXPECT_EQ(repeated.string(QStringLiteral("b")), QStringLiteral("yy"));
    EXPECT_EQ(repeated.ranges.value(QStringLiteral("b")), (MarkdownSourceRange{9, 1}));
}

TEST(DirectiveValue, lengths)
{
    struct Case { const char16_t* text; std::optional<double> base; std::optional<double> points; };
    const Case cases[] = {
        {u"14pt", std::nullopt, 14}, {u"14px", std::nullopt, 14}, {u"1.5em", 10, 15}, {u"2rem", 10, 20},
        {u"50%", 8, 4},              {u"50%", std::nullopt, std::nullopt}, {u"12", std::nullopt, 12},
        {u"pt", std::nullopt, std::nullopt}, {u"1x", std::nullopt, std::nullopt},
    };
    for (const Case& c : cases)
        EXPECT_EQ(DirectiveValue::parseLength(QString::fromUtf16(c.text), c.base), c.points)
            << QString::fromUtf16(c.text).toStdString();
    EXPECT_EQ(DirectiveValue::format(12), QStringLiteral("12"));
    EXPECT_EQ(DirectiveValue::format(1.25), QStringLiteral("1.25"));
}

TEST(DirectiveRegistry, namesAndErrors)
{
    const DirectiveRegistry registry = DirectiveRegistry::builtIn();
    EXPECT_TRUE(registry.directive(QStringLiteral("FONT")));
    EXPECT_TRUE(registry.directive(QStringLiteral("color"), DirectiveSyntax::Form::container));
    EXPECT_FALSE(registry.directive(QStringLiteral("color"), DirectiveSyntax::Form::leaf));
    EXPECT_NE(registry.fingerprint(), QStringLiteral("empty"));

    const auto font = std::make_shared<FontDirective>();
    try {
        DirectiveRegistry({font, std::make_shared<FontDirective>()});
        FAIL() << "a repeated name must throw";
    } catch (const DirectiveRegistryError& error) {
        EXPECT_EQ(error.description(), QStringLiteral("Two directives are registered as “font”."));
    }
    DirectiveRegistrySettings settings;
    settings.disabledNames = {QStringLiteral("font")};
    EXPECT_THROW(DirectiveRegistry({font}, settings), DirectiveRegistryError);
    EXPECT_NE(DirectiveRegistry({font}).fingerprint(), DirectiveRegistry({font}, DirectiveRegistrySettings{true, false, {}, {}}).fingerprint());
}

TEST(DirectiveRegistry, builtInDirectivesStyleAndExport)
{
    const FontDirective font;
    const auto fontArgs = DirectiveArguments::parse(u"size=120% weight=Bold style=italic", font.syntax());
    EXPECT_TRUE(fontArgs.diagnostics.isEmpty());
    EXPECT_EQ(font.html(QStringLiteral("b"), fontArgs),
              QStringLiteral("<span style=\"font-size:120%;font-weight:700;font-style:italic\">b</span>"));
    QFont base;
    base.setPointSizeF(10);
    const QFont styled = font.style(fontArgs, {base}).font.apply(base);
    EXPECT_DOUBLE_EQ(styled.pointSizeF(), 12);
    EXPECT_TRUE(styled.italic());

    const ColorDirective color;
    const auto colorArgs = DirectiveArguments::parse(u"value=#ff0000 background=true", color.syntax());
    EXPECT_EQ(color.html(QStringLiteral("t"), colorArgs),
              QStringLiteral("<span style=\"background-color:#ff0000\">t</span>"));
    EXPECT_EQ(color.style(colorArgs, {}).attributes.background().color(), QColor(255, 0, 0));
    const auto missing = DirectiveArguments::parse(u"", color.syntax());
    EXPECT_EQ(missing.diagnostics.size(), 1);
    EXPECT_EQ(color.html(QStringLiteral("t"), missing), QStringLiteral("<span style=\"color:inherit\">t</span>"));
    EXPECT_EQ(ColorDirective::parseColor(u"Teal"), QColor(0, 128, 128));
    EXPECT_EQ(ColorDirective::parseColor(u"#f00"), QColor(255, 0, 0));
}

TEST(MarkdownExtensionRegistry, lookups)
{
    const MarkdownExtensionRegistry registry = MarkdownExtensionRegistry::builtIn();
    EXPECT_EQ(registry.extensions().size(), 5u);
    EXPECT_EQ(registry.inlineExtension(2, u"a ==b==")->identifier(), QStringLiteral("highlight"));
    EXPECT_EQ(registry.inlineExtension(0, u"[^1]")->identifier(), QStringLiteral("footnotes"));
    EXPECT_FALSE(registry.inlineExtension(0, u"=a"));
    EXPECT_EQ(registry.blockExtension(u"  ::: note")->identifier(), QStringLiteral("container"));
    EXPECT_EQ(registry.documentStartFence(), QStringLiteral("---"));
    EXPECT_EQ(registry.extension(QStringLiteral("frontMatter"))->html({}), QStringLiteral("<!-- front matter -->\n"));
}
