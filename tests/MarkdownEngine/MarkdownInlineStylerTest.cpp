#include "MarkdownEngine/Core/MarkdownTextColor.h"
#include "MarkdownEngine/Styling/MarkdownASTStyler.h"
#include "MarkdownEngine/Styling/MarkdownFragmentDump.h"
#include "MarkdownEngine/Styling/MarkdownInlineStyler.h"

#include <gtest/gtest.h>

using namespace velmo::markdown;
using Role = MarkdownEditorFragmentRole;

namespace {

struct FixedImages final : EmbeddedImageProvider {
    std::optional<EmbeddedImageInfo> image(const EmbeddedImageRequest& request) override
    {
        if (request.name != "here.png")
            return std::nullopt;
        return EmbeddedImageInfo{QImage(2000, 1000, QImage::Format_ARGB32), QSizeF(2000, 1000), std::nullopt};
    }
    void invalidate(const EmbeddedImageRequest&) override {}
};
struct FixedLatex final : LatexRenderer {
    std::optional<LatexRenderResult> render(const QString&, LatexRenderMode) override
    {
        return LatexRenderResult{QImage(10, 10, QImage::Format_ARGB32), QSizeF(10, 40), 2};
    }
};

// The fragments of one paragraph, styled with the caret at `caret` (-1: no selection).
std::vector<MarkdownEditorFragment> inlineFragments(const QString& text, int caret = -1, bool pictures = false)
{
    const MarkdownDocument document = MarkdownDocument::parse(text);
    MarkdownEditorConfiguration config;
    if (pictures) {
        config.services.images = std::make_shared<FixedImages>();
        config.services.latex = std::make_shared<FixedLatex>();
    }
    MarkdownEditorAttachmentFactory factory(config.services);
    const MarkdownExtensionRegistry registry(config.extensions);
    MarkdownSourceEditorState state;
    if (caret >= 0)
        state = MarkdownSourceEditorState::caret(caret);
    MarkdownASTStyler::Request request;
    request.document = &document;
    request.config = &config;
    request.selection = state;
    const auto lines = MarkdownASTStyler::activeLineRanges(state, text);
    MarkdownInlineStyler::Environment env;
    env.config = &config;
    env.registry = &registry;
    env.baseFont = config.bodyFont();
    env.baseAttributes.setFont(env.baseFont);
    env.showsMarkers = MarkdownASTStyler::markerVisibility(request, lines);
    env.revealsFormula = MarkdownASTStyler::formulaVisibility(request);
    env.attachments = &factory;
    env.maximumEmbedWidth = 600;
    env.note = document.text;
    std::vector<MarkdownEditorFragment> out;
    for (const auto& block : document.blocks) {
        auto more = MarkdownInlineStyler::fragments(block.inlines, env);
        out.insert(out.end(), more.begin(), more.end());
        MarkdownInlineStyler::applyTextColors(block.inlines, env, out);
    }
    return out;
}

std::string dump(const std::vector<MarkdownEditorFragment>& fragments, const QString& text)
{
    QString out;
    for (const auto& f : fragments)
        out += MarkdownFragmentDump::fragmentLine(f, text) + u'\n';
    return out.toStdString();
}

const MarkdownEditorFragment* find(const std::vector<MarkdownEditorFragment>& fragments, Role role, int location)
{
    for (const auto& f : fragments) {
        if (f.role == role && f.range.location == location)
            return &f;
    }
    return nullptr;
}

}

TEST(MarkdownInlineStyler, MarkersByConstruct)
{
    struct Case {
        const char16_t* text;
        int marker;      // location of the marker
        Role role;
        bool hiddenOnLine;
    };
    const Case cases[] = {
        {u"a **bold** b", 2, Role::emphasisMarker, false},
        {u"a ~~gone~~ b", 2, Role::emphasisMarker, false},
        {u"a ==mark== b", 2, Role::emphasisMarker, false},
        {u"a `code` b", 2, Role::codeMarker, false},
        {u"a [[Page]] b", 2, Role::linkMarker, false},
        {u"a \\* b", 2, Role::escapeMarker, true},
    };
    for (const Case& c : cases) {
        const QString text = QString::fromUtf16(c.text);
        SCOPED_TRACE(text.toStdString());
        const auto off = inlineFragments(text + "\n\nz", int(text.size()) + 2);
        const auto* hidden = find(off, c.role, c.marker);
        ASSERT_TRUE(hidden);
        EXPECT_TRUE(hidden->isHidden);
        EXPECT_EQ(hidden->priority, 30);
        // Inline hidden markers carry no tiny font: the hidden mark alone takes them out.
        EXPECT_FALSE(hidden->attributes.has(MarkdownTextAttributes::Font));
        const auto on = inlineFragments(text, 0);
        EXPECT_EQ(find(on, c.role, c.marker)->isHidden, c.hiddenOnLine);
    }
}

TEST(MarkdownInlineStyler, Links)
{
    const QString text = QStringLiteral("[a](https://x.org) and [t]()");
    const auto on = inlineFragments(text, 0);
    const auto* link = find(on, Role::link, 1);
    ASSERT_TRUE(link);
    EXPECT_EQ(link->attributes.link(), "https://x.org");
    EXPECT_TRUE(link->attributes.has(MarkdownTextAttributes::Underline));
    const auto* destination = find(on, Role::linkDestination, 3);
    ASSERT_TRUE(destination);
    EXPECT_EQ(destination->attributes.font.family(), MarkdownFont::systemMonospaced());
    // "[t]()": incomplete, in its own colour, no underline.
    const auto* incomplete = find(on, Role::link, int(text.indexOf("t]")));
    ASSERT_TRUE(incomplete);
    EXPECT_EQ(incomplete->attributes.foreground, MarkdownEditorConfiguration().theme.incompleteLink.rgba());
    EXPECT_FALSE(incomplete->attributes.has(MarkdownTextAttributes::Underline));
    // Off the line the destination is clear and hidden, above the content.
    const auto off = inlineFragments(text);
    const auto* hidden = find(off, Role::linkMarker, 3);
    ASSERT_TRUE(hidden);
    EXPECT_TRUE(hidden->isHidden);
    EXPECT_EQ(hidden->priority, 31);

    const auto wiki = inlineFragments(QStringLiteral("see [[Target|shown]]"));
    const auto it = std::find_if(wiki.begin(), wiki.end(), [](auto& f) { return f.role == Role::wikiLink; });
    ASSERT_NE(it, wiki.end());
    EXPECT_EQ(it->attributes.wikiLinkID(), "Target");
}

TEST(MarkdownInlineStyler, PicturesComeThroughTheServices)
{
    const QString text = QStringLiteral("![a](here.png) ![b](missing.png) ![alt]() $a+b$");
    const auto none = inlineFragments(text);
    ASSERT_TRUE(find(none, Role::imageEmbed, 0)) << dump(none, text);
    EXPECT_FALSE(find(none, Role::imageEmbed, 0)->attributes.has(MarkdownTextAttributes::Attachment));
    const auto with = inlineFragments(text, -1, true);
    const auto* embedded = find(with, Role::imageEmbed, 0);
    ASSERT_TRUE(embedded->attributes.attachment());
    EXPECT_DOUBLE_EQ(embedded->attributes.attachment()->size.width(), 600); // limited to the maximum
    EXPECT_EQ(embedded->priority, 20);
    const auto* missing = find(with, Role::imageEmbed, int(text.indexOf("![b")));
    EXPECT_EQ(missing->attributes.foreground, MarkdownEditorConfiguration().theme.disabledText.rgba());
    EXPECT_FALSE(missing->attributes.has(MarkdownTextAttributes::Attachment));
    const auto* plain = find(with, Role::imageEmbed, int(text.indexOf("![alt")));
    EXPECT_EQ(plain->attributes.font.family(), MarkdownFont::systemMonospaced());

    const int formula = int(text.indexOf("$a"));
    const auto* rendered = find(with, Role::latex, formula);
    ASSERT_TRUE(rendered->attributes.attachment());
    EXPECT_FLOAT_EQ(rendered->attributes.font.pointSize, 24.f); // 40 * 0.6 above the body size
    // On the line but outside it: still rendered. Inside: source.
    EXPECT_TRUE(find(inlineFragments(text, 0, true), Role::latex, formula)->attributes.attachment());
    EXPECT_FALSE(find(inlineFragments(text, formula + 2, true), Role::latex, formula)->attributes.attachment());
}

TEST(MarkdownInlineStyler, SmallerConstructs)
{
    const QString text = QStringLiteral("x[^n] <span style=\"color: red\">hot</span> *it*");
    const auto f = inlineFragments(text);
    const auto* footnote = find(f, Role::footnote, 1);
    ASSERT_TRUE(footnote);
    EXPECT_FLOAT_EQ(footnote->attributes.font.pointSize, 15 * 0.75f);
    EXPECT_GT(footnote->attributes.baselineOffset, 0.f);
    EXPECT_EQ(footnote->attributes.wikiLinkID(), "n");
    const auto* hot = find(f, Role::body, int(text.indexOf("hot")));
    ASSERT_TRUE(hot);
    const auto colored = std::find_if(f.begin(), f.end(), [&](auto& g) {
        return g.role == Role::body && g.range.location == text.indexOf("hot") && g.attributes.foreground == MarkdownTextColor(MarkdownTextColor::red).color().rgba();
    });
    EXPECT_NE(colored, f.end());
    EXPECT_TRUE(std::any_of(f.begin(), f.end(), [&](auto& g) {
        return g.role == Role::html && g.range.location == text.indexOf("<span") && g.isHidden;
    }));
    const auto italic = std::find_if(f.begin(), f.end(), [&](auto& g) {
        return g.role == Role::body && g.range.location == text.indexOf("it*") && g.attributes.font.italic;
    });
    EXPECT_NE(italic, f.end());
}

TEST(MarkdownInlineStyler, DeepNestingDoesNotRecurse)
{
    QString text;
    for (int i = 0; i < 20000; ++i)
        text += QStringLiteral("*_");
    text += u'x';
    for (int i = 0; i < 20000; ++i)
        text += QStringLiteral("_*");
    const auto f = inlineFragments(text);
    EXPECT_FALSE(f.empty());
}

TEST(MarkdownInlineStyler, WebURLs)
{
    // Relative paths and plain words are answered without the URL reader; the answers must
    // still be those it would give.
    const std::pair<const char16_t*, std::optional<const char16_t*>> cases[] = {
        {u"https://example.org/a?b=1", u"https://example.org/a?b=1"},
        {u"mailto:me@example.org", u"mailto:me@example.org"},
        {u"www.example.org", u"https://www.example.org"},
        {u"WWW.example.org", u"https://WWW.example.org"},
        {u"me@example.org", u"mailto:me@example.org"},
        {u"me@example", std::nullopt},
        {u"Note%20One.md", std::nullopt},
        {u"folder/www.md", std::nullopt},
        {u"a b", std::nullopt},
        {u"", std::nullopt},
    };
    for (const auto& [destination, expected] : cases) {
        const auto url = MarkdownInlineStyler::webURL(QString::fromUtf16(destination));
        EXPECT_EQ(url, expected ? std::optional(QString::fromUtf16(*expected)) : std::nullopt)
            << QString::fromUtf16(destination).toStdString();
    }
}

// The full pass leaves out the walk for coloured spans where the block walk met no HTML; it
// must find every span the walk finds, wherever the span sits.
TEST(MarkdownInlineStyler, FullPassFindsEveryColouredSpan)
{
    const char16_t* const texts[] = {
        u"a <span style=\"color: red\">x</span> b",
        u"*a <span style=\"color: red\">x</span>* and ~~<span style=\"color: blue\">y</span>~~",
        u"[a <span style=\"color: red\">x</span>](u) ==h <span style=\"color: red\">z</span>==",
        u"![a <span style=\"color: red\">x</span>](i.png) `<span style=\"color: red\">c</span>`",
        u"[[w]] and **<span style=\"color: red\">b</span>**\n\nplain **bold** text",
    };
    const auto colours = [](const std::vector<MarkdownEditorFragment>& fragments) {
        std::vector<std::pair<int, int>> found; // location, priority
        for (const MarkdownEditorFragment& f : fragments) {
            if (f.priority == 7 || (f.role == Role::html && f.priority == 30))
                found.emplace_back(f.range.location, f.priority);
        }
        std::sort(found.begin(), found.end());
        return found;
    };
    size_t total = 0;
    for (const char16_t* t : texts) {
        const QString text = QString::fromUtf16(t);
        const MarkdownDocument document = MarkdownDocument::parse(text);
        MarkdownEditorConfiguration config;
        MarkdownASTStyler::Request request;
        request.document = &document;
        request.config = &config;
        const auto result = MarkdownASTStyler::style(request);
        const auto expected = colours(inlineFragments(text));
        EXPECT_EQ(colours(result.fragments.fragments()), expected) << text.toStdString();
        total += expected.size();
    }
    EXPECT_GE(total, 18u); // each span: its text and its two tags
}
