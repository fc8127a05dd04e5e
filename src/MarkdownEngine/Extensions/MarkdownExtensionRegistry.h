#pragma once

#include "MarkdownEngine/Extensions/MarkdownExtension.h"

#include <QHash>
#include <QStringView>
#include <memory>
#include <optional>
#include <vector>

namespace velmo::markdown {

// The syntax extensions of an editor, indexed for the styler. Immutable once built; the
// fingerprint changes with the set of extensions.
class MarkdownExtensionRegistry {
public:
    using ExtensionPointer = std::shared_ptr<const MarkdownExtension>;

    explicit MarkdownExtensionRegistry(std::vector<ExtensionPointer> extensions = {});
    [[nodiscard]] static MarkdownExtensionRegistry builtIn();

    // The extension whose inline opener starts at `at` in text; the longest opener wins.
    [[nodiscard]] ExtensionPointer inlineExtension(qsizetype at, QStringView text) const;
    // The extension whose fence opens the (trimmed) line.
    [[nodiscard]] ExtensionPointer blockExtension(QStringView fenceAt) const;
    [[nodiscard]] ExtensionPointer extension(const QString& identifier) const { return m_byID.value(identifier); }
    [[nodiscard]] bool contains(const QString& identifier) const { return m_byID.contains(identifier); }

    const std::vector<ExtensionPointer>& extensions() const { return m_extensions; }
    const std::optional<QString>& documentStartFence() const { return m_documentStartFence; }
    const QString& fingerprint() const { return m_fingerprint; }

private:
    std::vector<ExtensionPointer> m_extensions;
    QHash<QString, ExtensionPointer> m_byID;
    QHash<QString, ExtensionPointer> m_inlineByOpener;
    QHash<QString, ExtensionPointer> m_blockByFence;
    std::optional<QString> m_documentStartFence;
    QString m_fingerprint;
    int m_longestOpener = 0;
};

}
