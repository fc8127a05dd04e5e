#include "MarkdownEngine/Configuration/MarkdownEditorConfiguration.h"

#include "MarkdownEngine/Directives/DirectiveRegistry.h"
#include "MarkdownEngine/Extensions/MarkdownExtensions.h"

#include <typeinfo>

namespace velmo::markdown {

namespace {

template<typename T>
T entry(const std::vector<T>& list, int level, T empty)
{
    if (list.empty())
        return empty;
    return list[size_t(std::clamp(level - 1, 0, int(list.size()) - 1))];
}

}

double MarkdownEditorConfiguration::HeadingStyle::fontMultiplier(int level) const
{
    return entry(fontMultipliers, level, 1.0);
}

double MarkdownEditorConfiguration::HeadingStyle::topSpacing(int level) const
{
    return entry(topSpacingEm, level, 0.0);
}

std::optional<MarkdownEditorConfiguration::ThematicBreakStyle::Mark>
MarkdownEditorConfiguration::ThematicBreakStyle::mark(QChar character) const
{
    switch (character.unicode()) {
    case u'-': return dashMark;
    case u'*': return asteriskMark;
    case u'_': return underscoreMark;
    default: return std::nullopt;
    }
}

MarkdownEditorConfiguration::ParagraphStyle::Metrics
MarkdownEditorConfiguration::ParagraphStyle::metrics(double pointSize) const
{
    const double lineHeight = lineHeightFactor ? pointSize * *lineHeightFactor : pointSize + lineHeightExtraSpacing;
    return {lineHeight, pointSize * spacingFactor};
}

double MarkdownEditorConfiguration::OverscrollPolicy::bottomInset(double visibleHeight) const
{
    return std::min(maxPoints, std::max(minPoints, visibleHeight * percent));
}

std::vector<MarkdownEditorConfiguration::ExtensionPointer> MarkdownEditorConfiguration::defaultExtensions()
{
    return MarkdownExtensions::builtIn();
}

std::vector<MarkdownEditorConfiguration::DirectivePointer> MarkdownEditorConfiguration::defaultDirectives()
{
    return DirectiveRegistry::builtIn().directives();
}

MarkdownFontDescriptor MarkdownEditorConfiguration::bodyFont(std::optional<double> size) const
{
    const double points = size.value_or(bodySize);
    if (bodyFontName && !bodyFontName->isEmpty())
        return MarkdownFont::named(bodyFontName, points);
    return MarkdownFont::font(bodyFontDesign, points);
}

// The same count, and in each position the same dynamic type and the same identifier.
template<typename Pointer, typename Identify>
static bool sameSequence(const std::vector<Pointer>& a, const std::vector<Pointer>& b, Identify identify)
{
    if (a.size() != b.size())
        return false;
    for (size_t i = 0; i < a.size(); ++i) {
        if (!a[i] || !b[i]) {
            if (a[i] != b[i])
                return false;
            continue;
        }
        const auto& left = *a[i];
        const auto& right = *b[i];
        if (typeid(left) != typeid(right) || identify(left) != identify(right))
            return false;
    }
    return true;
}

bool MarkdownEditorConfiguration::sameExtensions(const std::vector<ExtensionPointer>& a,
                                                 const std::vector<ExtensionPointer>& b)
{
    return sameSequence(a, b, [](const auto& extension) { return extension.identifier(); });
}

bool MarkdownEditorConfiguration::sameDirectives(const std::vector<DirectivePointer>& a,
                                                 const std::vector<DirectivePointer>& b)
{
    return sameSequence(a, b, [](const auto& directive) { return directive.syntax().name; });
}

bool MarkdownEditorConfiguration::hasSameStyle(const MarkdownEditorConfiguration& o) const
{
    // In field order; the first difference decides.
    return theme == o.theme && bodySize == o.bodySize && bodyFontName == o.bodyFontName
        && bodyFontDesign == o.bodyFontDesign && markers == o.markers && codeBlock == o.codeBlock
        && inlineCode == o.inlineCode && table == o.table && lists == o.lists && taskCheckbox == o.taskCheckbox
        && headings == o.headings && imageEmbed == o.imageEmbed && blockLatex == o.blockLatex
        && inlineLatex == o.inlineLatex && blockquote == o.blockquote && thematicBreak == o.thematicBreak
        && link == o.link && paragraph == o.paragraph && overscroll == o.overscroll
        && dragSelection == o.dragSelection && safeAreaInsets == o.safeAreaInsets && scrollers == o.scrollers
        && textInsets == o.textInsets && readingWidth == o.readingWidth
        && rendersTablesDuringLiveResize == o.rendersTablesDuringLiveResize && spellChecking == o.spellChecking
        && heightBehavior == o.heightBehavior && rawSourceMode == o.rawSourceMode && focusMode == o.focusMode
        && typewriterMode == o.typewriterMode && inlinePlaceholder == o.inlinePlaceholder
        && sameExtensions(extensions, o.extensions) && cursorFollowsSpanInk == o.cursorFollowsSpanInk
        && sameDirectives(directives, o.directives) && directiveSettings == o.directiveSettings;
}

const QStringList& MarkdownEditorConfiguration::styleFieldNames()
{
    static const QStringList names{
        "theme", "bodySize", "bodyFontName", "bodyFontDesign", "markers", "codeBlock", "inlineCode", "table",
        "lists", "taskCheckbox", "headings", "imageEmbed", "blockLatex", "inlineLatex", "blockquote",
        "thematicBreak", "link", "paragraph", "overscroll", "dragSelection", "safeAreaInsets", "scrollers",
        "textInsets", "readingWidth", "rendersTablesDuringLiveResize", "spellChecking", "heightBehavior",
        "rawSourceMode", "focusMode", "typewriterMode", "inlinePlaceholder", "extensions",
        "cursorFollowsSpanInk", "directives", "directiveSettings",
    };
    return names;
}

}
