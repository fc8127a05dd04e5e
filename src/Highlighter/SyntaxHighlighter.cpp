#include "Highlighter/SyntaxHighlighter.h"

#include "Highlighter/CodeScanner.h"
#include "Highlighter/SyntaxLanguageCatalog.h"

#include <algorithm>

namespace velmo::highlighter {

SyntaxHighlighter::StyledCode SyntaxHighlighter::attributedCode(QStringView code,
                                                                QStringView languageName) const
{
    StyledCode styled;
    // Tabs are whitespace in every dialect, so scanning the widened text gives the same tokens
    // at offsets that need no mapping.
    styled.text = expanded(code, tabWidth);
    styled.plainColor = palette.plain;
    styled.font = font;
    const std::vector<SyntaxToken> tokens = CodeScanner::scanned(styled.text, language(languageName));
    styled.runs.reserve(tokens.size());
    for (const SyntaxToken& token : tokens)
        styled.runs.push_back({token.range, token.kind, color(token.kind)});
    return styled;
}

QString SyntaxHighlighter::expanded(QStringView code, int tabWidth)
{
    const qsizetype width = std::max(1, tabWidth);
    if (!code.contains(u'\t'))
        return code.toString();
    QString result;
    result.reserve(code.size() + code.count(u'\t') * (width - 1));
    qsizetype column = 0;
    for (QChar unit : code) {
        if (unit == u'\t') {
            const qsizetype spaces = width - column % width;
            result.append(QString(spaces, u' '));
            column += spaces;
            continue;
        }
        result.append(unit);
        const bool lineBreak = unit == u'\n' || unit == u'\r' || unit == QChar(0x2028)
            || unit == QChar(0x2029);
        column = lineBreak ? 0 : column + 1;
    }
    return result;
}

QString SyntaxHighlighter::displayName(QStringView languageName)
{
    return language(languageName).displayName;
}

const SyntaxLanguage& SyntaxHighlighter::language(QStringView languageName)
{
    return SyntaxLanguageCatalog::language(languageName);
}

}
