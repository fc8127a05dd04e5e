#include "MarkdownEngine/Directives/DirectiveUnit.h"

namespace velmo::markdown {

std::optional<DirectiveUnit> directiveUnitFromRawValue(QStringView raw)
{
    if (raw == u"pt" || raw == u"px")
        return DirectiveUnit::point;
    if (raw == u"em")
        return DirectiveUnit::em;
    if (raw == u"%")
        return DirectiveUnit::percent;
    return std::nullopt;
}

}
