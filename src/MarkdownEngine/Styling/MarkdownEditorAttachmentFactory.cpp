#include "MarkdownEngine/Styling/MarkdownEditorAttachmentFactory.h"

#include <QCoreApplication>
#include <QThread>

namespace velmo::markdown {

namespace {

void assertMainThread()
{
    Q_ASSERT(!QCoreApplication::instance() || QThread::currentThread() == QCoreApplication::instance()->thread());
}

}

MarkdownEditorAttachmentFactory::MarkdownEditorAttachmentFactory(MarkdownEditorServices services)
    : m_services(std::move(services))
{
}

MarkdownEditorAttachmentFactory::AttachmentPointer
MarkdownEditorAttachmentFactory::latex(const QString& source, double fontSize, const QColor& ink, bool display)
{
    const QString key = MarkdownEditorAttachment::cacheKey(
        source, (display ? QStringLiteral("display|") : QStringLiteral("inline|")) + ink.name(QColor::HexArgb), fontSize);
    if (auto found = m_cache.constFind(key); found != m_cache.constEnd())
        return *found;
    if (!m_services.latex)
        return nullptr;
    assertMainThread();
    ++m_misses;
    const auto result = m_services.latex->render(source, display ? LatexRenderMode::display : LatexRenderMode::inline_);
    if (!result)
        return nullptr;
    auto attachment = std::make_shared<MarkdownEditorAttachment>();
    attachment->image = result->image;
    attachment->size = result->size;
    if (display) {
        attachment->placement = {MarkdownEditorAttachment::Placement::Kind::block, 0};
        attachment->lineHeight = result->size.height();
        attachment->ownsItsRow = true;
    } else {
        attachment->placement = {MarkdownEditorAttachment::Placement::Kind::inline_, result->baselineOffset};
        attachment->lineHeight = std::max(fontSize * 1.2, result->size.height() + 2 * inlineLatexVerticalPadding);
    }
    m_cache.insert(key, attachment);
    return attachment;
}

MarkdownEditorAttachmentFactory::AttachmentPointer
MarkdownEditorAttachmentFactory::blockLatex(const QString& source, double fontSize, const QColor& ink)
{
    return latex(source, fontSize, ink, true);
}

MarkdownEditorAttachmentFactory::AttachmentPointer
MarkdownEditorAttachmentFactory::inlineLatex(const QString& source, double fontSize, const QColor& ink)
{
    return latex(source, fontSize, ink, false);
}

namespace {

MarkdownEditorAttachmentFactory::AttachmentPointer picture(const EmbeddedImageInfo& info, double width)
{
    auto attachment = std::make_shared<MarkdownEditorAttachment>();
    const QSizeF own = info.size.isValid() && !info.size.isEmpty() ? info.size : QSizeF(info.image.size());
    const double drawnWidth = std::max(1.0, width);
    const double scale = own.width() > 0 ? drawnWidth / own.width() : 1.0;
    attachment->image = info.image;
    attachment->size = QSizeF(drawnWidth, std::max(1.0, own.height() * scale));
    attachment->placement = {MarkdownEditorAttachment::Placement::Kind::block, 0};
    attachment->lineHeight = attachment->size.height();
    attachment->ownsItsRow = true;
    return attachment;
}

}

MarkdownEditorAttachmentFactory::AttachmentPointer
MarkdownEditorAttachmentFactory::diagram(const QString& source, const QString& kind, double maximumWidth)
{
    const QString key = MarkdownEditorAttachment::cacheKey(source, QStringLiteral("diagram|") + kind, maximumWidth);
    if (auto found = m_cache.constFind(key); found != m_cache.constEnd())
        return *found;
    if (!m_services.diagrams)
        return nullptr;
    assertMainThread();
    ++m_misses;
    const auto info = m_services.diagrams->render(source, kind);
    if (!info)
        return nullptr;
    const double own = info->size.isValid() && info->size.width() > 0 ? info->size.width() : info->image.width();
    auto attachment = picture(*info, maximumWidth > 0 ? std::min(own, maximumWidth) : own);
    m_cache.insert(key, attachment);
    return attachment;
}

MarkdownEditorAttachmentFactory::AttachmentPointer
MarkdownEditorAttachmentFactory::embeddedImage(const QString& name, const std::optional<QString>& id,
                                               std::optional<double> requestedWidth, double maximumWidth)
{
    const QString key = MarkdownEditorAttachment::cacheKey(name + u'|' + id.value_or(QString()), QStringLiteral("image"),
                                                           requestedWidth);
    if (auto found = m_cache.constFind(key); found != m_cache.constEnd())
        return *found;
    if (!m_services.images)
        return nullptr;
    assertMainThread();
    ++m_misses;
    const auto info = m_services.images->image({name, id, requestedWidth});
    if (!info || info->error)
        return nullptr;
    double width = requestedWidth.value_or(info->size.isValid() && info->size.width() > 0 ? info->size.width()
                                                                                          : info->image.width());
    if (maximumWidth > 0)
        width = std::min(width, maximumWidth);
    auto attachment = picture(*info, width);
    m_cache.insert(key, attachment);
    return attachment;
}

}
