#pragma once

#include "MarkdownEngine/Configuration/MarkdownEditorConfiguration.h"
#include "MarkdownEngine/Styling/MarkdownEditorFragmentStore.h"

#include <QColor>
#include <QRectF>
#include <vector>

class QPainter;

namespace velmo::markdown {

class MarkdownLayoutManager;

// Draws what the fragment store lists beside the text: quote bars, callout and code boxes,
// table grids, bullets and numbers over hidden list markers, task boxes, thematic breaks and
// attachments, and the find highlights, which never enter the storage. Knows no Markdown:
// it reads roles and attributes.
class MarkdownDecorationPainter {
public:
    explicit MarkdownDecorationPainter(const MarkdownLayoutManager& layout);

    // Not copied: the store belongs to the coordinator and lives until the next one is set.
    void setStore(const MarkdownEditorFragmentStore& store) { m_store = &store; }
    const MarkdownEditorFragmentStore& store() const { return *m_store; }
    void setOverlay(const MarkdownEditorFragmentStore& overlay, const std::vector<MarkdownSourceRange>& ranges)
    {
        m_overlay = &overlay;
        m_overlayRanges = &ranges;
    }
    void setConfiguration(const MarkdownEditorConfiguration& config) { m_config = config; }
    void setHighlights(std::vector<MarkdownSourceRange> ranges, QColor color)
    {
        m_highlights = std::move(ranges);
        m_highlightColor = color;
    }
    const std::vector<MarkdownSourceRange>& highlights() const { return m_highlights; }

    void paint(QPainter* painter, const QRectF& clip, bool foreground);

    // Task boxes as last drawn, for clicks: the box's rectangle and its three characters.
    struct Checkbox {
        QRectF rect;
        MarkdownSourceRange range;
        bool checked = false;
    };
    const std::vector<Checkbox>& checkboxes() const { return m_checkboxes; }

private:
    void paintBackground(QPainter* painter, const std::vector<const MarkdownEditorFragment*>& fragments);
    void paintForeground(QPainter* painter, const std::vector<const MarkdownEditorFragment*>& fragments);
    void paintTable(QPainter* painter, const MarkdownEditorFragment& table);

    const MarkdownLayoutManager& m_layout;
    const MarkdownEditorFragmentStore* m_store = &m_empty;
    MarkdownEditorFragmentStore m_empty;
    const MarkdownEditorFragmentStore* m_overlay = &m_empty;
    const std::vector<MarkdownSourceRange>* m_overlayRanges = &m_noRanges;
    std::vector<MarkdownSourceRange> m_noRanges;
    MarkdownEditorConfiguration m_config;
    std::vector<MarkdownSourceRange> m_highlights;
    QColor m_highlightColor;
    std::vector<Checkbox> m_checkboxes;
};

}
