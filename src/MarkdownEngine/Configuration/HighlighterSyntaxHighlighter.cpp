#include "MarkdownEngine/Configuration/HighlighterSyntaxHighlighter.h"

#include "MarkdownEngine/Configuration/MarkdownEditorTheme.h"
#include "MarkdownEngine/Configuration/MarkdownFont.h"

namespace velmo::markdown {

namespace {

QColor toColor(highlighter::SyntaxColor c) { return QColor(c.red(), c.green(), c.blue(), c.alpha()); }

}

HighlighterSyntaxHighlighter::HighlighterSyntaxHighlighter(highlighter::SyntaxHighlighter engine, QColor background)
    : m_engine(std::move(engine)),
      m_background(background.isValid() ? background : MarkdownEditorTheme::defaultTheme().codeBackground)
{
}

MarkdownFontDescriptor HighlighterSyntaxHighlighter::codeFont() const
{
    for (const QString& family : m_engine.font.families) {
        if (MarkdownFont::isAvailable(family))
            return MarkdownFontDescriptor{family, float(m_engine.font.pointSize)};
    }
    return MarkdownFont::monospaced(m_engine.font.pointSize);
}

QColor HighlighterSyntaxHighlighter::backgroundColor() const { return m_background; }

std::optional<MarkdownStyledText> HighlighterSyntaxHighlighter::highlightedCode(
    const QString& source, const std::optional<QString>& language) const
{
    if (!language || language->isEmpty())
        return std::nullopt;
    const highlighter::SyntaxHighlighter::StyledCode code = m_engine.attributedCode(source, *language);
    // Offsets of the widened text back to the source's: a tab's columns all map to the tab.
    std::vector<int> toSource(size_t(code.text.size()) + 1, int(source.size()));
    {
        qsizetype out = 0;
        int column = 0;
        for (qsizetype i = 0; i < source.size() && out < code.text.size(); ++i) {
            const QChar c = source.at(i);
            if (c == u'\t' && m_engine.tabWidth > 0) {
                const int width = m_engine.tabWidth - column % m_engine.tabWidth;
                for (int k = 0; k < width && out < code.text.size(); ++k)
                    toSource[size_t(out++)] = int(i);
                column += width;
            } else {
                toSource[size_t(out++)] = int(i);
                column = (c == u'\n' || c == u'\r') ? 0 : column + 1;
            }
        }
    }
    MarkdownTextAttributes plain;
    plain.setForeground(toColor(code.plainColor));
    MarkdownStyledText styled(source, plain);
    std::vector<MarkdownTextAttributes> colors;
    colors.reserve(code.runs.size());
    std::vector<MarkdownStyledText::Addition> additions;
    additions.reserve(code.runs.size());
    for (const auto& run : code.runs) {
        const auto clamp = [&](qsizetype at) { return toSource[size_t(std::clamp<qsizetype>(at, 0, code.text.size()))]; };
        const int start = clamp(run.range.location);
        const int end = run.range.location + run.range.length >= code.text.size()
            ? int(source.size())
            : clamp(run.range.location + run.range.length);
        colors.emplace_back().setForeground(toColor(run.color));
        additions.push_back({MarkdownSourceRange::fromBounds(start, std::max(start, end)), nullptr});
    }
    for (size_t i = 0; i < additions.size(); ++i)
        additions[i].attributes = &colors[i];
    styled.add(additions);
    return styled;
}

}
