#pragma once

#include "MarkdownEngine/Core/MarkdownSourceRange.h"
#include "MarkdownEngine/Styling/MarkdownParagraphMetrics.h"

#include <QAbstractTextDocumentLayout>
#include <QTextBlock>
#include <functional>
#include <vector>

namespace velmo::markdown {

class MarkdownTextStorage;

// Lays out the storage's lines with their paragraph metrics (line heights, spacing, indents)
// in a column of the reading width, centred in the page. Lines are laid out lazily: a changed
// line only when it is drawn or asked about; until then its height is its last one, or an
// estimate. All lengths are device-independent pixels; a block's rectangle spans the page.
class MarkdownLayoutManager : public QAbstractTextDocumentLayout {
    Q_OBJECT

public:
    explicit MarkdownLayoutManager(MarkdownTextStorage& storage);

    struct Geometry {
        double readingWidth = 0; // 0: the whole page
        double horizontalInset = 0;
        double verticalInset = 0;
        double bottomInset = 0; // overscroll below the last line
    };
    void setGeometry(const Geometry& geometry);
    const Geometry& geometry() const { return m_geometry; }
    // Lines of a block without a style of its own (before the first pass).
    void setDefaultParagraph(const MarkdownParagraphMetrics& paragraph) { m_defaultParagraph = paragraph; }

    double pageWidth() const;
    double columnLeft() const;
    double columnWidth() const;

    // Drawn before the text (boxes, bars, fills) and after it (bullets, boxes, rules, pictures).
    using DecorationPainter = std::function<void(QPainter* painter, const QRectF& clip, bool foreground)>;
    void setDecorationPainter(DecorationPainter painter) { m_decorations = std::move(painter); }

    void draw(QPainter* painter, const PaintContext& context) override;
    int hitTest(const QPointF& point, Qt::HitTestAccuracy accuracy) const override;
    int pageCount() const override { return 1; }
    QSizeF documentSize() const override;
    QRectF frameBoundingRect(QTextFrame* frame) const override;
    QRectF blockBoundingRect(const QTextBlock& block) const override;

    // The rectangles of the laid-out lines that `range` covers, clipped to the range.
    [[nodiscard]] std::vector<QRectF> lineRects(MarkdownSourceRange range) const;
    // From the top of the first line to the bottom of the last line of `range`, column wide.
    [[nodiscard]] QRectF blockSpan(MarkdownSourceRange range) const;
    [[nodiscard]] QRectF caretRect(int position) const;
    // The text range whose lines meet `rect`.
    [[nodiscard]] MarkdownSourceRange visibleRange(const QRectF& rect) const;
    // Lays out every line that is still pending (the whole note).
    void layoutAll() const;
    // Lines laid out since creation: what a benchmark counts.
    int layoutCount() const { return m_layoutCount; }

protected:
    void documentChanged(int from, int charsRemoved, int charsAdded) override;

private:
    void layoutBlock(const QTextBlock& block) const;
    void ensureLaidOut(const QTextBlock& block) const;
    double top(int blockNumber) const;
    int blockNumberAt(double y) const;
    // A block's height before its first layout, from the body font's metrics.
    struct Estimate {
        double charactersPerLine = 80;
        double lineHeight = 20;
        double spacing = 0;
        [[nodiscard]] double height(const QTextBlock& block) const;
    };
    Estimate estimator() const;
    void heightChanged() const;

    MarkdownTextStorage& m_storage;
    Geometry m_geometry;
    MarkdownParagraphMetrics m_defaultParagraph;
    DecorationPainter m_decorations;
    // Per block number: height, whether it waits for a layout, and tops valid below m_topsValid.
    mutable std::vector<double> m_heights;
    mutable std::vector<char> m_pending;
    mutable std::vector<double> m_tops;
    mutable int m_topsValid = 0;
    mutable double m_total = 0;
    mutable int m_layoutCount = 0;
    mutable bool m_sizeSignalQueued = false;
};

}
