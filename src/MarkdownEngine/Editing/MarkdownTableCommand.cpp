#include "MarkdownEngine/Editing/MarkdownTableCommand.h"

namespace velmo::markdown {

namespace {

constexpr const char* kindNames[] = {
    "alignColumn",        "insertRowAbove",    "insertRowBelow", "deleteRow",
    "insertColumnBefore", "insertColumnAfter", "deleteColumn",   "moveRowUp",
    "moveRowDown",        "moveColumnLeft",    "moveColumnRight",
};
constexpr const char* alignmentNames[] = {"none", "left", "center", "right"};
constexpr int kindCount = sizeof(kindNames) / sizeof(kindNames[0]);

}

std::vector<MarkdownTableCommand> MarkdownTableCommand::all()
{
    std::vector<MarkdownTableCommand> commands;
    for (int a = 0; a < 4; ++a)
        commands.push_back(alignColumn(static_cast<MarkdownTableAlignment>(a)));
    for (int k = 1; k < kindCount; ++k)
        commands.push_back({static_cast<Kind>(k), MarkdownTableAlignment::none});
    return commands;
}

QString MarkdownTableCommand::name() const
{
    QString result = QString::fromLatin1(kindNames[static_cast<int>(kind)]);
    if (kind == Kind::alignColumn)
        result += u':' + QString::fromLatin1(alignmentNames[static_cast<int>(alignment)]);
    return result;
}

std::optional<MarkdownTableCommand> MarkdownTableCommand::fromName(QStringView name)
{
    for (const MarkdownTableCommand& command : all()) {
        if (name == command.name())
            return command;
    }
    return std::nullopt;
}

}
