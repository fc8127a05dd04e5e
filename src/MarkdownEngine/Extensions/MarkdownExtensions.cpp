#include "MarkdownEngine/Extensions/MarkdownExtensions.h"

namespace velmo::markdown {

std::optional<InlineSyntax> HighlightExtension::inlineSyntax() const
{
    return InlineSyntax{QStringLiteral("=="), QStringLiteral("=="), true, true, true, true};
}

QTextCharFormat HighlightExtension::contentAttributes(const QFont&) const
{
    QTextCharFormat format;
    format.setBackground(QColor(255, 214, 10, 90));
    return format;
}

QString HighlightExtension::html(const QString& text) const
{
    return QStringLiteral("<mark>") + text + QStringLiteral("</mark>");
}

std::optional<InlineSyntax> StrikethroughExtension::inlineSyntax() const
{
    return InlineSyntax{QStringLiteral("~~"), QStringLiteral("~~"), true, true, true, true};
}

QTextCharFormat StrikethroughExtension::contentAttributes(const QFont&) const
{
    QTextCharFormat format;
    format.setFontStrikeOut(true);
    return format;
}

QString StrikethroughExtension::html(const QString& text) const
{
    return QStringLiteral("<del>") + text + QStringLiteral("</del>");
}

QTextCharFormat ContainerExtension::contentAttributes(const QFont&) const
{
    QTextCharFormat format;
    if (m_backgroundColor.alpha() > 0)
        format.setBackground(m_backgroundColor);
    return format;
}

QString ContainerExtension::html(const QString& text) const
{
    return QStringLiteral("<div class=\"container\">") + text + QStringLiteral("</div>");
}

std::optional<InlineSyntax> FootnoteExtension::inlineSyntax() const
{
    return InlineSyntax{QStringLiteral("[^"), QStringLiteral("]"), false, true, false, false};
}

QString FootnoteExtension::html(const QString& text) const
{
    return QStringLiteral("<sup class=\"footnote-ref\">") + text + QStringLiteral("</sup>");
}

QString FrontMatterExtension::html(const QString&) const
{
    return QStringLiteral("<!-- front matter -->\n");
}

std::vector<std::shared_ptr<const MarkdownExtension>> MarkdownExtensions::builtIn()
{
    return {std::make_shared<HighlightExtension>(), std::make_shared<StrikethroughExtension>(),
            std::make_shared<ContainerExtension>(Qt::transparent), std::make_shared<FootnoteExtension>(),
            std::make_shared<FrontMatterExtension>()};
}

}
