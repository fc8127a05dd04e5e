#pragma once

#include "MarkdownEngine/Directives/DirectiveValue.h"

#include <QString>
#include <QStringList>
#include <optional>
#include <variant>

namespace velmo::markdown {

struct DirectiveParameter {
    struct Keyword { QStringList allowed; bool operator==(const Keyword&) const = default; };
    struct String { bool operator==(const String&) const = default; };
    struct Number { bool operator==(const Number&) const = default; };
    struct Length { bool operator==(const Length&) const = default; };
    struct Boolean { bool operator==(const Boolean&) const = default; };
    using Kind = std::variant<Keyword, String, Number, Length, Boolean>;

    std::optional<QString> label; // absent for a positional parameter
    Kind kind;
    bool isRequired = false;
    std::optional<DirectiveValue> defaultValue;
    QString documentation;

    bool operator==(const DirectiveParameter&) const = default;
};

}
