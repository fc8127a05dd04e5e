#include "MarkdownEngine/Layout/MarkdownLayoutManager.h"

#include "MarkdownEngine/Layout/MarkdownTextStorage.h"

#include <QFontMetricsF>
#include <QPainter>
#include <QTextDocument>
#include <QTextLayout>
#include <QTimer>
#include <algorithm>
#include <cmath>

namespace velmo::markdown {

namespace {

// A page with no width yet (no view) lays out as if it were this wide.
constexpr double fallbackPageWidth = 800.0;

}

MarkdownLayoutManager::MarkdownLayoutManager(MarkdownTextStorage& storage)
    : QAbstractTextDocumentLayout(storage.document())
    , m_storage(storage)
{
}

void MarkdownLayoutManager::setGeometry(const Geometry& geometry)
{
    const bool columnChanged = geometry.readingWidth != m_geometry.readingWidth
        || geometry.horizontalInset != m_geometry.horizontalInset;
    m_geometry = geometry;
    if (columnChanged)
        documentChanged(0, 0, document()->characterCount());
    else {
        m_topsValid = 0;
        heightChanged();
    }
}

double MarkdownLayoutManager::pageWidth() const
{
    const double width = document()->pageSize().width();
    return width > 0 ? width : fallbackPageWidth;
}

double MarkdownLayoutManager::columnWidth() const
{
    const double available = std::max(40.0, pageWidth() - 2 * m_geometry.horizontalInset);
    return m_geometry.readingWidth > 0 ? std::min(m_geometry.readingWidth, available) : available;
}

double MarkdownLayoutManager::columnLeft() const
{
    return (pageWidth() - columnWidth()) / 2;
}

MarkdownLayoutManager::Estimate MarkdownLayoutManager::estimator() const
{
    const QFontMetricsF metrics(document()->defaultFont());
    const MarkdownParagraphMetrics& p = m_defaultParagraph;
    Estimate e;
    e.charactersPerLine = std::max(1.0, std::floor(columnWidth() / std::max(1.0, metrics.averageCharWidth())));
    e.lineHeight = std::max(metrics.lineSpacing(), double(p.minimumLineHeight)) + p.lineSpacing;
    e.spacing = p.paragraphSpacing + p.paragraphSpacingBefore;
    return e;
}

double MarkdownLayoutManager::Estimate::height(const QTextBlock& block) const
{
    return std::max(1.0, std::ceil((block.length() - 1) / charactersPerLine)) * lineHeight + spacing;
}

void MarkdownLayoutManager::documentChanged(int from, int, int charsAdded)
{
    QTextDocument* doc = document();
    const int newCount = doc->blockCount();
    const int oldCount = int(m_heights.size());
    QTextBlock firstBlock = doc->findBlock(from);
    if (!firstBlock.isValid())
        firstBlock = doc->lastBlock();
    QTextBlock lastBlock = doc->findBlock(from + std::max(0, charsAdded));
    if (!lastBlock.isValid())
        lastBlock = doc->lastBlock();
    const int first = firstBlock.blockNumber();
    const int newSpan = lastBlock.blockNumber() - first + 1;
    const int oldSpan = newSpan - (newCount - oldCount);
    const Estimate estimate = estimator();
    if (oldCount == 0 || oldSpan < 1 || first + oldSpan > oldCount) {
        m_heights.clear();
        m_pending.assign(std::size_t(newCount), 1);
        m_total = 0;
        for (QTextBlock block = doc->begin(); block.isValid(); block = block.next()) {
            m_heights.push_back(estimate.height(block));
            m_total += m_heights.back();
        }
    } else {
        // Splice the changed span; a span of the same size keeps its heights as estimates.
        std::vector<double> heights;
        heights.reserve(std::size_t(newSpan));
        QTextBlock block = firstBlock;
        for (int i = 0; i < newSpan && block.isValid(); ++i, block = block.next())
            heights.push_back(oldSpan == newSpan ? m_heights[std::size_t(first + i)] : estimate.height(block));
        for (int i = 0; i < oldSpan; ++i)
            m_total -= m_heights[std::size_t(first + i)];
        for (double h : heights)
            m_total += h;
        m_heights.erase(m_heights.begin() + first, m_heights.begin() + first + oldSpan);
        m_heights.insert(m_heights.begin() + first, heights.begin(), heights.end());
        m_pending.erase(m_pending.begin() + first, m_pending.begin() + first + oldSpan);
        m_pending.insert(m_pending.begin() + first, std::size_t(newSpan), 1);
    }
    m_topsValid = std::min(m_topsValid, first);
    m_tops.resize(m_heights.size());
    heightChanged();
    emit update(QRectF(0, 0, pageWidth(), 1e9));
}

void MarkdownLayoutManager::heightChanged() const
{
    // Queued: a height found while drawing must not resize the scroll area inside its paint.
    if (m_sizeSignalQueued)
        return;
    m_sizeSignalQueued = true;
    QTimer::singleShot(0, const_cast<MarkdownLayoutManager*>(this), [this] {
        m_sizeSignalQueued = false;
        emit const_cast<MarkdownLayoutManager*>(this)->documentSizeChanged(documentSize());
    });
}

double MarkdownLayoutManager::top(int number) const
{
    if (number <= 0 || m_heights.empty())
        return m_geometry.verticalInset;
    number = std::min(number, int(m_heights.size()) - 1);
    if (m_topsValid == 0) {
        m_tops[0] = m_geometry.verticalInset;
        m_topsValid = 1;
    }
    for (int i = m_topsValid; i <= number; ++i)
        m_tops[std::size_t(i)] = m_tops[std::size_t(i - 1)] + m_heights[std::size_t(i - 1)];
    m_topsValid = std::max(m_topsValid, number + 1);
    return m_tops[std::size_t(number)];
}

int MarkdownLayoutManager::blockNumberAt(double y) const
{
    const int count = int(m_heights.size());
    if (count == 0)
        return -1;
    top(count - 1);
    const auto it = std::upper_bound(m_tops.begin(), m_tops.begin() + count, y);
    return std::max(0, int(it - m_tops.begin()) - 1);
}

void MarkdownLayoutManager::layoutBlock(const QTextBlock& block) const
{
    QTextLayout* layout = block.layout();
    const MarkdownBlockStyle* style = m_storage.blockStyle(block);
    // A composition's own formats stay while it lasts.
    if (layout->preeditAreaText().isEmpty()) {
        if (style)
            layout->setFormats(QList<QTextLayout::FormatRange>(style->formats.begin(), style->formats.end()));
        else
            layout->clearFormats();
    }
    const MarkdownParagraphMetrics& p = style && style->hasParagraph ? style->paragraph : m_defaultParagraph;
    QTextOption option = document()->defaultTextOption();
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    switch (p.alignment) {
    case MarkdownParagraphMetrics::Alignment::center: option.setAlignment(Qt::AlignHCenter); break;
    case MarkdownParagraphMetrics::Alignment::right: option.setAlignment(Qt::AlignRight); break;
    case MarkdownParagraphMetrics::Alignment::justified: option.setAlignment(Qt::AlignJustify); break;
    default: option.setAlignment(Qt::AlignLeft); break;
    }
    layout->setTextOption(option);
    const double left = columnLeft();
    const double width = columnWidth();
    double y = p.paragraphSpacingBefore;
    bool firstLine = true;
    layout->beginLayout();
    for (QTextLine line = layout->createLine(); line.isValid(); line = layout->createLine()) {
        const double indent = firstLine ? p.firstLineHeadIndent : p.headIndent;
        const double right = p.tailIndent <= 0 ? width + p.tailIndent : p.tailIndent;
        line.setLeadingIncluded(true);
        line.setLineWidth(std::max(1.0, right - indent));
        const double natural = line.height();
        double height = std::max(natural, double(p.minimumLineHeight));
        if (p.maximumLineHeight > 0)
            height = std::min(height, double(p.maximumLineHeight));
        // Extra height goes above the text, so the baseline sits at the bottom of the line.
        line.setPosition(QPointF(left + indent, y + (height - natural)));
        y += height + p.lineSpacing;
        firstLine = false;
    }
    layout->endLayout();
    const double height = y + p.paragraphSpacing;
    const int number = block.blockNumber();
    ++m_layoutCount;
    if (number < 0 || number >= int(m_heights.size()))
        return;
    m_pending[std::size_t(number)] = 0;
    const double old = m_heights[std::size_t(number)];
    if (std::abs(old - height) > 0.01) {
        m_heights[std::size_t(number)] = height;
        m_total += height - old;
        m_topsValid = std::min(m_topsValid, number + 1);
        heightChanged();
    }
}

void MarkdownLayoutManager::ensureLaidOut(const QTextBlock& block) const
{
    const int number = block.blockNumber();
    if (number < 0 || number >= int(m_pending.size()) || m_pending[std::size_t(number)]
        || block.layout()->lineCount() == 0)
        layoutBlock(block);
}

void MarkdownLayoutManager::layoutAll() const
{
    for (QTextBlock block = document()->begin(); block.isValid(); block = block.next())
        ensureLaidOut(block);
}

QSizeF MarkdownLayoutManager::documentSize() const
{
    return {pageWidth(), m_geometry.verticalInset + m_total + m_geometry.bottomInset};
}

QRectF MarkdownLayoutManager::frameBoundingRect(QTextFrame*) const
{
    return {QPointF(), documentSize()};
}

QRectF MarkdownLayoutManager::blockBoundingRect(const QTextBlock& block) const
{
    if (!block.isValid())
        return {};
    ensureLaidOut(block);
    const int number = block.blockNumber();
    return {0, top(number), pageWidth(), m_heights[std::size_t(number)]};
}

void MarkdownLayoutManager::draw(QPainter* painter, const PaintContext& context)
{
    const QRectF clip = context.clip.isValid() ? context.clip : QRectF(QPointF(), documentSize());
    if (m_decorations)
        m_decorations(painter, clip, false);
    painter->setPen(context.palette.text().color());
    const int cursorWidth = property("cursorWidth").isValid() ? property("cursorWidth").toInt() : 1;
    int number = blockNumberAt(clip.top());
    QTextBlock block = number >= 0 ? document()->findBlockByNumber(number) : QTextBlock();
    for (; block.isValid(); block = block.next()) {
        ensureLaidOut(block);
        const QRectF bounds = blockBoundingRect(block);
        if (bounds.top() > clip.bottom())
            break;
        if (bounds.bottom() < clip.top())
            continue;
        const int position = block.position();
        const int length = block.length();
        QList<QTextLayout::FormatRange> selections;
        for (const Selection& selection : context.selections) {
            const int start = selection.cursor.selectionStart() - position;
            const int end = selection.cursor.selectionEnd() - position;
            if (end <= 0 || start >= length)
                continue;
            QTextLayout::FormatRange range;
            range.start = std::max(0, start);
            range.length = std::min(length, end) - range.start;
            range.format = selection.format;
            selections << range;
        }
        QTextLayout* layout = block.layout();
        layout->draw(painter, bounds.topLeft(), selections, clip);
        int cursor = context.cursorPosition;
        if (cursor < -1 && !layout->preeditAreaText().isEmpty())
            cursor = position + layout->preeditAreaPosition() - (cursor + 2);
        if (cursor >= position && cursor < position + length)
            layout->drawCursor(painter, bounds.topLeft(), cursor - position, cursorWidth);
    }
    if (m_decorations)
        m_decorations(painter, clip, true);
}

int MarkdownLayoutManager::hitTest(const QPointF& point, Qt::HitTestAccuracy) const
{
    const int number = blockNumberAt(point.y());
    if (number < 0)
        return 0;
    const QTextBlock block = document()->findBlockByNumber(number);
    const QRectF bounds = blockBoundingRect(block);
    const QTextLayout* layout = block.layout();
    const double y = point.y() - bounds.top();
    for (int i = 0; i < layout->lineCount(); ++i) {
        const QTextLine line = layout->lineAt(i);
        if (y < line.y() + line.height() || i == layout->lineCount() - 1)
            return block.position() + line.xToCursor(point.x() - bounds.left());
    }
    return block.position();
}

std::vector<QRectF> MarkdownLayoutManager::lineRects(MarkdownSourceRange range) const
{
    std::vector<QRectF> rects;
    QTextBlock block = document()->findBlock(range.location);
    for (; block.isValid() && block.position() <= range.upperBound(); block = block.next()) {
        const QRectF bounds = blockBoundingRect(block);
        const QTextLayout* layout = block.layout();
        const int start = std::max(0, range.location - block.position());
        const int end = std::min(block.length() - 1, range.upperBound() - block.position());
        for (int i = 0; i < layout->lineCount(); ++i) {
            const QTextLine line = layout->lineAt(i);
            const int lineStart = line.textStart();
            const int lineEnd = lineStart + line.textLength();
            if (lineEnd < start || lineStart > end || (lineEnd == start && start != end && lineEnd != lineStart))
                continue;
            const int a = std::max(start, lineStart);
            const int b = std::min(end, lineEnd);
            const double x1 = line.cursorToX(a);
            const double x2 = line.cursorToX(b);
            rects.emplace_back(bounds.left() + std::min(x1, x2), bounds.top() + line.y(), std::abs(x2 - x1), line.height());
        }
        if (block.position() + block.length() > range.upperBound())
            break;
    }
    return rects;
}

QRectF MarkdownLayoutManager::blockSpan(MarkdownSourceRange range) const
{
    const std::vector<QRectF> rects = lineRects(range);
    if (rects.empty())
        return {};
    return QRectF(columnLeft(), rects.front().top(), columnWidth(), rects.back().bottom() - rects.front().top());
}

QRectF MarkdownLayoutManager::caretRect(int position) const
{
    const QTextBlock block = document()->findBlock(position);
    if (!block.isValid())
        return {};
    const QRectF bounds = blockBoundingRect(block);
    const QTextLayout* layout = block.layout();
    const int relative = position - block.position();
    const QTextLine line = layout->lineForTextPosition(relative);
    if (!line.isValid())
        return {bounds.left() + columnLeft(), bounds.top(), 1, bounds.height()};
    return {bounds.left() + line.cursorToX(relative), bounds.top() + line.y(), 1, line.height()};
}

MarkdownSourceRange MarkdownLayoutManager::visibleRange(const QRectF& rect) const
{
    const int first = blockNumberAt(rect.top());
    const int last = blockNumberAt(rect.bottom());
    if (first < 0)
        return {};
    const QTextBlock a = document()->findBlockByNumber(first);
    const QTextBlock b = document()->findBlockByNumber(std::max(first, last));
    return MarkdownSourceRange::fromBounds(a.position(), b.position() + b.length() - 1);
}

}
