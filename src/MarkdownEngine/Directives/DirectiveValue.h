#pragma once

#include "MarkdownEngine/Directives/DirectiveUnit.h"

#include <QString>
#include <optional>
#include <variant>

namespace velmo::markdown {

namespace directive_value {
struct String { QString text; bool operator==(const String&) const = default; };
struct Number { double value = 0; bool operator==(const Number&) const = default; };
struct Length {
    double value = 0;
    DirectiveUnit unit = DirectiveUnit::none;
    bool operator==(const Length&) const = default;
};
struct Boolean { bool value = false; bool operator==(const Boolean&) const = default; };
struct Keyword { QString text; bool operator==(const Keyword&) const = default; };
}

struct DirectiveValue {
    std::variant<directive_value::String, directive_value::Number, directive_value::Length,
                 directive_value::Boolean, directive_value::Keyword>
        value;

    // "14pt", "1.2em", "120%", "12": suffixes px, pt, em, rem, % in that order; absent if the
    // number before the suffix does not parse.
    [[nodiscard]] static std::optional<DirectiveValue> parseLengthValue(QStringView text);
    // parseLengthValue, resolved against `base`.
    [[nodiscard]] static std::optional<double> parseLength(QStringView text, std::optional<double> base);
    // Points for a length (em and percent need a base); a plain number as it is.
    [[nodiscard]] std::optional<double> resolvedLength(std::optional<double> base) const;

    // Whole numbers without decimals, others in their shortest form.
    [[nodiscard]] static QString format(double value);
    // The value as a user would write it again.
    [[nodiscard]] QString displayText() const;

    bool operator==(const DirectiveValue&) const = default;
};

}
