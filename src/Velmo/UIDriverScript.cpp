#include "Velmo/UIDriverScript.h"

namespace velmo::app {

QString UIDriverCommand::unescaped(const QString& text)
{
    QString result;
    result.reserve(text.size());
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (text[i] == u'\\' && i + 1 < text.size() && (text[i + 1] == u'n' || text[i + 1] == u't')) {
            result += text[i + 1] == u'n' ? u'\n' : u'\t';
            ++i;
        } else {
            result += text[i];
        }
    }
    return result;
}

namespace UIDriverScript {

std::vector<UIDriverCommand> parse(const QString& script)
{
    std::vector<UIDriverCommand> commands;
    for (const QString& part : script.split(u';', Qt::SkipEmptyParts)) {
        const QString trimmed = part.trimmed();
        if (!trimmed.isEmpty())
            commands.push_back(command(trimmed));
    }
    return commands;
}

UIDriverCommand command(const QString& text)
{
    UIDriverCommand result;
    result.text = text;
    QStringList parts;
    qsizetype start = 0;
    while (parts.size() < 2) {
        const qsizetype colon = text.indexOf(u':', start);
        if (colon < 0)
            break;
        if (colon > start)
            parts << text.mid(start, colon - start);
        start = colon + 1;
    }
    if (start < text.size())
        parts << text.mid(start);
    if (parts.size() > 0)
        result.name = parts[0];
    if (parts.size() > 1)
        result.argument = parts[1];
    if (parts.size() > 2)
        result.third = parts[2];
    return result;
}

}

}
