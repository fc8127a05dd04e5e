#include "MarkdownEngine/Styling/MarkdownTextAttributes.h"

namespace velmo::markdown {

namespace {

constexpr std::uint32_t extraKeys = MarkdownTextAttributes::ListMarker | MarkdownTextAttributes::Attachment
    | MarkdownTextAttributes::Callout | MarkdownTextAttributes::WikiLinkID | MarkdownTextAttributes::Link;

}

const MarkdownParagraphMetrics& MarkdownTextAttributes::paragraph() const
{
    static const MarkdownParagraphMetrics none;
    return m_paragraph ? m_paragraph->metrics : none;
}

MarkdownTextAttributes& MarkdownTextAttributes::setParagraph(const MarkdownParagraphMetrics& p)
{
    auto* paragraph = new SharedParagraph;
    paragraph->metrics = p;
    m_paragraph = QExplicitlySharedDataPointer<const SharedParagraph>(paragraph);
    keys |= Paragraph;
    return *this;
}

const MarkdownTextAttributes::Extras& MarkdownTextAttributes::extras() const
{
    static const Extras none;
    return m_extras ? *m_extras : none;
}

MarkdownTextAttributes::Extras& MarkdownTextAttributes::mutableExtras()
{
    if (!m_extras)
        m_extras = QExplicitlySharedDataPointer<Extras>(new Extras);
    else if (m_extras->ref.loadRelaxed() > 1)
        m_extras.detach();
    return *m_extras;
}

MarkdownTextAttributes& MarkdownTextAttributes::setListMarker(const QString& s)
{
    mutableExtras().listMarker = s;
    keys |= ListMarker;
    return *this;
}

MarkdownTextAttributes& MarkdownTextAttributes::setAttachment(std::shared_ptr<const MarkdownEditorAttachment> a)
{
    mutableExtras().attachment = std::move(a);
    keys |= Attachment;
    return *this;
}

MarkdownTextAttributes& MarkdownTextAttributes::setCallout(const QString& s)
{
    mutableExtras().callout = s;
    keys |= Callout;
    return *this;
}

MarkdownTextAttributes& MarkdownTextAttributes::setWikiLinkID(const QString& s)
{
    mutableExtras().wikiLinkID = s;
    keys |= WikiLinkID;
    return *this;
}

MarkdownTextAttributes& MarkdownTextAttributes::setLink(const QString& url)
{
    mutableExtras().link = url;
    keys |= Link;
    return *this;
}

void MarkdownTextAttributes::merge(const MarkdownTextAttributes& o)
{
    const std::uint32_t k = o.keys;
    if (!k)
        return;
    const std::uint32_t before = keys;
    keys |= k;
    if (k & Font) font = o.font;
    if (k & Foreground) foreground = o.foreground;
    if (k & Background) background = o.background;
    if (k & UnderlineColor) underlineColor = o.underlineColor;
    if (k & StrikethroughColor) strikethroughColor = o.strikethroughColor;
    if (k & BaselineOffset) baselineOffset = o.baselineOffset;
    if (k & Kern) kern = o.kern;
    if (k & Paragraph) m_paragraph = o.m_paragraph;
    if (k & Hidden) hidden = o.hidden;
    if (k & Role) role = o.role;
    if (k & Depth) depth = o.depth;
    if (k & TableGrid) tableGrid = o.tableGrid;
    if (k & FenceBox) fenceBox = o.fenceBox;
    if (k & TaskCheckbox) taskCheckbox = o.taskCheckbox;
    if (k & extraKeys) {
        if (!(before & ~k & extraKeys) || !m_extras) {
            // Nothing of ours survives the merge: share theirs.
            m_extras = o.m_extras;
        } else {
            Extras& e = mutableExtras();
            const Extras& x = o.extras();
            if (k & ListMarker) e.listMarker = x.listMarker;
            if (k & Attachment) e.attachment = x.attachment;
            if (k & Callout) e.callout = x.callout;
            if (k & WikiLinkID) e.wikiLinkID = x.wikiLinkID;
            if (k & Link) e.link = x.link;
        }
    }
}

bool operator==(const MarkdownTextAttributes& a, const MarkdownTextAttributes& b)
{
    using A = MarkdownTextAttributes;
    const std::uint32_t k = a.keys;
    if (k != b.keys)
        return false;
    return (!(k & A::Font) || a.font == b.font) && (!(k & A::Foreground) || a.foreground == b.foreground)
        && (!(k & A::Background) || a.background == b.background)
        && (!(k & A::UnderlineColor) || a.underlineColor == b.underlineColor)
        && (!(k & A::StrikethroughColor) || a.strikethroughColor == b.strikethroughColor)
        && (!(k & A::BaselineOffset) || a.baselineOffset == b.baselineOffset)
        && (!(k & A::Kern) || a.kern == b.kern) && (!(k & A::Paragraph) || a.m_paragraph == b.m_paragraph || a.paragraph() == b.paragraph())
        && (!(k & A::Hidden) || a.hidden == b.hidden) && (!(k & A::Role) || a.role == b.role)
        && (!(k & A::Depth) || a.depth == b.depth) && (!(k & A::ListMarker) || a.listMarker() == b.listMarker())
        && (!(k & A::Attachment) || a.attachment() == b.attachment())
        && (!(k & A::TableGrid) || a.tableGrid == b.tableGrid) && (!(k & A::FenceBox) || a.fenceBox == b.fenceBox)
        && (!(k & A::Callout) || a.callout() == b.callout())
        && (!(k & A::TaskCheckbox) || a.taskCheckbox == b.taskCheckbox)
        && (!(k & A::WikiLinkID) || a.wikiLinkID() == b.wikiLinkID()) && (!(k & A::Link) || a.link() == b.link());
}

}
