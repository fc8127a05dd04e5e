#pragma once

#include "Highlighter/CodeScanner.h"
#include "Highlighter/SyntaxLanguageCatalog.h"

#include <QString>
#include <QStringList>

namespace velmo::highlighter::test {

// "kind:text" for each token.
inline QStringList tokenTexts(QStringView code, const SyntaxLanguage& language)
{
    QStringList parts;
    for (const SyntaxToken& token : CodeScanner::scanned(code, language)) {
        parts << QString(syntaxTokenKindName(token.kind)) + u':'
                + code.sliced(token.range.location, token.range.length).toString();
    }
    return parts;
}

// The token texts joined by single spaces: one comparison checks a whole scan.
inline QString dump(QStringView code, const SyntaxLanguage& language)
{
    return tokenTexts(code, language).join(u' ');
}

inline QString dump(QStringView code, QStringView languageName)
{
    return dump(code, SyntaxLanguageCatalog::language(languageName));
}

}
