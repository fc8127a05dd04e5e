#pragma once

#include "MarkdownEngine/Configuration/MarkdownEditorServices.h"
#include "MarkdownEngine/Styling/MarkdownEditorAttachment.h"

#include <QColor>
#include <QHash>
#include <memory>
#include <optional>

namespace velmo::markdown {

// Makes the pictures drawn over formulas, diagrams and embedded images, through the services,
// and remembers them by source, mode and width. Main thread only: renderers touch drawing state.
class MarkdownEditorAttachmentFactory {
public:
    using AttachmentPointer = std::shared_ptr<const MarkdownEditorAttachment>;

    explicit MarkdownEditorAttachmentFactory(MarkdownEditorServices services = {});
    MarkdownEditorAttachmentFactory(const MarkdownEditorAttachmentFactory&) = delete;
    MarkdownEditorAttachmentFactory& operator=(const MarkdownEditorAttachmentFactory&) = delete;

    [[nodiscard]] AttachmentPointer blockLatex(const QString& source, double fontSize, const QColor& ink);
    [[nodiscard]] AttachmentPointer inlineLatex(const QString& source, double fontSize, const QColor& ink);
    [[nodiscard]] AttachmentPointer diagram(const QString& source, const QString& kind, double maximumWidth);
    [[nodiscard]] AttachmentPointer embeddedImage(const QString& name, const std::optional<QString>& id,
                                                  std::optional<double> requestedWidth, double maximumWidth);

    void invalidate() { m_cache.clear(); }
    int misses() const { return m_misses; }
    const MarkdownEditorServices& services() const { return m_services; }

    // The inline formula's padding; set from the configuration by whoever owns the factory.
    double inlineLatexVerticalPadding = 1.0;

private:
    AttachmentPointer latex(const QString& source, double fontSize, const QColor& ink, bool display);

    MarkdownEditorServices m_services;
    QHash<QString, AttachmentPointer> m_cache;
    int m_misses = 0;
};

}
