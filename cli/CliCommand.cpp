#include "CliCommand.h"

#include "Editor/Model/MarkdownFile.h"

#include <QFile>
#include <QUrl>
#include <cstdio>

namespace velmo::cli {

std::optional<QString> readInput(const QString& path)
{
    if (path == QLatin1String("-")) {
        QFile input;
        if (!input.open(stdin, QIODevice::ReadOnly))
            return std::nullopt;
        try {
            return editor::MarkdownFile::decode(input.readAll());
        } catch (const editor::MarkdownFileError& error) {
            std::fprintf(stderr, "%s\n", qPrintable(error.message()));
            return std::nullopt;
        }
    }
    try {
        return editor::MarkdownFile(QUrl::fromLocalFile(path)).read();
    } catch (const editor::MarkdownFileError& error) {
        std::fprintf(stderr, "%s\n", qPrintable(error.message()));
        return std::nullopt;
    }
}

void printJson(const QJsonDocument& json)
{
    const QByteArray bytes = json.toJson(QJsonDocument::Indented);
    std::fwrite(bytes.constData(), 1, bytes.size(), stdout);
}

int usageError(const QString& message)
{
    std::fprintf(stderr, "velmo-cli: %s\n", qPrintable(message));
    return 2;
}

}
