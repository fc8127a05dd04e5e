#pragma once

#include "MarkdownEngine/Directives/DirectiveArguments.h"
#include "MarkdownEngine/Directives/DirectiveContext.h"
#include "MarkdownEngine/Directives/DirectiveStyle.h"
#include "MarkdownEngine/Directives/DirectiveSyntax.h"

#include <QString>

namespace velmo::markdown {

// A named directive: its declared syntax, its look in the editor and its exported HTML.
class MarkdownDirective {
public:
    virtual ~MarkdownDirective() = default;

    [[nodiscard]] virtual const DirectiveSyntax& syntax() const = 0;
    [[nodiscard]] virtual DirectiveStyle style(const DirectiveArguments& arguments,
                                               const DirectiveContext& context) const = 0;
    // `body` is already HTML.
    [[nodiscard]] virtual QString html(const QString& body, const DirectiveArguments& arguments) const = 0;
};

}
