#include "CliCommand.h"

#include "MarkdownEngine/Core/MarkdownDocument.h"

#include <QJsonArray>
#include <QJsonObject>
#include <cstdio>

namespace velmo::cli {

using namespace velmo::markdown;

namespace {

QJsonArray rangeJson(MarkdownSourceRange range)
{
    return QJsonArray{range.location, range.length};
}

template<typename Ranges>
QJsonArray rangesJson(const Ranges& ranges)
{
    QJsonArray array;
    for (const MarkdownSourceRange& range : ranges)
        array.append(rangeJson(range));
    return array;
}

QJsonValue optionalString(const std::optional<QString>& value)
{
    return value ? QJsonValue(*value) : QJsonValue(QJsonValue::Null);
}

QJsonValue optionalString(const QString& value, bool present)
{
    return present ? QJsonValue(value) : QJsonValue(QJsonValue::Null);
}

QString character(char16_t c)
{
    return QString(QChar(c));
}

const char* alignmentName(MarkdownTableAlignment alignment)
{
    static constexpr const char* names[] = {"none", "left", "center", "right"};
    return names[int(alignment)];
}

QJsonValue valueJson(const DirectiveValue& value)
{
    return std::visit(
        [](const auto& v) -> QJsonValue {
            using V = std::decay_t<decltype(v)>;
            if constexpr (std::is_same_v<V, directive_value::String>)
                return QJsonObject{{"string", v.text}};
            else if constexpr (std::is_same_v<V, directive_value::Keyword>)
                return QJsonObject{{"keyword", v.text}};
            else if constexpr (std::is_same_v<V, directive_value::Number>)
                return QJsonObject{{"number", v.value}};
            else if constexpr (std::is_same_v<V, directive_value::Boolean>)
                return QJsonObject{{"boolean", v.value}};
            else {
                static constexpr const char* units[] = {"none", "point", "em", "percent"};
                return QJsonObject{{"length", v.value}, {"unit", units[int(v.unit)]}};
            }
        },
        value.value);
}

QJsonObject argumentsJson(const DirectiveArguments& arguments)
{
    QJsonObject labeled;
    for (auto it = arguments.labeled.cbegin(); it != arguments.labeled.cend(); ++it)
        labeled.insert(it.key(), valueJson(it.value()));
    QJsonArray positional;
    for (const DirectiveValue& value : arguments.positional)
        positional.append(valueJson(value));
    QJsonArray diagnostics;
    for (const DirectiveDiagnostic& diagnostic : arguments.diagnostics) {
        QJsonObject object = std::visit(
            [](const auto& kind) -> QJsonObject {
                using K = std::decay_t<decltype(kind)>;
                if constexpr (std::is_same_v<K, DirectiveDiagnostic::UnknownLabel>)
                    return {{"kind", "unknownLabel"}, {"name", kind.name}};
                else if constexpr (std::is_same_v<K, DirectiveDiagnostic::TypeMismatch>)
                    return {{"kind", "typeMismatch"}, {"label", kind.label}, {"expected", kind.expected}};
                else if constexpr (std::is_same_v<K, DirectiveDiagnostic::MissingRequired>)
                    return {{"kind", "missingRequired"}, {"label", kind.label}};
                else
                    return {{"kind", "tooManyPositional"}};
            },
            diagnostic.kind);
        object.insert("range", rangeJson(diagnostic.range));
        diagnostics.append(object);
    }
    return {{"labeled", labeled}, {"positional", positional}, {"diagnostics", diagnostics}};
}

QJsonObject markerJson(const MarkdownListMarker& marker)
{
    QJsonObject kind = std::visit(
        [](const auto& k) -> QJsonObject {
            if constexpr (std::is_same_v<std::decay_t<decltype(k)>, list_kind::Bullet>)
                return {{"kind", "bullet"}, {"character", character(k.character)}, {"number", QJsonValue::Null},
                        {"delimiter", QJsonValue::Null}};
            else
                return {{"kind", "ordered"}, {"character", QJsonValue::Null}, {"number", k.number},
                        {"delimiter", character(k.delimiter)}};
        },
        marker.kind);
    kind.insert("markerRange", rangeJson(marker.markerRange));
    kind.insert("contentStart", marker.contentStart);
    kind.insert("indent", marker.indent);
    return kind;
}

QJsonObject tableJson(const MarkdownTable& table)
{
    QJsonArray alignments;
    for (MarkdownTableAlignment alignment : table.alignments)
        alignments.append(alignmentName(alignment));
    QJsonArray rows;
    for (const auto& row : table.rows) {
        QJsonArray cells;
        for (const MarkdownTableCell& cell : row)
            cells.append(QJsonObject{{"range", rangeJson(cell.range)}, {"column", cell.column}, {"row", cell.row},
                                     {"isHeader", cell.isHeader}, {"alignment", alignmentName(cell.alignment)}});
        rows.append(cells);
    }
    return {{"range", rangeJson(table.range)}, {"alignments", alignments},
            {"separatorRange", rangeJson(table.separatorRange)}, {"rows", rows}, {"rowRanges", rangesJson(table.rowRanges)}};
}

void addKind(QJsonObject& object, const MarkdownBlockKind& kind)
{
    object.insert("kind", blockKindName(kind));
    std::visit(
        [&object](const auto& k) {
            using K = std::decay_t<decltype(k)>;
            if constexpr (std::is_same_v<K, block_kind::Heading>) {
                object.insert("level", k.level);
                object.insert("setext", k.setext);
            } else if constexpr (std::is_same_v<K, block_kind::ThematicBreak>) {
                object.insert("character", character(k.character));
            } else if constexpr (std::is_same_v<K, block_kind::Blockquote>) {
                object.insert("depth", k.depth);
            } else if constexpr (std::is_same_v<K, block_kind::ListItem>) {
                object.insert("marker", markerJson(k.marker));
            } else if constexpr (std::is_same_v<K, block_kind::Fence>) {
                object.insert("language", optionalString(k.language));
                object.insert("info", k.info);
                object.insert("closed", k.closed);
            } else if constexpr (std::is_same_v<K, block_kind::Table>) {
                object.insert("table", tableJson(k.table));
            } else if constexpr (std::is_same_v<K, block_kind::Directive>) {
                object.insert("name", k.name);
                object.insert("arguments", argumentsJson(k.arguments));
                object.insert("hasBody", k.hasBody);
            } else if constexpr (std::is_same_v<K, block_kind::FootnoteDefinition>) {
                object.insert("label", k.label);
            }
        },
        kind);
}

const char* inlineKindName(const MarkdownInlineKind& kind)
{
    static constexpr const char* names[] = {"escape", "code",      "emphasis",      "link",      "wikiLink",
                                            "image",  "latex",     "footnoteReference", "html",  "extensionSpan",
                                            "text",   "strikethrough", "highlight",  "softBreak", "hardBreak"};
    static_assert(std::size(names) == std::variant_size_v<MarkdownInlineKind>);
    return names[kind.index()];
}

void addInlineKind(QJsonObject& object, const MarkdownInlineKind& kind, const MarkdownInlineList& list,
                   QStringView text)
{
    object.insert("kind", inlineKindName(kind));
    const auto string = [&](MarkdownInlineText payload) { return list.string(text, payload); };
    std::visit(
        [&](const auto& k) {
            using K = std::decay_t<decltype(k)>;
            if constexpr (std::is_same_v<K, inline_kind::Escape>) {
                object.insert("character", character(k.character));
            } else if constexpr (std::is_same_v<K, inline_kind::Code>) {
                object.insert("language", optionalString(string(k.language), k.hasLanguage));
            } else if constexpr (std::is_same_v<K, inline_kind::Emphasis>) {
                static constexpr const char* names[] = {"italic", "bold", "boldItalic"};
                object.insert("emphasis", names[int(k.emphasis)]);
            } else if constexpr (std::is_same_v<K, inline_kind::Link>) {
                object.insert("destination", optionalString(string(k.destination), k.hasDestination));
                object.insert("title", optionalString(string(k.title), k.hasTitle));
            } else if constexpr (std::is_same_v<K, inline_kind::WikiLink>) {
                object.insert("target", string(k.target));
                object.insert("display", string(k.display));
            } else if constexpr (std::is_same_v<K, inline_kind::Image>) {
                object.insert("source", string(k.source));
                object.insert("alt", string(k.alt));
                object.insert("isEmbed", k.isEmbed);
            } else if constexpr (std::is_same_v<K, inline_kind::Latex>) {
                object.insert("source", string(k.source));
                object.insert("isBlock", k.isBlock);
            } else if constexpr (std::is_same_v<K, inline_kind::FootnoteReference>) {
                object.insert("label", string(k.label));
            } else if constexpr (std::is_same_v<K, inline_kind::Html>) {
                object.insert("source", string(k.source));
            } else if constexpr (std::is_same_v<K, inline_kind::ExtensionSpan>) {
                object.insert("name", string(k.name));
            }
        },
        kind);
}

// Inline trees can nest tens of thousands deep: they are written as they are walked, with an
// explicit stack, never through nested JSON values (whose writer recurses).
void writeInlines(QByteArray& out, const MarkdownInlineList& roots, QStringView text)
{
    struct Frame {
        const MarkdownInline* node;
        size_t next;
    };
    const auto fields = [&](const MarkdownInline& node) {
        QJsonObject object;
        addInlineKind(object, node.kind, roots, text);
        object.insert("range", rangeJson(node.range));
        object.insert("contentRange", rangeJson(node.contentRange));
        object.insert("markerRanges", rangesJson(node.markerRanges));
        QByteArray json = QJsonDocument(object).toJson(QJsonDocument::Compact);
        json.chop(1); // reopened to append the children
        return json;
    };
    out += '[';
    for (size_t i = 0; i < roots.size(); ++i) {
        if (i)
            out += ',';
        std::vector<Frame> stack{{&roots[i], 0}};
        out += fields(roots[i]) + ",\"children\":[";
        while (!stack.empty()) {
            Frame& top = stack.back();
            if (top.next < top.node->children().size()) {
                const MarkdownInline& child = top.node->children()[top.next];
                if (top.next++)
                    out += ',';
                out += fields(child) + ",\"children\":[";
                stack.push_back({&child, 0});
                continue;
            }
            out += "]}";
            stack.pop_back();
        }
    }
    out += ']';
}

void writeBlock(QByteArray& out, const MarkdownBlock& block, QStringView text)
{
    QJsonObject object;
    addKind(object, block.kind);
    object.insert("range", rangeJson(block.range));
    object.insert("contentRange", rangeJson(block.contentRange));
    object.insert("markerRanges", rangesJson(block.markerRanges));
    object.insert("quoteDepth", block.quoteDepth);
    object.insert("listDepth", block.listDepth);
    QByteArray json = QJsonDocument(object).toJson(QJsonDocument::Compact);
    json.chop(1);
    out += json + ",\"inlines\":";
    writeInlines(out, block.inlines, text);
    if (!block.children.empty()) {
        out += ",\"children\":[";
        for (size_t i = 0; i < block.children.size(); ++i) {
            if (i)
                out += ',';
            writeBlock(out, block.children[i], text);
        }
        out += ']';
    }
    out += '}';
}

struct Switch {
    const char* name;
    bool MarkdownParseOptions::*field;
};

constexpr Switch switches[] = {
    {"wiki-links", &MarkdownParseOptions::wikiLinks},     {"footnotes", &MarkdownParseOptions::footnotes},
    {"front-matter", &MarkdownParseOptions::frontMatter}, {"tables", &MarkdownParseOptions::tables},
    {"latex", &MarkdownParseOptions::latex},              {"highlight", &MarkdownParseOptions::highlight},
    {"strikethrough", &MarkdownParseOptions::strikethrough}, {"directives", &MarkdownParseOptions::directives},
    {"callouts", &MarkdownParseOptions::callouts},        {"task-checkboxes", &MarkdownParseOptions::taskCheckboxes},
    {"block-html", &MarkdownParseOptions::blockHtml},     {"smart-quotes", &MarkdownParseOptions::smartQuotes},
};

}

int runParse(const QStringList& arguments)
{
    MarkdownParseOptions options;
    QString path;
    for (qsizetype i = 0; i < arguments.size(); ++i) {
        const QString& argument = arguments[i];
        if (argument == QLatin1String("-") || !argument.startsWith(QLatin1String("--"))) {
            if (!path.isEmpty())
                return usageError(QStringLiteral("parse takes one FILE"));
            path = argument;
            continue;
        }
        if (argument == QLatin1String("--max-table-columns") || argument == QLatin1String("--directive")) {
            if (i + 1 >= arguments.size())
                return usageError(argument + QStringLiteral(" needs a value"));
            const QString value = arguments[++i];
            if (argument == QLatin1String("--directive")) {
                options.directiveNames.insert(value.toLower());
                continue;
            }
            bool ok = false;
            options.maxTableColumns = value.toInt(&ok);
            if (!ok)
                return usageError(QStringLiteral("--max-table-columns needs a number"));
            continue;
        }
        const bool negated = argument.startsWith(QLatin1String("--no-"));
        const QString name = argument.mid(negated ? 5 : 2);
        const Switch* found = nullptr;
        for (const Switch& candidate : switches) {
            if (name == QLatin1String(candidate.name))
                found = &candidate;
        }
        if (!found)
            return usageError(QStringLiteral("unknown option ") + argument);
        options.*(found->field) = !negated;
    }
    if (path.isEmpty())
        return usageError(QStringLiteral("parse needs FILE or -"));
    const std::optional<QString> text = readInput(path);
    if (!text)
        return 1;
    const MarkdownDocument document = MarkdownDocument::parse(*text, options);
    QJsonObject links, footnotes;
    for (auto it = document.linkDefinitions.cbegin(); it != document.linkDefinitions.cend(); ++it)
        links.insert(it.key(), it.value());
    for (auto it = document.footnoteDefinitions.cbegin(); it != document.footnoteDefinitions.cend(); ++it)
        footnotes.insert(it.key(), it.value());
    // Compact: indentation would grow with the nesting depth of the inlines.
    QByteArray out = "{\"blocks\":[";
    for (size_t i = 0; i < document.blocks.size(); ++i) {
        if (i)
            out += ',';
        writeBlock(out, document.blocks[i], document.text);
    }
    out += "],\"linkDefinitions\":" + QJsonDocument(links).toJson(QJsonDocument::Compact);
    out += ",\"footnoteDefinitions\":" + QJsonDocument(footnotes).toJson(QJsonDocument::Compact) + "}\n";
    std::fwrite(out.constData(), 1, size_t(out.size()), stdout);
    return 0;
}

}
