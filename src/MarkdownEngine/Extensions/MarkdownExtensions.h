#pragma once

#include "MarkdownEngine/Extensions/MarkdownExtension.h"

#include <QColor>
#include <memory>
#include <vector>

namespace velmo::markdown {

// The built-in extensions. Their identifiers decide the matching switches of the parse options.
class HighlightExtension final : public MarkdownExtension {
public:
    QString identifier() const override { return QStringLiteral("highlight"); }
    std::optional<InlineSyntax> inlineSyntax() const override;
    QTextCharFormat contentAttributes(const QFont& font) const override;
    QString html(const QString& text) const override;
};

class StrikethroughExtension final : public MarkdownExtension {
public:
    QString identifier() const override { return QStringLiteral("strikethrough"); }
    std::optional<InlineSyntax> inlineSyntax() const override;
    QTextCharFormat contentAttributes(const QFont& font) const override;
    QString html(const QString& text) const override;
};

class ContainerExtension final : public MarkdownExtension {
public:
    explicit ContainerExtension(QColor backgroundColor = Qt::transparent) : m_backgroundColor(backgroundColor) {}
    QString identifier() const override { return QStringLiteral("container"); }
    std::optional<BlockSyntax> blockSyntax() const override { return BlockSyntax{QStringLiteral(":::"), false}; }
    QTextCharFormat contentAttributes(const QFont& font) const override;
    QString html(const QString& text) const override;

private:
    QColor m_backgroundColor;
};

class FootnoteExtension final : public MarkdownExtension {
public:
    QString identifier() const override { return QStringLiteral("footnotes"); }
    std::optional<InlineSyntax> inlineSyntax() const override;
    QString html(const QString& text) const override;
};

class FrontMatterExtension final : public MarkdownExtension {
public:
    QString identifier() const override { return QStringLiteral("frontMatter"); }
    std::optional<BlockSyntax> blockSyntax() const override { return BlockSyntax{QStringLiteral("---"), true}; }
    QString html(const QString& text) const override;
};

namespace MarkdownExtensions {
// Highlight, strikethrough, container (clear background), footnotes, front matter.
[[nodiscard]] std::vector<std::shared_ptr<const MarkdownExtension>> builtIn();
}

}
