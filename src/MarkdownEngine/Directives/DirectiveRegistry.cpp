#include "MarkdownEngine/Directives/DirectiveRegistry.h"

#include "MarkdownEngine/Directives/ColorDirective.h"
#include "MarkdownEngine/Directives/DirectiveRegistryError.h"
#include "MarkdownEngine/Directives/FontDirective.h"

#include <QCryptographicHash>
#include <algorithm>

namespace velmo::markdown {

namespace {

QString sortedJoin(const QSet<QString>& names)
{
    QStringList list(names.cbegin(), names.cend());
    list.sort();
    return list.join(u',');
}

}

DirectiveRegistry::DirectiveRegistry(std::vector<DirectivePointer> directives, DirectiveRegistrySettings settings)
    : m_settings(std::move(settings))
{
    QStringList signature;
    for (DirectivePointer& directive : directives) {
        const QString name = directive->syntax().name.toLower();
        if (name.trimmed().isEmpty())
            throw DirectiveRegistryError(DirectiveRegistryError::Kind::emptyName);
        if (m_settings.disabledNames.contains(name))
            throw DirectiveRegistryError(DirectiveRegistryError::Kind::disabledName, name);
        if (m_byName.contains(name))
            throw DirectiveRegistryError(DirectiveRegistryError::Kind::duplicateName, name);
        m_byName.insert(name, directive);
        m_byForm[directive->syntax().form].insert(name, directive);
        signature << name + u'/' + QString::number(int(directive->syntax().form)) + u'/'
                + QString::number(directive->syntax().parameters.size());
        m_directives.push_back(std::move(directive));
    }
    signature.sort();
    signature << QString::number(m_settings.keepsUnknownDirectives) + QString::number(m_settings.validatesArguments)
              << sortedJoin(m_settings.disabledNames) << sortedJoin(m_settings.extraNames);
    m_fingerprint = QString::fromLatin1(
        QCryptographicHash::hash(signature.join(u'|').toUtf8(), QCryptographicHash::Sha256).toHex().left(16));
}

DirectiveRegistry DirectiveRegistry::builtIn()
{
    try {
        return DirectiveRegistry({std::make_shared<FontDirective>(), std::make_shared<ColorDirective>()},
                                 DirectiveRegistrySettings{true, true, {}, {}});
    } catch (const DirectiveRegistryError&) {
        return DirectiveRegistry();
    }
}

DirectiveRegistry::DirectivePointer DirectiveRegistry::directive(const QString& named) const
{
    return m_byName.value(named.toLower());
}

DirectiveRegistry::DirectivePointer DirectiveRegistry::directive(const QString& named, DirectiveSyntax::Form form) const
{
    const auto it = m_byForm.find(form);
    return it == m_byForm.end() ? nullptr : it->second.value(named.toLower());
}

QSet<QString> DirectiveRegistry::names() const
{
    QSet<QString> names = m_settings.extraNames;
    for (auto it = m_byName.cbegin(); it != m_byName.cend(); ++it)
        names.insert(it.key());
    return names;
}

}
