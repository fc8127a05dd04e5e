#pragma once

#include "MarkdownEngine/Directives/MarkdownDirective.h"

#include <QColor>
#include <optional>

namespace velmo::markdown {

// `:::color value=#E5484D background=true`.
class ColorDirective final : public MarkdownDirective {
public:
    ColorDirective();

    const DirectiveSyntax& syntax() const override { return m_syntax; }
    DirectiveStyle style(const DirectiveArguments& arguments, const DirectiveContext& context) const override;
    QString html(const QString& body, const DirectiveArguments& arguments) const override;

    // "#rgb", "#rrggbb", "rgb(r, g, b)" or one of sixteen common names.
    [[nodiscard]] static std::optional<QColor> parseColor(QStringView value);

private:
    DirectiveSyntax m_syntax;
};

}
