#include "MarkdownEngine/Styling/MarkdownFragmentDump.h"

#include "MarkdownEngine/Configuration/MarkdownEditorConfiguration.h"
#include "MarkdownEngine/Styling/MarkdownASTStyler.h"

#include <QJsonArray>

namespace velmo::markdown {

QString MarkdownFragmentDump::font(const MarkdownFontDescriptor& f)
{
    QString s = f.family() + u'@' + QString::number(f.pointSize, 'f', 1);
    if (f.isBold())
        s += QStringLiteral(" bold");
    if (f.italic)
        s += QStringLiteral(" italic");
    if (f.tabularDigits)
        s += QStringLiteral(" tnum");
    return s;
}

QString MarkdownFragmentDump::color(QRgb argb)
{
    return QStringLiteral("#%1%2%3%4")
        .arg(qRed(argb), 2, 16, QChar(u'0'))
        .arg(qGreen(argb), 2, 16, QChar(u'0'))
        .arg(qBlue(argb), 2, 16, QChar(u'0'))
        .arg(qAlpha(argb), 2, 16, QChar(u'0'));
}

QString MarkdownFragmentDump::configLine(const MarkdownEditorConfiguration& config)
{
    const MarkdownFontDescriptor body = config.bodyFont();
    return QStringLiteral("config body=") + font(body) + QStringLiteral(" h1=")
        + font(MarkdownASTStyler::headingFont(1, config, body)) + QStringLiteral(" bodyFontName=")
        + (config.bodyFontName && !config.bodyFontName->isEmpty() ? *config.bodyFontName : QStringLiteral("(none)"))
        + QStringLiteral(" bodySize=") + QString::number(config.bodySize, 'f', 1);
}

QString MarkdownFragmentDump::fragmentLine(const MarkdownEditorFragment& f, const QString& text)
{
    QString shown = text.mid(f.range.location, f.range.length);
    shown.replace(u'\n', QStringLiteral("\\n"));
    shown.replace(u'\t', QStringLiteral("\\t"));
    return QStringLiteral("  ") + rawValue(f.role) + QStringLiteral(" [") + QString::number(f.range.location) + u','
        + QString::number(f.range.length) + QStringLiteral("] p=") + QString::number(f.priority)
        + QStringLiteral(" hidden=") + (f.isHidden ? QStringLiteral("true") : QStringLiteral("false"))
        + QStringLiteral(" font=") + (f.attributes.has(MarkdownTextAttributes::Font) ? font(f.attributes.font) : QStringLiteral("-"))
        + QStringLiteral(" ‹") + shown + QStringLiteral("›");
}

QString MarkdownFragmentDump::section(const MarkdownEditorConfiguration& config,
                                      const MarkdownEditorFragmentStore& store, const QString& text)
{
    QString out = configLine(config) + u'\n';
    out += QStringLiteral("fragments=") + QString::number(store.fragments().size()) + u'\n';
    for (const MarkdownEditorFragment& f : store.fragments())
        out += fragmentLine(f, text) + u'\n';
    return out;
}

QJsonObject MarkdownFragmentDump::json(const MarkdownEditorFragment& f)
{
    QJsonObject o;
    o.insert(QStringLiteral("range"), QJsonArray{f.range.location, f.range.length});
    o.insert(QStringLiteral("role"), rawValue(f.role));
    o.insert(QStringLiteral("hidden"), f.isHidden);
    o.insert(QStringLiteral("priority"), f.priority);
    addAttributes(o, f.attributes);
    return o;
}

QJsonObject MarkdownFragmentDump::json(const MarkdownStyledText::Run& run)
{
    QJsonObject o;
    o.insert(QStringLiteral("range"), QJsonArray{run.range.location, run.range.length});
    addAttributes(o, run.attributes);
    return o;
}

void MarkdownFragmentDump::addAttributes(QJsonObject& o, const MarkdownTextAttributes& a)
{
    using A = MarkdownTextAttributes;
    if (a.has(A::Font)) {
        o.insert(QStringLiteral("font"), QJsonObject{{QStringLiteral("family"), a.font.family()},
                                                     {QStringLiteral("size"), double(a.font.pointSize)},
                                                     {QStringLiteral("bold"), a.font.isBold()},
                                                     {QStringLiteral("italic"), a.font.italic},
                                                     {QStringLiteral("weight"), a.font.weight},
                                                     {QStringLiteral("tabularDigits"), a.font.tabularDigits}});
    } else {
        o.insert(QStringLiteral("font"), QJsonValue::Null);
    }
    o.insert(QStringLiteral("foreground"), a.has(A::Foreground) ? QJsonValue(color(a.foreground)) : QJsonValue());
    QJsonObject attributes;
    if (a.has(A::Background)) attributes.insert(QStringLiteral("background"), color(a.background));
    if (a.has(A::Underline)) attributes.insert(QStringLiteral("underline"), true);
    if (a.has(A::UnderlineColor)) attributes.insert(QStringLiteral("underlineColor"), color(a.underlineColor));
    if (a.has(A::Strikethrough)) attributes.insert(QStringLiteral("strikethrough"), true);
    if (a.has(A::StrikethroughColor)) attributes.insert(QStringLiteral("strikethroughColor"), color(a.strikethroughColor));
    if (a.has(A::BaselineOffset)) attributes.insert(QStringLiteral("baselineOffset"), double(a.baselineOffset));
    if (a.has(A::Kern)) attributes.insert(QStringLiteral("kern"), double(a.kern));
    if (a.has(A::Paragraph)) {
        const MarkdownParagraphMetrics& p = a.paragraph();
        attributes.insert(QStringLiteral("paragraph"),
                          QJsonObject{{QStringLiteral("lineSpacing"), double(p.lineSpacing)},
                                      {QStringLiteral("minimumLineHeight"), double(p.minimumLineHeight)},
                                      {QStringLiteral("maximumLineHeight"), double(p.maximumLineHeight)},
                                      {QStringLiteral("paragraphSpacing"), double(p.paragraphSpacing)},
                                      {QStringLiteral("paragraphSpacingBefore"), double(p.paragraphSpacingBefore)},
                                      {QStringLiteral("firstLineHeadIndent"), double(p.firstLineHeadIndent)},
                                      {QStringLiteral("headIndent"), double(p.headIndent)},
                                      {QStringLiteral("tailIndent"), double(p.tailIndent)},
                                      {QStringLiteral("centered"),
                                       p.alignment == MarkdownParagraphMetrics::Alignment::center}});
    }
    if (a.has(A::Hidden)) attributes.insert(QStringLiteral("Velmo.hidden"), a.hidden);
    if (a.has(A::Role)) attributes.insert(QStringLiteral("Velmo.role"), rawValue(a.role));
    if (a.has(A::Depth)) attributes.insert(QStringLiteral("Velmo.depth"), a.depth);
    if (a.has(A::ListMarker)) attributes.insert(QStringLiteral("Velmo.listMarker"), a.listMarker());
    if (a.has(A::Attachment)) attributes.insert(QStringLiteral("Velmo.attachment"), true);
    if (a.has(A::TableGrid)) attributes.insert(QStringLiteral("Velmo.tableGrid"), a.tableGrid);
    if (a.has(A::FenceBox)) attributes.insert(QStringLiteral("Velmo.fenceBox"), a.fenceBox);
    if (a.has(A::Callout)) attributes.insert(QStringLiteral("Velmo.callout"), a.callout());
    if (a.has(A::TaskCheckbox)) attributes.insert(QStringLiteral("Velmo.taskCheckbox"), a.taskCheckbox);
    if (a.has(A::WikiLinkID)) attributes.insert(QStringLiteral("Velmo.wikiLinkID"), a.wikiLinkID());
    if (a.has(A::Link)) attributes.insert(QStringLiteral("VelmoLink"), a.link());
    o.insert(QStringLiteral("attributes"), attributes);
}

}
