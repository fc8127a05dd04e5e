#include "MarkdownEngine/Extensions/MarkdownExtensionRegistry.h"

#include "MarkdownEngine/Core/TextCharacters.h"
#include "MarkdownEngine/Extensions/MarkdownExtensions.h"

#include <QStringList>

namespace velmo::markdown {

MarkdownExtensionRegistry::MarkdownExtensionRegistry(std::vector<ExtensionPointer> extensions)
    : m_extensions(std::move(extensions))
{
    QStringList signature;
    for (const ExtensionPointer& extension : m_extensions) {
        const QString id = extension->identifier();
        m_byID.insert(id, extension);
        QString entry = id;
        if (const std::optional<InlineSyntax> syntax = extension->inlineSyntax()) {
            m_inlineByOpener.insert(syntax->open, extension);
            m_longestOpener = std::max(m_longestOpener, int(syntax->open.size()));
            entry += u'/' + syntax->open + u'/' + syntax->close;
        }
        if (const std::optional<BlockSyntax> syntax = extension->blockSyntax()) {
            m_blockByFence.insert(syntax->fence, extension);
            if (syntax->documentStartOnly && !m_documentStartFence)
                m_documentStartFence = syntax->fence;
            entry += u'/' + syntax->fence;
        }
        signature << entry;
    }
    m_fingerprint = signature.join(u';');
}

MarkdownExtensionRegistry MarkdownExtensionRegistry::builtIn()
{
    return MarkdownExtensionRegistry(MarkdownExtensions::builtIn());
}

MarkdownExtensionRegistry::ExtensionPointer MarkdownExtensionRegistry::inlineExtension(qsizetype at,
                                                                                       QStringView text) const
{
    if (at < 0 || at >= text.size())
        return nullptr;
    for (int length = std::min<qsizetype>(m_longestOpener, text.size() - at); length > 0; --length) {
        if (const ExtensionPointer found = m_inlineByOpener.value(text.mid(at, length).toString()))
            return found;
    }
    return nullptr;
}

MarkdownExtensionRegistry::ExtensionPointer MarkdownExtensionRegistry::blockExtension(QStringView fenceAt) const
{
    const QStringView line = chars::trimmedHorizontal(fenceAt);
    ExtensionPointer best;
    qsizetype bestLength = 0;
    for (auto it = m_blockByFence.cbegin(); it != m_blockByFence.cend(); ++it) {
        if (line.startsWith(it.key()) && it.key().size() > bestLength) {
            best = it.value();
            bestLength = it.key().size();
        }
    }
    return best;
}

}
