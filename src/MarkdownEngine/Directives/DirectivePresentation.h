#pragma once

#include <QColor>
#include <QString>
#include <variant>

namespace velmo::markdown {

// How a collapsed directive shows itself in the editor.
namespace directive_presentation {
struct Symbol { QString name; QColor tint; };
struct Text { QString string; };
struct Image { QString name; };
struct Literal {};
}

using DirectivePresentation = std::variant<directive_presentation::Symbol, directive_presentation::Text,
                                           directive_presentation::Image, directive_presentation::Literal>;

}
