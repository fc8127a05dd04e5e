#include "CliCommand.h"

#include "MarkdownEngine/Core/MarkdownTextStatistics.h"

#include <QJsonObject>

namespace velmo::cli {

int runStats(const QStringList& arguments)
{
    if (arguments.size() != 1)
        return usageError(QStringLiteral("stats needs FILE or -"));
    const std::optional<QString> text = readInput(arguments.front());
    if (!text)
        return 1;
    using markdown::MarkdownTextStatistics;
    const MarkdownTextStatistics statistics = MarkdownTextStatistics::measure(*text, {0, int(text->size())});
    printJson(QJsonDocument(QJsonObject{{"words", statistics.words},
                                        {"characters", statistics.characters},
                                        {"cjkCharacters", statistics.cjkCharacters},
                                        {"totalWords", statistics.totalWords()},
                                        {"readingMinutes", statistics.readingMinutes()}}));
    return 0;
}

}
