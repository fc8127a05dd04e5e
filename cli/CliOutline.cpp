#include "CliCommand.h"

#include "MarkdownEngine/Core/MarkdownOutline.h"

#include <QJsonArray>
#include <QJsonObject>

namespace velmo::cli {

int runOutline(const QStringList& arguments)
{
    if (arguments.size() != 1)
        return usageError(QStringLiteral("outline needs FILE or -"));
    const std::optional<QString> text = readInput(arguments.front());
    if (!text)
        return 1;
    QJsonArray entries;
    for (const markdown::OutlineEntry& entry : markdown::MarkdownOutline::entries(*text))
        entries.append(QJsonObject{{"level", entry.level},
                                   {"lineStart", entry.lineStart},
                                   {"contentStart", entry.contentStart},
                                   {"title", entry.title}});
    printJson(QJsonDocument(entries));
    return 0;
}

}
