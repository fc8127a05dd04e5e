#pragma once

#include "MarkdownEngine/Directives/MarkdownDirective.h"

namespace velmo::markdown {

// `:::font size=14pt family="New York" weight=bold style=italic monospaced=true`.
class FontDirective final : public MarkdownDirective {
public:
    FontDirective();

    const DirectiveSyntax& syntax() const override { return m_syntax; }
    DirectiveStyle style(const DirectiveArguments& arguments, const DirectiveContext& context) const override;
    QString html(const QString& body, const DirectiveArguments& arguments) const override;

private:
    DirectiveSyntax m_syntax;
};

}
