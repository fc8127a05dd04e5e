#include "CliCommand.h"

#include "MarkdownEngine/Parser/MarkdownTagScanner.h"

#include <QJsonArray>
#include <QJsonObject>

namespace velmo::cli {

int runTags(const QStringList& arguments)
{
    if (arguments.size() != 1)
        return usageError(QStringLiteral("tags needs FILE or -"));
    const std::optional<QString> text = readInput(arguments.front());
    if (!text)
        return 1;
    QJsonArray tags;
    for (const markdown::MarkdownTag& tag : markdown::MarkdownTagScanner::tags(*text)) {
        const bool body = tag.source == markdown::MarkdownTag::Source::body;
        tags.append(QJsonObject{{"name", tag.name},
                                {"range", QJsonArray{tag.range.location, tag.range.length}},
                                {"source", body ? "body" : "frontMatter"}});
    }
    printJson(QJsonDocument(tags));
    return 0;
}

}
