#include "MarkdownEngine/Directives/DirectiveArguments.h"

#include <QLocale>

namespace velmo::markdown {

namespace {

bool isBlank(QChar c)
{
    return c == u' ' || c == u'\t';
}

// A letter or `_`, then letters, digits, `_` and `-`.
bool isIdentifier(QStringView text)
{
    if (text.isEmpty() || !(text[0].isLetter() || text[0] == u'_'))
        return false;
    for (QChar c : text) {
        if (!(c.isLetterOrNumber() || c == u'_' || c == u'-'))
            return false;
    }
    return true;
}

QString expectedName(const DirectiveParameter::Kind& kind)
{
    return std::visit(
        [](const auto& k) -> QString {
            using K = std::decay_t<decltype(k)>;
            if constexpr (std::is_same_v<K, DirectiveParameter::Keyword>)
                return k.allowed.join(u'|');
            else if constexpr (std::is_same_v<K, DirectiveParameter::String>)
                return QStringLiteral("string");
            else if constexpr (std::is_same_v<K, DirectiveParameter::Number>)
                return QStringLiteral("number");
            else if constexpr (std::is_same_v<K, DirectiveParameter::Length>)
                return QStringLiteral("length");
            else
                return QStringLiteral("boolean");
        },
        kind);
}

std::optional<DirectiveValue> resolveValue(QStringView text, const DirectiveParameter& parameter)
{
    return std::visit(
        [text](const auto& k) -> std::optional<DirectiveValue> {
            using K = std::decay_t<decltype(k)>;
            if constexpr (std::is_same_v<K, DirectiveParameter::Keyword>) {
                const QString lowered = text.toString().toLower();
                if (k.allowed.contains(lowered))
                    return DirectiveValue{directive_value::Keyword{lowered}};
                return std::nullopt;
            } else if constexpr (std::is_same_v<K, DirectiveParameter::String>) {
                return DirectiveValue{directive_value::String{text.toString()}};
            } else if constexpr (std::is_same_v<K, DirectiveParameter::Number>) {
                bool ok = false;
                const double value = QLocale::c().toDouble(text, &ok);
                if (!ok || !std::isfinite(value))
                    return std::nullopt;
                return DirectiveValue{directive_value::Number{value}};
            } else if constexpr (std::is_same_v<K, DirectiveParameter::Length>) {
                return DirectiveValue::parseLengthValue(text);
            } else {
                if (text.compare(u"true", Qt::CaseInsensitive) == 0)
                    return DirectiveValue{directive_value::Boolean{true}};
                if (text.compare(u"false", Qt::CaseInsensitive) == 0)
                    return DirectiveValue{directive_value::Boolean{false}};
                return std::nullopt;
            }
        },
        parameter.kind);
}

}

DirectiveArguments DirectiveArguments::parse(QStringView source, const DirectiveSyntax& syntax)
{
    DirectiveArguments arguments;
    size_t nextPositional = 0;
    const auto positionalParameter = [&]() -> const DirectiveParameter* {
        while (nextPositional < syntax.parameters.size()) {
            const DirectiveParameter& parameter = syntax.parameters[nextPositional++];
            if (!parameter.label)
                return &parameter;
        }
        return nullptr;
    };
    const auto labeledParameter = [&](QStringView label) -> const DirectiveParameter* {
        for (const DirectiveParameter& parameter : syntax.parameters) {
            if (parameter.label && *parameter.label == label)
                return &parameter;
        }
        return nullptr;
    };

    const qsizetype size = source.size();
    qsizetype i = 0;
    while (true) {
        while (i < size && isBlank(source[i]))
            ++i;
        if (i >= size)
            break;
        const qsizetype tokenStart = i;
        qsizetype tokenEnd = i;
        while (tokenEnd < size && !isBlank(source[tokenEnd]))
            ++tokenEnd;
        QStringView label;
        qsizetype valueStart = tokenStart;
        for (qsizetype k = tokenStart; k < tokenEnd; ++k) {
            if (source[k] == u'=' || source[k] == u':') {
                const QStringView before = source.mid(tokenStart, k - tokenStart);
                if (isIdentifier(before)) {
                    label = before;
                    valueStart = k + 1;
                }
                break;
            }
        }
        qsizetype valueEnd;
        MarkdownSourceRange valueRange;
        if (valueStart < size && (source[valueStart] == u'"' || source[valueStart] == u'\'')) {
            const qsizetype close = source.indexOf(source[valueStart], valueStart + 1);
            valueEnd = close < 0 ? size : close;
            valueRange = MarkdownSourceRange::fromBounds(int(valueStart + 1), int(valueEnd));
            i = close < 0 ? size : close + 1;
        } else {
            valueEnd = valueStart;
            while (valueEnd < size && !isBlank(source[valueEnd]))
                ++valueEnd;
            valueRange = MarkdownSourceRange::fromBounds(int(valueStart), int(valueEnd));
            i = valueEnd;
        }
        const QStringView valueText = source.mid(valueRange.location, valueRange.length);
        const MarkdownSourceRange argumentRange = MarkdownSourceRange::fromBounds(int(tokenStart), int(i));

        const DirectiveParameter* parameter = label.isNull() ? positionalParameter() : labeledParameter(label);
        if (!parameter) {
            if (label.isNull())
                arguments.diagnostics.append({DirectiveDiagnostic::TooManyPositional{}, argumentRange});
            else
                arguments.diagnostics.append({DirectiveDiagnostic::UnknownLabel{label.toString()}, argumentRange});
            continue;
        }
        const std::optional<DirectiveValue> value = resolveValue(valueText, *parameter);
        if (!value) {
            arguments.diagnostics.append(
                {DirectiveDiagnostic::TypeMismatch{label.toString(), expectedName(parameter->kind)}, argumentRange});
            continue;
        }
        if (label.isNull()) {
            arguments.positional.append(*value);
        } else {
            const QString key = label.toString();
            arguments.labeled.insert(key, *value);
            if (!arguments.ranges.contains(key))
                arguments.ranges.insert(key, valueRange);
        }
    }

    // Defaults and required parameters; positional ones are matched by order.
    qsizetype positionalIndex = 0;
    for (const DirectiveParameter& parameter : syntax.parameters) {
        bool present;
        if (parameter.label) {
            present = arguments.labeled.contains(*parameter.label);
            if (!present && parameter.defaultValue)
                arguments.labeled.insert(*parameter.label, *parameter.defaultValue);
        } else {
            present = positionalIndex < arguments.positional.size();
            if (!present && parameter.defaultValue)
                arguments.positional.append(*parameter.defaultValue);
            ++positionalIndex;
        }
        if (!present && !parameter.defaultValue && parameter.isRequired)
            arguments.diagnostics.append(
                {DirectiveDiagnostic::MissingRequired{parameter.label.value_or(QString())}, {int(size), 0}});
    }
    return arguments;
}

std::optional<DirectiveValue> DirectiveArguments::operator[](const QString& label) const
{
    const auto it = labeled.constFind(label);
    if (it == labeled.cend())
        return std::nullopt;
    return *it;
}

std::optional<QString> DirectiveArguments::string(const QString& label) const
{
    const std::optional<DirectiveValue> value = (*this)[label];
    if (!value)
        return std::nullopt;
    if (const auto* s = std::get_if<directive_value::String>(&value->value))
        return s->text;
    if (const auto* k = std::get_if<directive_value::Keyword>(&value->value))
        return k->text;
    return value->displayText();
}

std::optional<bool> DirectiveArguments::boolean(const QString& label) const
{
    const std::optional<DirectiveValue> value = (*this)[label];
    if (const auto* b = value ? std::get_if<directive_value::Boolean>(&value->value) : nullptr)
        return b->value;
    return std::nullopt;
}

std::optional<double> DirectiveArguments::number(const QString& label) const
{
    const std::optional<DirectiveValue> value = (*this)[label];
    if (!value)
        return std::nullopt;
    if (const auto* n = std::get_if<directive_value::Number>(&value->value))
        return n->value;
    if (const auto* l = std::get_if<directive_value::Length>(&value->value))
        return l->value;
    return std::nullopt;
}

std::optional<double> DirectiveArguments::number() const
{
    if (positional.isEmpty())
        return std::nullopt;
    if (const auto* n = std::get_if<directive_value::Number>(&positional.front().value))
        return n->value;
    if (const auto* l = std::get_if<directive_value::Length>(&positional.front().value))
        return l->value;
    return std::nullopt;
}

std::optional<bool> DirectiveArguments::boolean() const
{
    if (positional.isEmpty())
        return std::nullopt;
    if (const auto* b = std::get_if<directive_value::Boolean>(&positional.front().value))
        return b->value;
    return std::nullopt;
}

std::optional<double> DirectiveArguments::length(std::optional<double> base) const
{
    if (const std::optional<DirectiveValue> size = (*this)[QStringLiteral("size")])
        return size->resolvedLength(base);
    for (const DirectiveValue& value : positional) {
        if (std::holds_alternative<directive_value::Length>(value.value))
            return value.resolvedLength(base);
    }
    return std::nullopt;
}

}
