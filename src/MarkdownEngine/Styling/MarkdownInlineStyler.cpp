#include "MarkdownEngine/Styling/MarkdownInlineStyler.h"

#include "MarkdownEngine/Core/MarkdownTextColor.h"
#include "MarkdownEngine/Core/TextCharacters.h"

#include <QFontDatabase>
#include <QHash>
#include <QMutex>
#include <QRegularExpression>
#include <QUrl>
#include <unordered_map>

namespace velmo::markdown {

namespace {

using Role = MarkdownEditorFragmentRole;
namespace ik = inline_kind;


// A scheme and its colon: a letter, then letters, digits, "+", "." or "-".
bool hasScheme(QStringView s)
{
    const auto isLetter = [](char16_t c) { return (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z'); };
    if (s.isEmpty() || !isLetter(s[0].unicode()))
        return false;
    for (qsizetype i = 1; i < s.size(); ++i) {
        const char16_t c = s[i].unicode();
        if (c == u':')
            return true;
        if (!isLetter(c) && !(c >= u'0' && c <= u'9') && c != u'+' && c != u'.' && c != u'-')
            return false;
    }
    return false;
}

QColor withAlpha(QColor c, double alpha)
{
    c.setAlphaF(float(std::clamp(alpha, 0.0, 1.0)));
    return c;
}

void markerPass(const MarkdownInline& node, Role role, const QColor& color, const MarkdownInlineStyler::Environment& env,
                std::vector<MarkdownEditorFragment>& into)
{
    for (const MarkdownSourceRange& marker : node.markerRanges) {
        if (marker.length <= 0 || marker.intersection(node.contentRange).length > 0)
            continue;
        if (env.showsMarkers(marker)) {
            MarkdownTextAttributes a;
            a.setForeground(color);
            MarkdownEditorFragment::add(into, marker, role, std::move(a), 30);
        } else {
            MarkdownEditorFragment::add(into, marker, role, {}, 30, true);
        }
    }
}

MarkdownFontDescriptor codeFont(const std::optional<QString>& name, double size)
{
    if (name && MarkdownFont::isAvailable(*name))
        return MarkdownFontDescriptor{*name, float(size)};
    return MarkdownFont::monospaced(size);
}

void visitLink(const MarkdownInline& node, const ik::Link& link, const MarkdownTextAttributes& handed,
               const MarkdownFontDescriptor& font, const MarkdownInlineStyler::Environment& env,
               std::vector<MarkdownEditorFragment>& into)
{
    const MarkdownEditorConfiguration& config = *env.config;
    const QStringView destination = chars::trimmed(env.payload(link.destination));
    const bool incomplete = !link.hasDestination || destination.isEmpty();
    MarkdownTextAttributes a = handed;
    if (!incomplete) {
        if (auto url = MarkdownInlineStyler::webURL(destination))
            a.setLink(*url);
    }
    if (incomplete) {
        a.setForeground(withAlpha(config.theme.incompleteLink, config.link.incompleteLinkAlpha));
    } else {
        a.setForeground(withAlpha(config.theme.link, config.link.activeLinkAlpha));
        a.setUnderline(withAlpha(config.theme.link, config.link.underlineAlpha));
    }
    if (node.contentRange.length > 0)
        MarkdownEditorFragment::add(into, node.contentRange, Role::link, a, 0);
    for (const MarkdownInline& child : node.children())
        MarkdownInlineStyler::visit(child, a, font, env, into);
    const int contentEnd = node.contentRange.upperBound();
    for (const MarkdownSourceRange& marker : node.markerRanges) {
        if (marker.length <= 0)
            continue;
        const bool shows = env.showsMarkers(marker);
        if (shows && marker.length >= 2 && marker.location >= contentEnd) {
            MarkdownTextAttributes d;
            d.setForeground(config.theme.disabledText);
            d.setFont(MarkdownFont::monospaced(font.pointSize * 0.9));
            MarkdownEditorFragment::add(into, marker, Role::linkDestination, std::move(d), 0);
        } else if (shows) {
            MarkdownTextAttributes m;
            m.setForeground(config.theme.marker);
            MarkdownEditorFragment::add(into, marker, Role::linkMarker, std::move(m), 0);
        } else if (marker.upperBound() <= node.contentRange.location || marker.location >= contentEnd) {
            MarkdownTextAttributes m;
            m.setForeground(clearColor);
            MarkdownEditorFragment::add(into, marker, Role::linkMarker, std::move(m), 31, true);
        }
    }
}

void visitImage(const MarkdownInline& node, const ik::Image& image, const MarkdownTextAttributes& handed,
                const MarkdownFontDescriptor& font, const MarkdownInlineStyler::Environment& env,
                std::vector<MarkdownEditorFragment>& into)
{
    const MarkdownEditorConfiguration& config = *env.config;
    const QString source = chars::trimmed(env.payload(image.source)).toString();
    MarkdownTextAttributes a = handed;
    a.setForeground(config.theme.disabledText);
    if (!image.isEmbed) {
        a.setFont(MarkdownFont::monospaced(font.pointSize * 0.9));
        MarkdownEditorFragment::add(into, node.range, Role::imageEmbed, std::move(a), 0);
        return;
    }
    auto attachment = env.attachments
        ? env.attachments->embeddedImage(source, std::nullopt, std::nullopt, env.maximumEmbedWidth)
        : nullptr;
    if (!attachment) {
        MarkdownEditorFragment::add(into, node.range, Role::imageEmbed, std::move(a), 0);
        return;
    }
    MarkdownTextAttributes e = handed;
    e.setAttachment(std::move(attachment));
    MarkdownEditorFragment::add(into, node.range, Role::imageEmbed, std::move(e), 20);
}

void visitLatex(const MarkdownInline& node, const ik::Latex& latex, const MarkdownTextAttributes& handed,
                const MarkdownFontDescriptor& font, const MarkdownInlineStyler::Environment& env,
                std::vector<MarkdownEditorFragment>& into)
{
    const QColor ink = env.config->theme.latexInk();
    MarkdownEditorAttachmentFactory::AttachmentPointer attachment;
    if (env.attachments) {
        const QString source = env.payload(latex.source).toString();
        attachment = latex.isBlock ? env.attachments->blockLatex(source, font.pointSize, ink)
                                   : env.attachments->inlineLatex(source, font.pointSize, ink);
    }
    if (!attachment || env.revealsFormula(node.range)) {
        MarkdownTextAttributes a = handed;
        a.setFont(MarkdownFont::monospaced(font.pointSize));
        a.setForeground(ink);
        MarkdownEditorFragment::add(into, node.range, Role::latex, std::move(a), attachment ? 20 : 0);
        return;
    }
    MarkdownTextAttributes a = handed;
    a.setRole(Role::latex);
    a.setFont(MarkdownFont::withSize(font, std::max<double>(font.pointSize, attachment->size.height() * 0.6)));
    a.setAttachment(std::move(attachment));
    MarkdownEditorFragment::add(into, node.range, Role::latex, std::move(a), 20);
}

}

MarkdownTextAttributes MarkdownInlineStyler::attributes(const QTextCharFormat& format, const MarkdownFontDescriptor& font)
{
    MarkdownTextAttributes a;
    if (format.hasProperty(QTextFormat::ForegroundBrush))
        a.setForeground(format.foreground().color());
    if (format.hasProperty(QTextFormat::BackgroundBrush))
        a.setBackground(format.background().color());
    if (format.hasProperty(QTextFormat::FontStrikeOut) && format.fontStrikeOut())
        a.keys |= MarkdownTextAttributes::Strikethrough;
    if (format.hasProperty(QTextFormat::TextUnderlineStyle) && format.underlineStyle() != QTextCharFormat::NoUnderline)
        a.keys |= MarkdownTextAttributes::Underline;
    if (format.hasProperty(QTextFormat::TextUnderlineColor))
        a.setUnderline(format.underlineColor());
    const bool fontChanged = format.hasProperty(QTextFormat::FontWeight) || format.hasProperty(QTextFormat::FontItalic)
        || format.hasProperty(QTextFormat::FontPointSize) || format.hasProperty(QTextFormat::FontFamilies);
    if (fontChanged) {
        MarkdownFontDescriptor f = font;
        if (format.hasProperty(QTextFormat::FontWeight))
            f.weight = short(format.fontWeight());
        if (format.hasProperty(QTextFormat::FontItalic))
            f.italic = format.fontItalic();
        if (format.hasProperty(QTextFormat::FontPointSize))
            f.pointSize = float(format.fontPointSize());
        if (format.hasProperty(QTextFormat::FontFamilies)) {
            const QStringList families = format.fontFamilies().toStringList();
            if (!families.isEmpty())
                f.setFamily(families.first());
        }
        a.setFont(f);
    }
    return a;
}

const MarkdownTextAttributes& MarkdownInlineStyler::Environment::extensionAttributes(const MarkdownExtension& extension,
                                                                                  const MarkdownFontDescriptor& font) const
{
    // A note uses a handful of fonts: a linear search is enough.
    for (const ExtensionLook& look : extensionLooks) {
        if (look.extension == &extension && look.font == font)
            return look.attributes;
    }
    extensionLooks.push_back({&extension, font, attributes(extension.contentAttributes(font.toQFont()), font)});
    return extensionLooks.back().attributes;
}

std::optional<QString> MarkdownInlineStyler::webURL(QStringView view)
{
    if (view.isEmpty() || view.contains(u' '))
        return std::nullopt;
    // Only a scheme needs the URL reader and only a mail address the pattern. The others,
    // relative paths mostly, are answered here and take no room in the cache: a note with
    // thousands of them would otherwise push out the URLs it keeps coming back to.
    const bool scheme = hasScheme(view);
    if (!scheme && view.startsWith(QLatin1String("www."), Qt::CaseInsensitive))
        return QStringLiteral("https://") + view.toString();
    if (!scheme && !view.contains(u'@'))
        return std::nullopt;
    // Reading a URL costs microseconds, and a note links to the same places again and again.
    // Looked up by view, so that a known destination is not copied to be found.
    struct ViewHash {
        using is_transparent = void;
        size_t operator()(QStringView view) const { return qHash(view); }
    };
    struct ViewEqual {
        using is_transparent = void;
        bool operator()(QStringView a, QStringView b) const { return a == b; }
    };
    static QMutex mutex;
    static auto* const known = new std::unordered_map<QString, std::optional<QString>, ViewHash, ViewEqual>();
    constexpr size_t destinationsKept = 4096;
    {
        QMutexLocker lock(&mutex);
        if (const auto it = known->find(view); it != known->end())
            return it->second;
    }
    const QString destination = view.toString();
    std::optional<QString> url;
    static const QRegularExpression mail(QStringLiteral("^[^@/:\\s]+@[^@/:\\s]+\\.[^@/:\\s]+$"));
    if (scheme) {
        const QUrl parsed(destination);
        if (parsed.isValid())
            url = parsed.toString();
    } else if (mail.match(destination).hasMatch()) {
        url = QStringLiteral("mailto:") + destination;
    }
    QMutexLocker lock(&mutex);
    if (known->size() >= destinationsKept)
        known->clear();
    known->emplace(destination, url);
    return url;
}

std::vector<MarkdownEditorFragment> MarkdownInlineStyler::fragments(const MarkdownInlineList& inlines,
                                                                    const Environment& environment)
{
    environment.list = &inlines;
    std::vector<MarkdownEditorFragment> out;
    for (const MarkdownInline& node : inlines)
        visit(node, environment.baseAttributes, environment.baseFont, environment, out);
    return out;
}

void MarkdownInlineStyler::visit(const MarkdownInline& root, const MarkdownTextAttributes& rootAttributes,
                                 const MarkdownFontDescriptor& rootFont, const Environment& env,
                                 std::vector<MarkdownEditorFragment>& into)
{
    const MarkdownEditorConfiguration& config = *env.config;
    const MarkdownEditorTheme& theme = config.theme;
    // Each frame hands its attributes and font down to the children it pushes. Attribute sets
    // are shared by the siblings of a level, so a deep chain costs one set per level.
    // A walk nested in this one (a link's children) works above this one's frames and sets
    // and leaves both as it found them.
    using Frame = Environment::WalkFrame;
    std::vector<Frame>& stack = env.walk;
    const size_t base = stack.size();
    std::deque<MarkdownTextAttributes>& levels = env.levels;
    const size_t levelsBase = levels.size();
    auto pushChildren = [&stack](const MarkdownInline& node, const MarkdownTextAttributes* a, const MarkdownFontDescriptor* font) {
        const std::span<const MarkdownInline> children = node.children();
        for (auto child = children.rbegin(); child != children.rend(); ++child)
            stack.push_back({&*child, a, font});
    };

    for (Frame frame{&root, &rootAttributes, &rootFont};; frame = stack.back(), stack.pop_back()) {
        const MarkdownInline& node = *frame.node;
        const MarkdownTextAttributes& handed = *frame.attributes;
        const MarkdownFontDescriptor& font = *frame.font;
        if (node.is<ik::Text>()) {
            MarkdownEditorFragment::add(into, node.range, Role::body, handed, 0);
        } else if (node.is<ik::Escape>()) {
            MarkdownEditorFragment::add(into, node.contentRange, Role::body, handed, 0);
            for (const MarkdownSourceRange& marker : node.markerRanges) {
                if (marker.length > 0)
                    MarkdownEditorFragment::add(into, marker, Role::escapeMarker, {}, 30, true);
            }
        } else if (node.is<ik::Code>()) {
            MarkdownTextAttributes a = handed;
            a.setFont(codeFont(config.inlineCode.fontName, font.pointSize * config.inlineCode.fontSizeScale));
            a.setForeground(theme.bodyText);
            a.setBackground(theme.codeBackground);
            MarkdownEditorFragment::add(into, node.range, Role::inlineCode, std::move(a), 10);
            markerPass(node, Role::codeMarker, withAlpha(theme.marker, config.markers.inlineCodeMarkerAlpha), env, into);
        } else if (const auto* emphasis = node.as<ik::Emphasis>()) {
            // The kind's raw value plus one is the trait mask: italic 1, bold 2, both 3.
            const int mask = int(emphasis->emphasis) + 1;
            MarkdownFontDescriptor emphasized = font;
            if (mask & 1)
                emphasized = MarkdownFont::applying(MarkdownFont::Trait::italic, emphasized);
            if (mask & 2)
                emphasized = MarkdownFont::applying(MarkdownFont::Trait::bold, emphasized);
            MarkdownTextAttributes* a = &levels.emplace_back(handed);
            a->setFont(emphasized);
            MarkdownEditorFragment::add(into, node.contentRange, Role::body, *a, 0);
            markerPass(node, Role::emphasisMarker, theme.marker, env, into);
            pushChildren(node, a, frame.font);
        } else if (node.is<ik::Strikethrough>() || node.is<ik::Highlight>()) {
            const bool strike = node.is<ik::Strikethrough>();
            MarkdownTextAttributes* a = &levels.emplace_back(handed);
            auto extension = env.registry ? env.registry->extension(strike ? QStringLiteral("strikethrough")
                                                                           : QStringLiteral("highlight"))
                                          : nullptr;
            if (extension)
                a->merge(env.extensionAttributes(*extension, font));
            if (strike)
                a->setStrikethroughColor(theme.strikethroughColor);
            else if (!extension)
                a->setBackground(theme.highlightColor);
            MarkdownEditorFragment::add(into, node.contentRange, Role::body, *a, 0);
            markerPass(node, Role::emphasisMarker, theme.marker, env, into);
            pushChildren(node, a, frame.font);
        } else if (const auto* span = node.as<ik::ExtensionSpan>()) {
            MarkdownTextAttributes* a = &levels.emplace_back(handed);
            if (auto extension = env.registry ? env.registry->extension(env.payload(span->name).toString()) : nullptr)
                a->merge(env.extensionAttributes(*extension, font));
            MarkdownEditorFragment::add(into, node.contentRange, Role::directiveBody, *a, 0);
            markerPass(node, Role::directiveMarker, theme.marker, env, into);
            pushChildren(node, a, frame.font);
        } else if (const auto* link = node.as<ik::Link>()) {
            visitLink(node, *link, handed, font, env, into);
        } else if (const auto* wiki = node.as<ik::WikiLink>()) {
            MarkdownTextAttributes a = handed;
            a.setForeground(theme.link);
            a.setUnderline(withAlpha(theme.link, config.link.underlineAlpha));
            a.setRole(Role::wikiLink);
            a.setWikiLinkID(env.payload(wiki->target).toString());
            MarkdownEditorFragment::add(into, node.contentRange, Role::wikiLink, std::move(a), 0);
            markerPass(node, Role::linkMarker, theme.marker, env, into);
        } else if (const auto* image = node.as<ik::Image>()) {
            visitImage(node, *image, handed, font, env, into);
        } else if (const auto* latex = node.as<ik::Latex>()) {
            visitLatex(node, *latex, handed, font, env, into);
        } else if (const auto* footnote = node.as<ik::FootnoteReference>()) {
            MarkdownTextAttributes a = handed;
            const MarkdownFontDescriptor small = MarkdownFont::withSize(font, font.pointSize * 0.75);
            a.setFont(small);
            a.setBaselineOffset(small.pointSize * 0.33f);
            a.setForeground(theme.link);
            a.setRole(Role::footnote);
            a.setWikiLinkID(env.payload(footnote->label).toString());
            MarkdownEditorFragment::add(into, node.range, Role::footnote, std::move(a), 10);
        } else if (node.is<ik::Html>()) {
            MarkdownTextAttributes a = handed;
            a.setForeground(theme.disabledText);
            a.setFont(MarkdownFont::monospaced(font.pointSize * 0.92));
            MarkdownEditorFragment::add(into, node.range, Role::html, std::move(a), 0);
        } else { // soft and hard breaks
            MarkdownEditorFragment::add(into, node.range, Role::body, {}, 0);
        }
        if (stack.size() == base)
            break;
    }
    levels.resize(levelsBase);
}

void MarkdownInlineStyler::applyTextColors(const MarkdownInlineList& inlines, const Environment& env,
                                           std::vector<MarkdownEditorFragment>& into)
{
    static const QRegularExpression open(
        QStringLiteral("^span\\s+style\\s*=\\s*[\"']\\s*color\\s*:\\s*([^;\"'<>]+?)\\s*;?\\s*[\"']\\s*$"),
        QRegularExpression::CaseInsensitiveOption);
    auto innerText = [](QStringView tag) {
        QStringView v = chars::trimmed(tag);
        if (v.startsWith(u'<'))
            v = v.mid(1);
        if (v.endsWith(u'>'))
            v = v.chopped(1);
        return v;
    };
    auto isClose = [&](const MarkdownInline& node) {
        const auto* html = node.as<ik::Html>();
        return html && chars::trimmed(innerText(inlines.text(env.note, html->source))).compare(u"/span", Qt::CaseInsensitive) == 0;
    };
    auto hideTag = [&](MarkdownSourceRange tag) {
        if (env.showsMarkers(tag)) {
            MarkdownTextAttributes a;
            a.setForeground(env.config->theme.marker);
            MarkdownEditorFragment::add(into, tag, Role::html, std::move(a), 30);
        } else {
            MarkdownEditorFragment::add(into, tag, Role::html, {}, 30, true);
        }
    };
    // Sibling lists to look through, deepest included; a worklist keeps nesting off the stack.
    std::vector<std::span<const MarkdownInline>>& levels = env.siblingLists;
    levels.assign(1, inlines.top());
    while (!levels.empty()) {
        const std::span<const MarkdownInline> siblings = levels.back();
        levels.pop_back();
        for (size_t i = 0; i < siblings.size(); ++i) {
            const MarkdownInline& node = siblings[i];
            if (node.hasChildren())
                levels.push_back(node.children());
            const auto* html = node.as<ik::Html>();
            if (!html)
                continue;
            const auto match = open.match(innerText(inlines.text(env.note, html->source)));
            if (!match.hasMatch())
                continue;
            size_t close = i + 1;
            while (close < siblings.size() && !isClose(siblings[close]))
                ++close;
            if (close == siblings.size())
                continue;
            const auto color = MarkdownTextColor::parse(match.capturedView(1));
            if (!color)
                continue;
            const MarkdownSourceRange inner = MarkdownSourceRange::fromBounds(node.range.upperBound(),
                                                                              siblings[close].range.location);
            MarkdownTextAttributes a;
            a.setForeground(*color);
            // Above the text nodes (0) and the block fonts (heading 5): it sets only the ink.
            MarkdownEditorFragment::add(into, inner, Role::body, std::move(a), 7);
            hideTag(node.range);
            hideTag(siblings[close].range);
        }
    }
}

}
