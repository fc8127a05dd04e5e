#include "CliCommand.h"

#include "Highlighter/CodeScanner.h"
#include "Highlighter/SyntaxLanguageCatalog.h"

#include <QJsonArray>
#include <QJsonObject>

namespace velmo::cli {

using namespace velmo::highlighter;

int runHighlight(const QStringList& arguments)
{
    if (arguments.size() != 2)
        return usageError(QStringLiteral("usage: highlight LANGUAGE FILE|-"));
    const std::optional<QString> code = readInput(arguments[1]);
    if (!code)
        return 1;
    // Resolved as a fence's info string would be: aliases work, anything unknown is plain.
    const SyntaxLanguage& language = SyntaxLanguageCatalog::language(arguments[0]);
    QJsonArray tokens;
    for (const SyntaxToken& token : CodeScanner::scanned(*code, language)) {
        tokens.append(QJsonObject{
            {QStringLiteral("range"), QJsonArray{double(token.range.location), double(token.range.length)}},
            {QStringLiteral("kind"), QString(syntaxTokenKindName(token.kind))},
            {QStringLiteral("text"), code->sliced(token.range.location, token.range.length)},
        });
    }
    printJson(QJsonDocument(QJsonObject{
        {QStringLiteral("language"), language.id},
        {QStringLiteral("tokens"), tokens},
    }));
    return 0;
}

}
