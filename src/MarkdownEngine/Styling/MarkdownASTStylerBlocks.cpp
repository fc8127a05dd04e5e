#include "MarkdownEngine/Styling/MarkdownASTStyler.h"

#include "MarkdownEngine/Core/MarkdownCallout.h"
#include "MarkdownEngine/Core/TextCharacters.h"
#include "MarkdownEngine/Layout/MarkdownTableColumnLayout.h"
#include "MarkdownEngine/Styling/MarkdownInlineStyler.h"

namespace velmo::markdown {

// The block steps: one function per kind that needs more than a fragment or two. Every step
// starts from `base` (the body font, body ink, the block's paragraph style) and a block at
// quote depth one or more also gets the quote step.

namespace {

using Role = MarkdownEditorFragmentRole;


bool isQuoteMarker(const QString& text, MarkdownSourceRange r)
{
    return r.length > 0 && r.location < text.size() && text.at(r.location) == u'>';
}

// A directive's opener marker comes relative to its trimmed first line; every other marker
// is a document offset.
MarkdownSourceRange documentRange(const MarkdownBlock& block, const QString& text, int index, MarkdownSourceRange r)
{
    if (index != 0 || !block.is<block_kind::Directive>())
        return r;
    int p = block.range.location;
    const int end = std::min<int>(block.range.upperBound(), int(text.size()));
    while (p < end && (text.at(p) == u'>' || chars::isWhitespace(text.at(p).unicode())))
        ++p;
    return {r.location + p, r.length};
}

MarkdownFontDescriptor codeFontFor(const MarkdownEditorConfiguration& config, double size)
{
    if (config.codeBlock.fontName && MarkdownFont::isAvailable(*config.codeBlock.fontName))
        return MarkdownFontDescriptor{*config.codeBlock.fontName, float(size)};
    return MarkdownFont::monospaced(size);
}

// The parse reads a directive's arguments without knowing its parameters; read them again
// with the registered syntax, from the opener line: colons, name, arguments.
DirectiveArguments openerArguments(const MarkdownBlock& block, const QString& text, const DirectiveSyntax& syntax)
{
    const auto line = chars::lineAt(text, std::clamp<qsizetype>(block.range.location, 0, text.size()));
    QStringView rest = QStringView(text).mid(line.start, line.contentsEnd - line.start);
    while (!rest.isEmpty() && (rest.front() == u'>' || chars::isWhitespace(rest.front().unicode())))
        rest = rest.mid(1);
    while (!rest.isEmpty() && rest.front() == u':')
        rest = rest.mid(1);
    while (!rest.isEmpty() && rest.front() == u' ')
        rest = rest.mid(1);
    const qsizetype nameEnd = rest.indexOf(u' ');
    return DirectiveArguments::parse(nameEnd < 0 ? QStringView() : rest.mid(nameEnd), syntax);
}

MarkdownFontDescriptor fromQFont(const QFont& font)
{
    MarkdownFontDescriptor descriptor;
    descriptor.setFamily(font.families().isEmpty() ? font.family() : font.families().first());
    descriptor.pointSize = float(font.pointSizeF() > 0 ? font.pointSizeF() : 12.0);
    descriptor.weight = short(font.weight());
    descriptor.italic = font.italic();
    return descriptor;
}

}

QString MarkdownASTStyler::codeKey(const MarkdownBlock& block)
{
    const auto* fence = block.as<block_kind::Fence>();
    if (!fence)
        return {};
    return fence->language.value_or(QString()) + QChar(0x0001) + QString::number(block.contentRange.location) + u':'
        + QString::number(block.contentRange.length);
}

std::optional<QString> MarkdownASTStyler::diagramKind(const std::optional<QString>& language)
{
    if (language && language->compare(QLatin1String("mermaid"), Qt::CaseInsensitive) == 0)
        return QStringLiteral("mermaid");
    return std::nullopt;
}

double MarkdownASTStyler::blockPointSize(const MarkdownBlock& block, const MarkdownEditorConfiguration& config,
                                         double bodySize)
{
    if (const auto* heading = block.as<block_kind::Heading>())
        return bodySize * config.headings.fontMultiplier(heading->level);
    if (block.is<block_kind::Fence>())
        return bodySize * config.codeBlock.fontSizeScale;
    return bodySize;
}

MarkdownParagraphMetrics MarkdownASTStyler::baseParagraphStyle(const MarkdownEditorConfiguration& config, double pointSize)
{
    MarkdownParagraphMetrics p;
    const double extra = std::max(config.paragraph.lineHeightExtraSpacing, 0.0);
    if (config.paragraph.lineHeightFactor && *config.paragraph.lineHeightFactor > 0)
        p.minimumLineHeight = float(extra + pointSize * *config.paragraph.lineHeightFactor);
    else
        p.lineSpacing = float(extra);
    p.paragraphSpacing = float(pointSize * config.paragraph.spacingFactor);
    return p;
}

MarkdownParagraphMetrics MarkdownASTStyler::paragraphStyle(const MarkdownBlock& block,
                                                           const MarkdownEditorConfiguration& config,
                                                           const MarkdownFontDescriptor& bodyFont)
{
    const double font = bodyFont.pointSize;
    MarkdownParagraphMetrics p = baseParagraphStyle(config, blockPointSize(block, config, font));
    if (const auto* heading = block.as<block_kind::Heading>()) {
        p.paragraphSpacingBefore = float(config.headings.topSpacing(heading->level) * font);
        if (config.headings.bottomSpacingLines)
            p.paragraphSpacing = float(*config.headings.bottomSpacingLines * font * 0.5);
        p.lineSpacing = 0;
    } else if (block.is<block_kind::Blockquote>()) {
        p.lineSpacing += float(config.blockquote.extraLineHeight);
    } else if (block.is<block_kind::ListItem>()) {
        p.lineSpacing += float(config.lists.extraLineHeight);
        if (config.lists.itemSpacingLines)
            p.paragraphSpacing = float(*config.lists.itemSpacingLines * font);
    } else if (block.is<block_kind::Fence>()) {
        p.paragraphSpacingBefore = float(config.codeBlock.paragraphSpacing * 0.5);
        p.paragraphSpacing = float(config.codeBlock.paragraphSpacing);
        p.firstLineHeadIndent = p.headIndent = float(config.codeBlock.horizontalIndent);
        p.tailIndent = float(-config.codeBlock.horizontalIndent);
        p.lineSpacing = 0;
    } else if (block.is<block_kind::Table>()) {
        p.minimumLineHeight = float(font * 1.35 + config.table.cellVerticalPadding * 1.5);
        p.maximumLineHeight = 0;
        p.lineSpacing = 0;
        p.paragraphSpacingBefore = 0;
        p.paragraphSpacing = 0;
    } else if (block.is<block_kind::LatexBlock>()) {
        p.paragraphSpacingBefore = float(config.blockLatex.paragraphSpacingBefore);
        p.paragraphSpacing = float(config.blockLatex.paragraphSpacing);
        p.alignment = MarkdownParagraphMetrics::Alignment::center;
    }
    // A quote level indents by the callout padding, plain quotes too.
    const double q = config.blockquote.calloutPadding * std::max(block.quoteDepth, 0);
    const double t = q + config.lists.indentPerLevel * std::max(block.listDepth, 0);
    if (t > 0) {
        p.firstLineHeadIndent = float(t);
        p.headIndent = float(t + (block.listDepth > 0 ? config.lists.indentPerLevel * 0.6 : 0));
        p.tailIndent = float(-q);
    }
    return p;
}

MarkdownFontDescriptor MarkdownASTStyler::headingFont(int level, const MarkdownEditorConfiguration& config,
                                                const MarkdownFontDescriptor& bodyFont)
{
    const double size = bodyFont.pointSize * config.headings.fontMultiplier(level);
    const int weight = config.headings.isBold ? QFont::Bold : QFont::Normal;
    if (config.headings.fontName && MarkdownFont::isAvailable(*config.headings.fontName)) {
        MarkdownFontDescriptor descriptor{*config.headings.fontName, float(size)};
        return config.headings.isBold ? MarkdownFont::applying(MarkdownFont::Trait::bold, descriptor) : descriptor;
    }
    QString family = MarkdownFont::preferredSerif().value_or(MarkdownFont::systemFamily());
    if (family.isEmpty())
        family = QStringLiteral("Charter");
    if (!MarkdownFont::isAvailable(family))
        return MarkdownFont::system(size, weight);
    return MarkdownFont::applying(weight, MarkdownFontDescriptor{family, float(size)});
}

std::optional<MarkdownASTStyler::CheckboxHit> MarkdownASTStyler::taskCheckboxRange(const MarkdownBlock& block,
                                                                                   const QString& text)
{
    const int at = block.contentRange.location;
    if (block.contentRange.length < 3 || at < 0 || at + 3 > text.size())
        return std::nullopt;
    const QChar open = text.at(at), mark = text.at(at + 1), close = text.at(at + 2);
    if (open != u'[' || close != u']' || (mark != u' ' && mark != u'x' && mark != u'X'))
        return std::nullopt;
    return CheckboxHit{{at, 3}, mark != u' '};
}

std::optional<MarkdownSourceRange> MarkdownASTStyler::fenceInfoRange(const MarkdownBlock& block, const QString& text)
{
    const auto* fence = block.as<block_kind::Fence>();
    if (!fence || fence->info.isEmpty())
        return std::nullopt;
    const MarkdownSourceRange range = block.range.intersection({0, int(text.size())});
    const qsizetype found = QStringView(text).mid(range.location, range.length).indexOf(fence->info);
    if (found < 0)
        return std::nullopt;
    return MarkdownSourceRange{range.location + int(found), int(fence->info.size())};
}

void MarkdownASTStyler::markerPass(const MarkdownBlock& block, Role role, const QColor& color,
                                   const BlockContext& context, std::vector<MarkdownEditorFragment>& into)
{
    const QString& text = *context.text;
    const bool quotePass = role == Role::blockquoteMarker;
    for (int i = 0; i < block.markerRanges.size(); ++i) {
        const MarkdownSourceRange marker = documentRange(block, text, i, block.markerRanges[i]);
        // The ">" markers belong to the quote step; the block's own markers to its kind.
        if (marker.length < 1 || isQuoteMarker(text, marker) != quotePass)
            continue;
        if (context.showsMarkers(marker)) {
            MarkdownTextAttributes a;
            a.setForeground(color);
            MarkdownEditorFragment::add(into, marker, role, std::move(a), 30);
        } else {
            into.push_back(MarkdownEditorFragment::hidden(marker, role, *context.request->config));
        }
    }
}

void MarkdownASTStyler::style(const MarkdownBlock& block, const BlockContext& context,
                              std::vector<MarkdownEditorFragment>& into)
{
    const MarkdownEditorConfiguration& config = *context.request->config;
    const MarkdownEditorTheme& theme = config.theme;
    const MarkdownParagraphMetrics paragraph = paragraphStyle(block, config, context.bodyFont);
    MarkdownTextAttributes base = context.base(paragraph);
    const double bodySize = context.bodyFont.pointSize;

    if (const auto* heading = block.as<block_kind::Heading>()) {
        MarkdownTextAttributes a = base;
        a.setFont(headingFont(heading->level, config, context.bodyFont));
        MarkdownEditorFragment::add(into, block.range, Role::heading, std::move(a), 5);
        markerPass(block, Role::headingMarker, theme.headingMarker, context, into);
    } else if (block.is<block_kind::ThematicBreak>()) {
        MarkdownEditorFragment::add(into, block.range, Role::paragraph, base, 0);
        // The dashes hide on the active line too: only the drawn rule shows.
        MarkdownTextAttributes a;
        a.setFont(context.bodyFont);
        a.setForeground(clearColor);
        MarkdownEditorFragment::add(into, block.contentRange, Role::thematicBreak, std::move(a), 60, true);
    } else if (block.is<block_kind::Blockquote>()) {
        styleQuote(block, base, context, into);
        return;
    } else if (block.is<block_kind::ListItem>()) {
        styleListItem(block, base, paragraph, context, into);
    } else if (block.is<block_kind::Fence>()) {
        styleFence(block, base, context, into);
    } else if (block.is<block_kind::Table>()) {
        styleTable(block, base, context, into);
    } else if (block.is<block_kind::Directive>()) {
        styleDirective(block, base, context, into);
    } else if (block.is<block_kind::FootnoteDefinition>()) {
        MarkdownTextAttributes a = base;
        a.setFont(MarkdownFont::withSize(context.bodyFont, bodySize * 0.95));
        a.setForeground(theme.mutedText);
        MarkdownEditorFragment::add(into, block.range, Role::footnote, std::move(a), 4);
        markerPass(block, Role::footnoteMarker, theme.marker, context, into);
    } else if (block.is<block_kind::FrontMatter>()) {
        MarkdownTextAttributes a = base;
        a.setFont(MarkdownFont::monospaced(bodySize * 0.9));
        a.setForeground(theme.mutedText);
        MarkdownEditorFragment::add(into, block.range, Role::frontMatter, std::move(a), 0);
    } else if (block.is<block_kind::Paragraph>()) {
        MarkdownEditorFragment::add(into, block.range, Role::paragraph, base, 0);
    } else if (block.is<block_kind::LatexBlock>()) {
        styleBlockLatex(block, base, context, into);
    } else if (block.is<block_kind::HtmlBlock>()) {
        MarkdownTextAttributes a;
        a.setFont(MarkdownFont::monospaced(bodySize * 0.92));
        a.setForeground(theme.disabledText);
        MarkdownEditorFragment::add(into, block.range, Role::html, std::move(a), 0);
    }
    if (block.quoteDepth >= 1)
        styleQuote(block, base, context, into);
}

void MarkdownASTStyler::styleQuote(const MarkdownBlock& block, MarkdownTextAttributes base, const BlockContext& context,
                                   std::vector<MarkdownEditorFragment>& into)
{
    const MarkdownEditorConfiguration& config = *context.request->config;
    const QString& text = *context.text;
    base.setDepth(block.quoteDepth);
    // A list item's own paragraph style must survive the quote's.
    if (block.is<block_kind::ListItem>())
        base.remove(MarkdownTextAttributes::Paragraph);
    const MarkdownSourceRange content = block.contentRange.intersection({0, int(text.size())});
    const QStringView contentText = QStringView(text).mid(content.location, content.length);
    if (const auto callout = MarkdownCallout::detect(contentText)) {
        const QColor color = config.theme.color(*callout);
        base.setForeground(color);
        MarkdownTextAttributes a;
        a.setCallout(callout->marker());
        MarkdownEditorFragment::add(into, block.range, Role::blockquote, std::move(a), 50);
        const QString marker = QStringLiteral("[!") + callout->marker() + u']';
        const qsizetype found = contentText.indexOf(marker, 0, Qt::CaseInsensitive);
        if (found >= 0) {
            const MarkdownSourceRange range{content.location + int(found), int(marker.size())};
            if (context.showsMarkers(range)) {
                MarkdownTextAttributes m;
                m.setForeground(color);
                MarkdownEditorFragment::add(into, range, Role::blockquoteMarker, std::move(m), 51);
            } else {
                into.push_back(MarkdownEditorFragment::hidden(range, Role::blockquoteMarker, config));
            }
        }
    }
    MarkdownEditorFragment::add(into, block.range, Role::blockquote, base, 2);
    markerPass(block, Role::blockquoteMarker, config.theme.quoteBar, context, into);
}

void MarkdownASTStyler::styleListItem(const MarkdownBlock& block, MarkdownTextAttributes& base,
                                      const MarkdownParagraphMetrics& paragraph, const BlockContext& context,
                                      std::vector<MarkdownEditorFragment>& into)
{
    const MarkdownEditorConfiguration& config = *context.request->config;
    const QString& text = *context.text;
    const MarkdownListMarker& m = block.as<block_kind::ListItem>()->marker;
    const auto* ordered = std::get_if<list_kind::Ordered>(&m.kind);
    base.setDepth(block.listDepth);

    std::optional<CheckboxHit> box;
    if (context.request->document->options.taskCheckboxes)
        box = taskCheckboxRange(block, text);
    int prefixEnd = m.contentStart;
    if (box) {
        prefixEnd = box->range.upperBound();
        if (prefixEnd < text.size() && chars::isWhitespace(text.at(prefixEnd).unicode()))
            ++prefixEnd;
    }
    const int prefixLength = std::max(0, prefixEnd - m.markerRange.location);
    const bool revealed = context.showsMarkers(m.markerRange);
    const MarkdownFontDescriptor markerFont = ordered ? MarkdownFont::tabularDigits(context.bodyFont) : context.bodyFont;
    const double width = markerFont.width(text.mid(m.markerRange.location, prefixLength));
    const double gutter = std::max({context.listGutters.value(block.range.location, 0.0), config.lists.indentPerLevel, width});
    const double headIndent = gutter + config.blockquote.calloutPadding * std::max(block.quoteDepth, 0)
        + config.lists.indentPerLevel * std::max(block.listDepth, 0);
    MarkdownParagraphMetrics p = paragraph;
    p.headIndent = float(headIndent);
    // A shown marker hangs in the gutter; a hidden one leaves the text at its indent and the
    // bullet is drawn in the gutter.
    p.firstLineHeadIndent = float(headIndent - (revealed ? width : 0));
    base.setParagraph(p);
    // The item's priority is there so its paragraph style outlasts those of its inlines; its
    // font and ink would also outlast theirs and flatten every emphasis, link and code span in
    // the item, so the item carries only what is its own. The text gets the body font and ink
    // from its inline fragments, as in a paragraph.
    MarkdownTextAttributes item = base;
    item.remove(MarkdownTextAttributes::Font);
    item.remove(MarkdownTextAttributes::Foreground);
    MarkdownEditorFragment::add(into, block.range, Role::listItem, item, 2);

    if (m.markerRange.length < 1 || m.markerRange.upperBound() > text.size())
        return;
    auto collapsed = [](MarkdownSourceRange r) {
        MarkdownTextAttributes a;
        a.setForeground(clearColor);
        return MarkdownEditorFragment::make(r, Role::listMarker, std::move(a), 31, true);
    };
    int start = m.markerRange.location;
    while (start > block.range.location && (text.at(start - 1) == u' ' || text.at(start - 1) == u'\t'))
        --start;
    for (const MarkdownSourceRange& other : block.markerRanges) {
        if (other != m.markerRange && other.upperBound() <= m.markerRange.location)
            start = std::max(start, other.upperBound());
    }
    if (start < m.markerRange.location)
        into.push_back(collapsed(MarkdownSourceRange::fromBounds(start, m.markerRange.location)));
    const MarkdownSourceRange prefix{m.markerRange.location, prefixLength};
    if (revealed) {
        MarkdownTextAttributes a;
        a.setForeground(config.theme.marker);
        if (ordered)
            a.setFont(markerFont);
        MarkdownEditorFragment::add(into, prefix, Role::listMarker, std::move(a), 30);
        return;
    }
    into.push_back(collapsed(prefix));
    if (!box) {
        MarkdownTextAttributes a;
        a.setListMarker(ordered ? QString::number(ordered->number) + QChar(ordered->delimiter) : QStringLiteral("•"));
        a.setRole(Role::bullet);
        MarkdownEditorFragment::add(into, m.markerRange, Role::bullet, std::move(a), 25);
    } else {
        MarkdownEditorFragment::add(into, box->range, Role::taskCheckbox, {}, 31, true);
        MarkdownTextAttributes a;
        a.setTaskCheckbox(box->isChecked);
        a.setRole(Role::taskCheckbox);
        MarkdownEditorFragment::add(into, box->range, Role::taskCheckbox, std::move(a), 28);
    }
}

void MarkdownASTStyler::styleFence(const MarkdownBlock& block, const MarkdownTextAttributes& base,
                                   const BlockContext& context, std::vector<MarkdownEditorFragment>& into)
{
    const MarkdownEditorConfiguration& config = *context.request->config;
    const QString& text = *context.text;
    const auto& fence = *block.as<block_kind::Fence>();
    const MarkdownSourceRange content = block.contentRange.intersection({0, int(text.size())});

    if (const auto kind = diagramKind(fence.language); kind && context.attachments) {
        const QString source = chars::trimmed(QStringView(text).mid(content.location, content.length)).toString();
        auto attachment = source.isEmpty()
            ? nullptr
            : context.attachments->diagram(source, *kind, context.request->maximumEmbedWidth);
        if (attachment && !context.revealsFormula(block.range)) {
            MarkdownTextAttributes a;
            a.setRole(Role::imageEmbed);
            a.setAttachment(std::move(attachment));
            MarkdownEditorFragment::add(into, block.range, Role::imageEmbed, std::move(a), 60);
            MarkdownTextAttributes h;
            h.setFont(MarkdownFont::withSize(context.bodyFont, 0.1));
            h.setForeground(clearColor);
            MarkdownEditorFragment::add(into, block.range, Role::fence, std::move(h), 61, true);
            return;
        }
    }

    const MarkdownFontDescriptor codeFont = codeFontFor(config, context.bodyFont.pointSize * config.codeBlock.fontSizeScale);
    MarkdownTextAttributes code = base;
    code.setFont(codeFont);
    code.setForeground(config.theme.bodyText);
    MarkdownTextAttributes box;
    box.setRole(Role::fence);
    box.setFenceBox();
    MarkdownEditorFragment::add(into, block.range, Role::fence, std::move(box), 3);
    MarkdownEditorFragment::add(into, block.contentRange, Role::fence, code, 5);

    if (context.request->highlightedCode) {
        const auto found = context.request->highlightedCode->constFind(codeKey(block));
        if (found != context.request->highlightedCode->constEnd()) {
            for (const MarkdownStyledText::Run& run : found->runs()) {
                const MarkdownSourceRange moved{run.range.location + block.contentRange.location, run.range.length};
                const MarkdownSourceRange clipped = moved.intersection(block.contentRange);
                if (clipped.length < 1)
                    continue;
                MarkdownTextAttributes a = run.attributes;
                if (!a.has(MarkdownTextAttributes::Font))
                    a.setFont(codeFont);
                a.setRole(Role::fence);
                MarkdownEditorFragment::add(into, clipped, Role::fence, std::move(a), 6);
            }
        }
    }
    markerPass(block, Role::fenceMarker, config.theme.marker, context, into);
    if (const auto info = fenceInfoRange(block, text)) {
        MarkdownTextAttributes a;
        a.setForeground(config.theme.mutedText);
        a.setFont(MarkdownFont::monospaced(codeFont.pointSize * 0.95));
        MarkdownEditorFragment::add(into, *info, Role::fenceInfo, std::move(a), 0);
    }
}

void MarkdownASTStyler::styleTable(const MarkdownBlock& block, const MarkdownTextAttributes& tableBase,
                                   const BlockContext& context, std::vector<MarkdownEditorFragment>& into)
{
    const MarkdownEditorConfiguration& config = *context.request->config;
    const QString& text = *context.text;
    const MarkdownTable& t = block.as<block_kind::Table>()->table;
    const bool grid = MarkdownTableColumnLayout::isWellFormed(t, text);
    MarkdownTextAttributes base = tableBase;
    base.setFont(context.bodyFont);
    if (grid)
        base.setTableGrid();
    MarkdownEditorFragment::add(into, block.range, Role::table, base, 3);

    const MarkdownFontDescriptor headerFont = MarkdownFont::applying(MarkdownFont::Trait::bold, context.bodyFont);
    for (const auto& row : t.rows) {
        for (const MarkdownTableCell& cell : row) {
            if (cell.range.length <= 0)
                continue;
            MarkdownTextAttributes a;
            a.setRole(Role::tableCell);
            a.setDepth(cell.column);
            if (cell.isHeader)
                a.setFont(headerFont);
            MarkdownEditorFragment::add(into, cell.range, Role::tableCell, std::move(a), 8);
        }
    }
    if (grid) {
        // The pipes keep their width but lose their ink; the grid is drawn instead.
        for (size_t r = 0; r < t.rowRanges.size(); ++r) {
            if (r == 1)
                continue;
            for (int pipe : MarkdownTableColumnLayout::unescapedPipes(t.rowRanges[r], text)) {
                MarkdownTextAttributes a;
                a.setForeground(clearColor);
                a.setFont(context.bodyFont);
                MarkdownEditorFragment::add(into, {pipe, 1}, Role::table, std::move(a), 9);
            }
        }
    }
    if (!context.showsMarkers(t.separatorRange)) {
        into.push_back(MarkdownEditorFragment::hidden(t.separatorRange, Role::tableRule, config));
        // The separator row flattens to a line one point high.
        const auto line = chars::lineAt(text, std::clamp<qsizetype>(t.separatorRange.location, 0, text.size()));
        MarkdownParagraphMetrics p = base.paragraph();
        p.minimumLineHeight = 0;
        p.maximumLineHeight = 1.0f;
        p.lineSpacing = 0;
        p.paragraphSpacing = 0;
        p.paragraphSpacingBefore = 0;
        MarkdownTextAttributes a;
        a.setParagraph(p);
        a.setRole(Role::tableRule);
        MarkdownEditorFragment::add(into, MarkdownSourceRange::fromBounds(int(line.start), int(line.end)), Role::tableRule,
                            std::move(a), 12);
    } else {
        MarkdownTextAttributes a;
        a.setForeground(config.theme.mutedText);
        a.setFont(MarkdownFont::monospaced(context.bodyFont.pointSize * 0.85));
        MarkdownEditorFragment::add(into, t.separatorRange, Role::tableAlignment, std::move(a), 12);
    }
}

void MarkdownASTStyler::styleDirective(const MarkdownBlock& block, const MarkdownTextAttributes& directiveBase,
                                       const BlockContext& context, std::vector<MarkdownEditorFragment>& into)
{
    const MarkdownEditorConfiguration& config = *context.request->config;
    const auto& directive = *block.as<block_kind::Directive>();
    const QString& text = *context.text;
    MarkdownTextAttributes base = directiveBase;
    base.setForeground(config.theme.mutedText);
    MarkdownEditorFragment::add(into, block.range, Role::directive, base, 0);

    const auto registered = context.directives ? context.directives->directive(directive.name) : nullptr;
    if (registered && (registered->syntax().parsesBody || directive.hasBody)) {
        DirectiveContext directiveContext;
        directiveContext.inheritedFont = context.bodyFont.toQFont();
        directiveContext.codeFontFamily = MarkdownFont::systemMonospaced();
        directiveContext.isActive = context.showsMarkers(block.range);
        directiveContext.marker = registered->syntax().marker.value_or(u':');
        const DirectiveStyle rendered = registered->style(openerArguments(block, text, registered->syntax()),
                                                          directiveContext);
        if (!rendered.attributes.properties().isEmpty()) {
            MarkdownEditorFragment::add(into, block.contentRange, Role::directiveBody,
                                MarkdownInlineStyler::attributes(rendered.attributes, context.bodyFont), 8);
        }
        if (!rendered.font.isIdentity()) {
            const MarkdownFontDescriptor transformed = fromQFont(rendered.font.apply(directiveContext.inheritedFont));
            if (!(transformed == context.bodyFont)) {
                MarkdownTextAttributes a;
                a.setFont(transformed);
                MarkdownEditorFragment::add(into, block.contentRange, Role::directiveBody, std::move(a), 9);
            }
        }
    }
    markerPass(block, Role::directiveMarker, config.theme.marker, context, into);
}

void MarkdownASTStyler::styleBlockLatex(const MarkdownBlock& block, const MarkdownTextAttributes& base,
                                        const BlockContext& context, std::vector<MarkdownEditorFragment>& into)
{
    const MarkdownEditorConfiguration& config = *context.request->config;
    const QString& text = *context.text;
    const MarkdownSourceRange content = block.contentRange.intersection({0, int(text.size())});
    const QColor ink = config.theme.latexInk();
    const QString source = chars::trimmed(QStringView(text).mid(content.location, content.length)).toString();
    auto attachment = context.attachments ? context.attachments->blockLatex(source, context.bodyFont.pointSize, ink)
                                          : nullptr;
    if (attachment && !context.revealsFormula(block.range)) {
        MarkdownTextAttributes a;
        a.setRole(Role::latex);
        a.setAttachment(std::move(attachment));
        MarkdownEditorFragment::add(into, block.range, Role::latex, std::move(a), 60);
        MarkdownTextAttributes h;
        h.setFont(MarkdownFont::withSize(context.bodyFont, 0.1));
        h.setForeground(clearColor);
        MarkdownEditorFragment::add(into, block.range, Role::latex, std::move(h), 61, true);
        return;
    }
    MarkdownTextAttributes a = base;
    a.setFont(MarkdownFont::monospaced(context.bodyFont.pointSize));
    a.setForeground(ink);
    MarkdownEditorFragment::add(into, block.range, Role::latex, std::move(a), 0);
}

}
