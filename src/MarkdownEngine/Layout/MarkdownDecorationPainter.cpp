#include "MarkdownEngine/Layout/MarkdownDecorationPainter.h"

#include "MarkdownEngine/Layout/MarkdownLayoutManager.h"
#include "MarkdownEngine/Layout/MarkdownTextStorage.h"
#include "MarkdownEngine/Styling/MarkdownEditorAttachment.h"

#include <QFontMetricsF>
#include <QPainter>
#include <QPainterPath>
#include <algorithm>
#include <cmath>
#include <optional>

namespace velmo::markdown {

namespace {

using Role = MarkdownEditorFragmentRole;
using Key = MarkdownTextAttributes::Key;

constexpr double quoteBarWidth = 3.0;
constexpr double bulletGap = 6.0;

QColor withAlpha(QColor color, double alpha)
{
    color.setAlphaF(float(std::clamp(alpha, 0.0, 1.0) * color.alphaF()));
    return color;
}

std::optional<MarkdownCallout::Kind> calloutKind(const QString& name)
{
    static const std::pair<const char*, MarkdownCallout::Kind> kinds[] = {
        {"NOTE", MarkdownCallout::Kind::note}, {"TIP", MarkdownCallout::Kind::tip},
        {"IMPORTANT", MarkdownCallout::Kind::important}, {"WARNING", MarkdownCallout::Kind::warning},
        {"CAUTION", MarkdownCallout::Kind::caution},
    };
    for (const auto& [text, kind] : kinds) {
        if (name == QLatin1String(text))
            return kind;
    }
    return std::nullopt;
}

}

MarkdownDecorationPainter::MarkdownDecorationPainter(const MarkdownLayoutManager& layout)
    : m_layout(layout)
{
}

void MarkdownDecorationPainter::paint(QPainter* painter, const QRectF& clip, bool foreground)
{
    const MarkdownSourceRange visible = m_layout.visibleRange(clip);
    // Reach a little before the visible text, so a box that starts above the clip is drawn.
    const MarkdownSourceRange reach{visible.location, std::max(1, visible.length + 1)};
    std::vector<const MarkdownEditorFragment*> fragments;
    for (const MarkdownEditorFragment* f : m_store->decorations(reach)) {
        const bool replaced = std::any_of(m_overlayRanges->begin(), m_overlayRanges->end(),
                                          [&](MarkdownSourceRange r) { return f->intersects(r); });
        if (!replaced)
            fragments.push_back(f);
    }
    for (const MarkdownEditorFragment* f : m_overlay->decorations(reach))
        fragments.push_back(f);
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing, true);
    if (foreground)
        paintForeground(painter, fragments);
    else
        paintBackground(painter, fragments);
    painter->restore();
}

void MarkdownDecorationPainter::paintBackground(QPainter* painter,
                                                const std::vector<const MarkdownEditorFragment*>& fragments)
{
    const MarkdownEditorTheme& theme = m_config.theme;
    const double left = m_layout.columnLeft();
    std::vector<MarkdownSourceRange> callouts;
    for (const MarkdownEditorFragment* f : fragments) {
        const MarkdownTextAttributes& a = f->attributes;
        if (f->role == Role::blockquote && a.has(Key::Callout)) {
            const QRectF span = m_layout.blockSpan(f->range);
            const QColor color = [&] {
                const auto kind = calloutKind(a.callout());
                return kind ? theme.color(MarkdownCallout{*kind}) : theme.quoteBar;
            }();
            QPainterPath path;
            path.addRoundedRect(span.adjusted(0, -2, 0, 2), 6, 6);
            painter->fillPath(path, withAlpha(color, 0.1));
            painter->fillRect(QRectF(span.left(), span.top() - 2, quoteBarWidth, span.height() + 4), color);
            callouts.push_back(f->range);
        } else if (f->role == Role::blockquote) {
            const bool inCallout = std::any_of(callouts.begin(), callouts.end(), [&](MarkdownSourceRange r) {
                return r.location <= f->range.location && f->range.upperBound() <= r.upperBound();
            });
            if (inCallout)
                continue;
            const QRectF span = m_layout.blockSpan(f->range);
            const int depth = std::max(1, a.has(Key::Depth) ? a.depth : 1);
            for (int level = 0; level < depth; ++level) {
                const double x = left + level * m_config.blockquote.calloutPadding;
                painter->fillRect(QRectF(x, span.top(), quoteBarWidth, span.height()), theme.quoteBar);
            }
        } else if (f->role == Role::fence && a.has(Key::FenceBox)) {
            const QRectF span = m_layout.blockSpan(f->range);
            QPainterPath path;
            path.addRoundedRect(span.adjusted(0, -2, 0, 2), m_config.codeBlock.cornerRadius,
                                m_config.codeBlock.cornerRadius);
            painter->fillPath(path, theme.codeBackground);
        } else if (f->role == Role::table && a.has(Key::TableGrid) && f->priority < 9) {
            paintTable(painter, *f);
        }
    }
    for (const MarkdownSourceRange& range : m_highlights) {
        for (const QRectF& rect : m_layout.lineRects(range))
            painter->fillRect(rect, m_highlightColor);
    }
}

void MarkdownDecorationPainter::paintTable(QPainter* painter, const MarkdownEditorFragment& table)
{
    const MarkdownEditorConfiguration::TableStyle& style = m_config.table;
    const QColor rule = withAlpha(m_config.theme.mutedText, style.ruleAlpha);
    const QRectF span = m_layout.blockSpan(table.range);
    std::vector<std::vector<QRectF>> rows;
    // One row per line of the table; the flattened separator is a line of its own.
    for (const QRectF& line : m_layout.lineRects(table.range)) {
        if (!rows.empty() && std::abs(rows.back().front().top() - line.top()) < 0.5)
            rows.back().push_back(line);
        else
            rows.push_back({line});
    }
    if (rows.empty())
        return;
    const QRectF header = rows.front().front();
    painter->fillRect(QRectF(span.left(), header.top(), span.width(), header.height()),
                      withAlpha(m_config.theme.bodyText, style.headerFillAlpha));
    painter->setPen(QPen(rule, 1));
    for (std::size_t i = 1; i < rows.size(); ++i) {
        const double y = std::round(rows[i].front().top()) + 0.5;
        painter->drawLine(QPointF(span.left(), y), QPointF(span.right(), y));
    }
    if (style.showsColumnRules) {
        // At the pipe's glyph, not the middle of its advance: an empty cell's room is spacing
        // after its opening pipe.
        const double pipeHalf = QFontMetricsF(MarkdownTextStorage::font(m_config.bodyFont())).horizontalAdvance(u'|') / 2;
        for (const MarkdownEditorFragment* pipe : m_store->fragments(table.range)) {
            if (pipe->role != Role::table || pipe->range.length != 1 || pipe->priority != 9)
                continue;
            for (const QRectF& r : m_layout.lineRects(pipe->range)) {
                const double x = std::round(r.left() + std::min(r.width() / 2, pipeHalf)) + 0.5;
                painter->drawLine(QPointF(x, r.top()), QPointF(x, r.bottom()));
            }
        }
    }
    if (style.showsOuterBorder) {
        painter->setBrush(Qt::NoBrush);
        painter->drawRoundedRect(span.adjusted(0.5, 0.5, -0.5, -0.5), 4, 4);
    }
}

void MarkdownDecorationPainter::paintForeground(QPainter* painter,
                                                const std::vector<const MarkdownEditorFragment*>& fragments)
{
    const MarkdownEditorTheme& theme = m_config.theme;
    m_checkboxes.clear();
    const QFont body = MarkdownTextStorage::font(m_config.bodyFont());
    for (const MarkdownEditorFragment* f : fragments) {
        const MarkdownTextAttributes& a = f->attributes;
        if (f->role == Role::bullet && a.has(Key::ListMarker)) {
            const std::vector<QRectF> rects = m_layout.lineRects(f->range);
            if (rects.empty())
                continue;
            const QRectF at = rects.front();
            painter->setFont(body);
            painter->setPen(theme.mutedText);
            const QRectF box(at.left() - 80 - bulletGap, at.top(), 80, at.height());
            painter->drawText(box, Qt::AlignRight | Qt::AlignBottom, a.listMarker());
        } else if (f->role == Role::taskCheckbox && a.has(Key::TaskCheckbox)) {
            const std::vector<QRectF> rects = m_layout.lineRects(f->range);
            if (rects.empty())
                continue;
            const QRectF at = rects.front();
            const double size = std::min(14.0, at.height() * 0.8);
            const QRectF box(at.left() - size - bulletGap, at.bottom() - size - (at.height() - size) / 3, size, size);
            painter->setPen(QPen(a.taskCheckbox ? theme.link : theme.mutedText, 1.2));
            painter->setBrush(a.taskCheckbox ? QBrush(theme.link) : QBrush(Qt::NoBrush));
            painter->drawRoundedRect(box, 3, 3);
            if (a.taskCheckbox) {
                painter->setPen(QPen(theme.background, 1.8, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
                QPainterPath tick;
                tick.moveTo(box.left() + size * 0.25, box.top() + size * 0.52);
                tick.lineTo(box.left() + size * 0.43, box.top() + size * 0.7);
                tick.lineTo(box.left() + size * 0.76, box.top() + size * 0.3);
                painter->setBrush(Qt::NoBrush);
                painter->drawPath(tick);
            }
            m_checkboxes.push_back({box.adjusted(-3, -3, 3, 3), f->range, a.taskCheckbox});
        } else if (f->role == Role::thematicBreak) {
            const QRectF span = m_layout.blockSpan(f->range);
            const double y = std::round(span.center().y()) + 0.5;
            painter->setPen(QPen(theme.quoteBar, 1));
            painter->drawLine(QPointF(span.left(), y), QPointF(span.right(), y));
        } else if (f->role == Role::tableRule && !f->isHidden) {
            const QRectF span = m_layout.blockSpan(f->range);
            const double alpha = m_config.table.headerRuleAlpha.value_or(m_config.table.ruleAlpha);
            painter->fillRect(QRectF(span.left(), span.top(), span.width(), 1), withAlpha(theme.mutedText, alpha));
        } else if (a.has(Key::Attachment) && a.attachment() && !a.attachment()->image.isNull()) {
            const std::vector<QRectF> rects = m_layout.lineRects(f->range);
            if (rects.empty())
                continue;
            const MarkdownEditorAttachment& attachment = *a.attachment();
            QRectF target(rects.front().topLeft(), attachment.size);
            if (attachment.placement.kind == MarkdownEditorAttachment::Placement::Kind::block)
                target.moveLeft(m_layout.columnLeft() + (m_layout.columnWidth() - attachment.size.width()) / 2);
            painter->fillRect(target, theme.background);
            painter->drawImage(target, attachment.image);
        }
    }
}

}
