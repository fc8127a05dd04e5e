#include "MarkdownEngine/Configuration/SyntaxHighlighter.h"

#include "MarkdownEngine/Configuration/MarkdownEditorTheme.h"
#include "MarkdownEngine/Configuration/MarkdownFont.h"

namespace velmo::markdown {

QString SyntaxHighlighter::fingerprint() const
{
    const MarkdownFontDescriptor font = codeFont();
    return typeName() + u'|' + font.family() + u'|' + QString::number(font.pointSize) + u'|'
        + QString::number(qHash(backgroundColor().rgba()));
}

MarkdownFontDescriptor PlainTextSyntaxHighlighter::codeFont() const { return MarkdownFont::monospaced(12); }

QColor PlainTextSyntaxHighlighter::backgroundColor() const
{
    return MarkdownEditorTheme::defaultTheme().codeBackground;
}

}
