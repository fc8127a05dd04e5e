#pragma once

#include "MarkdownEngine/Core/MarkdownSourceRange.h"

#include <QString>
#include <variant>

namespace velmo::markdown {

struct DirectiveDiagnostic {
    struct UnknownLabel { QString name; bool operator==(const UnknownLabel&) const = default; };
    struct TypeMismatch {
        QString label; // empty for a positional value
        QString expected;
        bool operator==(const TypeMismatch&) const = default;
    };
    struct MissingRequired { QString label; bool operator==(const MissingRequired&) const = default; };
    struct TooManyPositional { bool operator==(const TooManyPositional&) const = default; };
    using Kind = std::variant<UnknownLabel, TypeMismatch, MissingRequired, TooManyPositional>;

    Kind kind;
    MarkdownSourceRange range; // relative to the argument text, not the document

    bool operator==(const DirectiveDiagnostic&) const = default;
};

}
