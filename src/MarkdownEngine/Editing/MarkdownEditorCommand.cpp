#include "MarkdownEngine/Editing/MarkdownEditorCommand.h"

#include <QStringList>

namespace velmo::markdown::editor_command {

namespace {

constexpr const char* simpleNames[] = {
    "bold",          "italic",          "strikethrough",      "highlight", "inlineCode",
    "inlineLatex",   "blockLatex",      "blockquote",         "bulletList", "orderedList",
    "taskList",      "indent",          "outdent",            "link",       "wikiLink",
    "image",         "codeBlock",       "thematicBreak",      "clearFormatting",
    "toggleTaskCheckbox", "tableEdit",  "copyTable",          "footnote",   "renumberFootnotes",
    "moveLinesUp",   "moveLinesDown",
};

// A callout kind by its raw value or marker, case ignored.
std::optional<MarkdownCallout> calloutNamed(const QString& name)
{
    for (int k = MarkdownCallout::note; k <= MarkdownCallout::caution; ++k) {
        const MarkdownCallout kind(static_cast<MarkdownCallout::Kind>(k));
        if (name.compare(kind.rawValue(), Qt::CaseInsensitive) == 0)
            return kind;
    }
    return std::nullopt;
}

std::optional<int> integer(const QString& text)
{
    bool ok = false;
    const int value = text.trimmed().toInt(&ok);
    return ok ? std::optional<int>(value) : std::nullopt;
}

}

QString name(const MarkdownEditorCommand& command)
{
    struct Visitor {
        QString operator()(const Heading&) const { return QStringLiteral("heading"); }
        QString operator()(const TextColor&) const { return QStringLiteral("textColor"); }
        QString operator()(const Table&) const { return QStringLiteral("table"); }
        QString operator()(const TableCommand&) const { return QStringLiteral("tableCommand"); }
        QString operator()(const FrontMatter&) const { return QStringLiteral("frontMatter"); }
        QString operator()(const Callout&) const { return QStringLiteral("callout"); }
        QString operator()(const InsertText&) const { return QStringLiteral("insertText"); }
        QString operator()(Simple simple) const { return QString::fromLatin1(simpleNames[static_cast<int>(simple)]); }
    };
    return std::visit(Visitor{}, command);
}

std::optional<MarkdownEditorCommand> fromName(QStringView name, const QString& argument)
{
    if (name == u"heading") {
        const auto level = integer(argument);
        return level ? std::optional<MarkdownEditorCommand>(Heading{*level}) : std::nullopt;
    }
    if (name == u"textColor")
        return TextColor{argument.isEmpty() ? std::nullopt : std::optional<QString>(argument)};
    if (name == u"table") {
        const QStringList parts = argument.split(u'x');
        if (parts.size() != 2)
            return std::nullopt;
        const auto rows = integer(parts[0]);
        const auto columns = integer(parts[1]);
        if (!rows || !columns)
            return std::nullopt;
        return Table{*rows, *columns};
    }
    if (name == u"tableCommand") {
        const auto command = MarkdownTableCommand::fromName(argument);
        return command ? std::optional<MarkdownEditorCommand>(TableCommand{*command}) : std::nullopt;
    }
    if (name == u"frontMatter")
        return FrontMatter{argument};
    if (name == u"callout") {
        const auto kind = calloutNamed(argument.isEmpty() ? QStringLiteral("note") : argument);
        return kind ? std::optional<MarkdownEditorCommand>(Callout{*kind}) : std::nullopt;
    }
    if (name == u"insertText")
        return InsertText{argument};
    for (int i = 0; i < int(sizeof(simpleNames) / sizeof(simpleNames[0])); ++i) {
        if (name == QLatin1String(simpleNames[i]))
            return static_cast<Simple>(i);
    }
    return std::nullopt;
}

}
