#pragma once

#include "MarkdownEngine/Directives/DirectiveRegistrySettings.h"
#include "MarkdownEngine/Directives/DirectiveSyntax.h"
#include "MarkdownEngine/Directives/MarkdownDirective.h"

#include <QHash>
#include <QString>
#include <map>
#include <memory>
#include <vector>

namespace velmo::markdown {

// The named directives of an editor, looked up by lower-cased name. Immutable once built; the
// fingerprint changes whenever the set of directives or the settings do, so caches keyed by it
// never outlive a change.
class DirectiveRegistry {
public:
    using DirectivePointer = std::shared_ptr<const MarkdownDirective>;

    // Throws DirectiveRegistryError on an empty, disabled or repeated name.
    DirectiveRegistry(std::vector<DirectivePointer> directives, DirectiveRegistrySettings settings = {});
    DirectiveRegistry() = default;

    // Font and colour; an empty registry with the fingerprint "empty" if that ever fails.
    [[nodiscard]] static DirectiveRegistry builtIn();

    [[nodiscard]] DirectivePointer directive(const QString& named) const;
    [[nodiscard]] DirectivePointer directive(const QString& named, DirectiveSyntax::Form form) const;

    const std::vector<DirectivePointer>& directives() const { return m_directives; }
    const DirectiveRegistrySettings& settings() const { return m_settings; }
    const QString& fingerprint() const { return m_fingerprint; }
    // The names the parser's options carry: every directive and every extra name.
    [[nodiscard]] QSet<QString> names() const;

private:
    std::vector<DirectivePointer> m_directives;
    QHash<QString, DirectivePointer> m_byName;
    std::map<DirectiveSyntax::Form, QHash<QString, DirectivePointer>> m_byForm;
    DirectiveRegistrySettings m_settings;
    QString m_fingerprint = QStringLiteral("empty");
};

}
