#include "MarkdownEngine/Directives/DirectiveRegistryError.h"

namespace velmo::markdown {

DirectiveRegistryError::DirectiveRegistryError(Kind kind, QString name)
    : m_kind(kind)
    , m_name(std::move(name))
    , m_what(description().toStdString())
{
}

QString DirectiveRegistryError::description() const
{
    switch (m_kind) {
    case Kind::emptyName:
        return QStringLiteral("A directive must have a name.");
    case Kind::disabledName:
        return QStringLiteral("The directive “") + m_name + QStringLiteral("” is disabled in this editor.");
    case Kind::duplicateName:
        return QStringLiteral("Two directives are registered as “") + m_name + QStringLiteral("”.");
    }
    return {};
}

}
