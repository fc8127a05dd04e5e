#pragma once

#include <QStringView>
#include <optional>

namespace velmo::markdown {

enum class DirectiveUnit : unsigned char { none, point, em, percent };

// "pt", "px", "em" and "%"; anything else is no unit.
[[nodiscard]] std::optional<DirectiveUnit> directiveUnitFromRawValue(QStringView raw);

}
