#include "MarkdownEngine/Styling/MarkdownTextAttributes.h"

namespace velmo::markdown {

void MarkdownTextAttributes::merge(const MarkdownTextAttributes& o)
{
    const std::uint32_t k = o.keys;
    if (!k)
        return;
    keys |= k;
    if (k & Font) font = o.font;
    if (k & Foreground) foreground = o.foreground;
    if (k & Background) background = o.background;
    if (k & UnderlineColor) underlineColor = o.underlineColor;
    if (k & StrikethroughColor) strikethroughColor = o.strikethroughColor;
    if (k & BaselineOffset) baselineOffset = o.baselineOffset;
    if (k & Kern) kern = o.kern;
    if (k & Paragraph) paragraph = o.paragraph;
    if (k & Hidden) hidden = o.hidden;
    if (k & Role) role = o.role;
    if (k & Depth) depth = o.depth;
    if (k & ListMarker) listMarker = o.listMarker;
    if (k & Attachment) attachment = o.attachment;
    if (k & TableGrid) tableGrid = o.tableGrid;
    if (k & FenceBox) fenceBox = o.fenceBox;
    if (k & Callout) callout = o.callout;
    if (k & TaskCheckbox) taskCheckbox = o.taskCheckbox;
    if (k & WikiLinkID) wikiLinkID = o.wikiLinkID;
    if (k & Link) link = o.link;
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
        && (!(k & A::Kern) || a.kern == b.kern) && (!(k & A::Paragraph) || a.paragraph == b.paragraph)
        && (!(k & A::Hidden) || a.hidden == b.hidden) && (!(k & A::Role) || a.role == b.role)
        && (!(k & A::Depth) || a.depth == b.depth) && (!(k & A::ListMarker) || a.listMarker == b.listMarker)
        && (!(k & A::Attachment) || a.attachment == b.attachment)
        && (!(k & A::TableGrid) || a.tableGrid == b.tableGrid) && (!(k & A::FenceBox) || a.fenceBox == b.fenceBox)
        && (!(k & A::Callout) || a.callout == b.callout)
        && (!(k & A::TaskCheckbox) || a.taskCheckbox == b.taskCheckbox)
        && (!(k & A::WikiLinkID) || a.wikiLinkID == b.wikiLinkID) && (!(k & A::Link) || a.link == b.link);
}

}
