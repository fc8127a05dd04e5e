#pragma once

#include "Highlighter/SyntaxHighlighter.h"
#include "MarkdownEngine/Configuration/SyntaxHighlighter.h"

namespace velmo::markdown {

// Fence colouring by the code scanner library. Runs come back in the source's own offsets
// (the library widens tabs; the mapping undoes that), so they can be laid over the fence.
class HighlighterSyntaxHighlighter final : public SyntaxHighlighter {
public:
    explicit HighlighterSyntaxHighlighter(highlighter::SyntaxHighlighter engine = {}, QColor background = {});

    MarkdownFontDescriptor codeFont() const override;
    QColor backgroundColor() const override;
    std::optional<MarkdownStyledText> highlightedCode(const QString& source,
                                                      const std::optional<QString>& language) const override;

protected:
    QString typeName() const override { return QStringLiteral("HighlighterSyntaxHighlighter"); }

private:
    highlighter::SyntaxHighlighter m_engine;
    QColor m_background;
};

}
