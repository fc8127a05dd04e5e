#pragma once

#include "MarkdownEngine/Configuration/MarkdownLinkResolution.h"

#include <QString>

namespace velmo::markdown {

class WikiLinkResolver {
public:
    virtual ~WikiLinkResolver() = default;
    [[nodiscard]] virtual MarkdownLinkResolution resolve(const QString& target) const = 0;
    // Changes whenever the answers may change.
    [[nodiscard]] virtual QString fingerprint() const = 0;
};

class NoOpWikiLinkResolver final : public WikiLinkResolver {
public:
    MarkdownLinkResolution resolve(const QString&) const override { return MarkdownLinkResolution::missing(); }
    QString fingerprint() const override { return QStringLiteral("none"); }
};

}
