#include "MarkdownEngine/Configuration/HighlighterSyntaxHighlighter.h"
#include "MarkdownEngine/Configuration/MarkdownEditorConfiguration.h"
#include "MarkdownEngine/Extensions/MarkdownExtensions.h"

#include <gtest/gtest.h>

using namespace velmo::markdown;
using Config = MarkdownEditorConfiguration;

TEST(MarkdownEditorConfiguration, EveryStyleFieldTakesPartInTheComparison)
{
    EXPECT_EQ(Config::styleFieldNames().size(), 35);
    EXPECT_EQ(Config::styleFieldNames().front(), "theme");
    EXPECT_EQ(Config::styleFieldNames().back(), "directiveSettings");
    EXPECT_FALSE(Config::styleFieldNames().contains("services"));

    // One change per group of fields; each must make the styles differ.
    const std::vector<std::function<void(Config&)>> changes = {
        [](Config& c) { c.theme.link = Qt::red; },
        [](Config& c) { c.bodySize = 16; },
        [](Config& c) { c.bodyFontName = "DejaVu Serif"; },
        [](Config& c) { c.bodyFontDesign = MarkdownFont::Design::monospaced; },
        [](Config& c) { c.markers.revealsMarkersOnActiveLine = false; },
        [](Config& c) { c.codeBlock.horizontalIndent = 3; },
        [](Config& c) { c.headings.fontMultipliers.pop_back(); },
        [](Config& c) { c.thematicBreak.dashMark.reset(); },
        [](Config& c) { c.paragraph.lineHeightFactor.reset(); },
        [](Config& c) { c.readingWidth.reset(); },
        [](Config& c) { c.heightBehavior = Config::HeightBehavior::fitsContent; },
        [](Config& c) { c.inlinePlaceholder = "x"; },
        [](Config& c) { c.extensions.pop_back(); },
        [](Config& c) { c.extensions.back() = std::make_shared<HighlightExtension>(); },
        [](Config& c) { c.directives.clear(); },
        [](Config& c) { c.directiveSettings.disabledNames.insert("font"); },
    };
    for (size_t i = 0; i < changes.size(); ++i) {
        Config changed;
        changes[i](changed);
        EXPECT_FALSE(Config().hasSameStyle(changed)) << "change " << i;
    }
    Config services;
    services.services.syntaxHighlighter = std::make_shared<HighlighterSyntaxHighlighter>();
    services.services.bus.findQuery.reset();
    EXPECT_TRUE(Config().hasSameStyle(services));
}

TEST(MarkdownEditorConfiguration, LevelLookupsClampAndFallBack)
{
    Config c;
    EXPECT_DOUBLE_EQ(c.headings.fontMultiplier(0), 1.9);
    EXPECT_DOUBLE_EQ(c.headings.fontMultiplier(9), 1.0);
    EXPECT_DOUBLE_EQ(c.headings.topSpacing(2), 1.15);
    c.headings.fontMultipliers.clear();
    c.headings.topSpacingEm.clear();
    EXPECT_DOUBLE_EQ(c.headings.fontMultiplier(3), 1.0);
    EXPECT_DOUBLE_EQ(c.headings.topSpacing(3), 0.0);
    EXPECT_EQ(c.thematicBreak.mark(u'*')->text, QStringLiteral("✳"));
    EXPECT_FALSE(c.thematicBreak.mark(u'+'));
    EXPECT_DOUBLE_EQ(c.overscroll.bottomInset(100), 56.0);
    EXPECT_DOUBLE_EQ(c.overscroll.bottomInset(2000), 260.0);
    EXPECT_DOUBLE_EQ(c.paragraph.metrics(20).lineHeight, 27.0);
    c.paragraph.lineHeightFactor.reset();
    EXPECT_DOUBLE_EQ(c.paragraph.metrics(20).lineHeight, 24.0);
}

TEST(MarkdownEditorTheme, BuiltInsPatchesAndCalloutColours)
{
    const auto light = MarkdownEditorTheme::light(), dark = MarkdownEditorTheme::dark();
    EXPECT_EQ(light.bodyText, QColor("#1F2328"));
    EXPECT_EQ(dark.codeBackground, QColor("#161B22"));
    EXPECT_EQ(light.latexInk(), QColor("#1F2328"));
    EXPECT_EQ(dark.latexInk(), QColor("#E6EDF3"));
    EXPECT_EQ(MarkdownEditorTheme::defaultTag(true), dark.tag);

    EXPECT_EQ(light.color(MarkdownCallout::tip), QColor("#3fb950"));
    // Without an entry: the kind's own hex, darkened 15% in a light theme only.
    auto bare = light;
    bare.calloutColors.clear();
    EXPECT_EQ(bare.color(MarkdownCallout::note), QColor::fromRgbF(0x44 / 255.f * .85f, 0x93 / 255.f * .85f, 0xf8 / 255.f * .85f));
    bare.isDark = true;
    EXPECT_EQ(bare.color(MarkdownCallout::note), QColor("#4493f8"));

    ThemePatch patch;
    EXPECT_TRUE(patch.isEmpty());
    patch.link = Qt::green;
    patch.calloutColors[MarkdownCallout::warning] = Qt::blue;
    EXPECT_FALSE(patch.isEmpty());
    const auto patched = light.overriding(patch);
    EXPECT_EQ(patched.link, QColor(Qt::green));
    EXPECT_EQ(patched.bodyText, light.bodyText);
    EXPECT_EQ(patched.color(MarkdownCallout::warning), QColor(Qt::blue));
    EXPECT_EQ(patched.color(MarkdownCallout::tip), QColor("#3fb950"));
}

TEST(MarkdownFont, WeightsTraitsAndFallbacks)
{
    const MarkdownFontDescriptor serif = MarkdownFont::serif(15);
    EXPECT_FALSE(serif.family().isEmpty());
    EXPECT_EQ(MarkdownFont::named(QStringLiteral("No Such Family"), 15), serif);
    EXPECT_EQ(MarkdownFont::named(std::nullopt, 15), serif);
    EXPECT_TRUE(MarkdownFont::applying(QFont::DemiBold, serif).isBold());
    EXPECT_FALSE(MarkdownFont::applying(QFont::Medium, serif).isBold());
    EXPECT_FALSE(MarkdownFont::applying(QFont::Light, MarkdownFont::serif(15, QFont::Bold)).isBold());
    const auto bi = MarkdownFont::applying(MarkdownFont::Trait::italic, MarkdownFont::applying(MarkdownFont::Trait::bold, serif));
    EXPECT_TRUE(bi.isBold() && bi.italic);
    EXPECT_FALSE(MarkdownFont::removing(MarkdownFont::Trait::bold, bi).isBold());
    EXPECT_EQ(MarkdownFont::withSize(serif, 9).pointSize, 9.0f);
    // Tabular digits: every number of one digit count takes the same width.
    const auto tabular = MarkdownFont::tabularDigits(serif);
    EXPECT_DOUBLE_EQ(tabular.width("1."), tabular.width("8."));
    EXPECT_EQ(MarkdownFont::design("rounded"), MarkdownFont::Design::rounded);
}

TEST(MarkdownEditorServices, DefaultsAndBusNames)
{
    const MarkdownEditorServices services;
    EXPECT_FALSE(services.wikiLinks);
    EXPECT_FALSE(services.images->image({"a.png", std::nullopt, std::nullopt}));
    EXPECT_FALSE(services.latex->render("x", LatexRenderMode::display));
    EXPECT_FALSE(services.syntaxHighlighter->highlightedCode("x", QStringLiteral("c")));
    EXPECT_EQ(NoOpWikiLinkResolver().fingerprint(), "none");
    EXPECT_FALSE(NoOpWikiLinkResolver().resolve("x").exists);
    EXPECT_TRUE(services.syntaxHighlighter->fingerprint().startsWith("PlainTextSyntaxHighlighter|"));
    EXPECT_EQ(services.bus.applyBoldRequest, QStringLiteral("app.velmo.bus.ApplyBold"));
    EXPECT_EQ(services.bus.replaceAll, QStringLiteral("app.velmo.bus.ReplaceAll"));
}

TEST(HighlighterSyntaxHighlighter, RunsStayInSourceOffsetsAcrossTabs)
{
    const HighlighterSyntaxHighlighter highlighter;
    const QString code = QStringLiteral("\tint x = 1; // note\n");
    const auto styled = highlighter.highlightedCode(code, QStringLiteral("c"));
    ASSERT_TRUE(styled);
    EXPECT_EQ(styled->length(), code.size());
    // The keyword and the comment get colours of their own, at their source positions.
    const auto* keyword = styled->runAt(int(code.indexOf("int")));
    const auto* comment = styled->runAt(int(code.indexOf("//")));
    const auto* plain = styled->runAt(int(code.indexOf("x")));
    ASSERT_TRUE(keyword && comment && plain);
    EXPECT_EQ(keyword->range.location, code.indexOf("int"));
    EXPECT_NE(keyword->attributes.foreground, plain->attributes.foreground);
    EXPECT_NE(comment->attributes.foreground, plain->attributes.foreground);
    EXPECT_FALSE(highlighter.highlightedCode(code, std::nullopt));
}
