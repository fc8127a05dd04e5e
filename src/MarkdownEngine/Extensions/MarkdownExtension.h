#pragma once

#include "MarkdownEngine/Extensions/BlockSyntax.h"
#include "MarkdownEngine/Extensions/InlineSyntax.h"

#include <QFont>
#include <QString>
#include <QTextCharFormat>
#include <optional>

namespace velmo::markdown {

// A small syntax extension the styler and the exporter ask about by its identifier.
class MarkdownExtension {
public:
    virtual ~MarkdownExtension() = default;

    [[nodiscard]] virtual QString identifier() const = 0;
    [[nodiscard]] virtual std::optional<InlineSyntax> inlineSyntax() const { return std::nullopt; }
    [[nodiscard]] virtual std::optional<BlockSyntax> blockSyntax() const { return std::nullopt; }
    // Character attributes of the content, given the font around it.
    [[nodiscard]] virtual QTextCharFormat contentAttributes(const QFont& font) const
    {
        Q_UNUSED(font);
        return {};
    }
    // `text` is already HTML.
    [[nodiscard]] virtual QString html(const QString& text) const = 0;
};

}
