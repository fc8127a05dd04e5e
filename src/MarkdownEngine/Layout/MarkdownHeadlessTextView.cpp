#include "MarkdownEngine/Layout/MarkdownHeadlessTextView.h"

#include "MarkdownEngine/Layout/MarkdownEditorCoordinator.h"

#include <QTextCursor>

namespace velmo::markdown {

MarkdownHeadlessTextView::MarkdownHeadlessTextView(QObject* parent)
    : QObject(parent)
    , m_layout(new MarkdownLayoutManager(m_storage))
    , m_painter(*m_layout)
    , m_undoSelections(*m_storage.document())
{
    m_storage.document()->setDocumentLayout(m_layout);
    m_storage.document()->setPageSize(QSizeF(900, -1));
    m_layout->setDecorationPainter([this](QPainter* p, const QRectF& clip, bool foreground) {
        m_painter.paint(p, clip, foreground);
    });
    connect(m_storage.document(), &QTextDocument::contentsChange, this, [this](int, int removed, int added) {
        if (m_applying || (removed == 0 && added == 0))
            return;
        m_storage.noteTextChanged();
        if (m_coordinator)
            m_coordinator->textViewDidChange();
    });
}

std::vector<MarkdownSourceRange> MarkdownHeadlessTextView::selectedRanges() const
{
    const int length = m_storage.length();
    const int start = std::clamp(m_selection.location, 0, length);
    return {{start, std::clamp(m_selection.length, 0, length - start)}};
}

void MarkdownHeadlessTextView::setSelectedRange(MarkdownSourceRange range)
{
    m_selection = range;
}

void MarkdownHeadlessTextView::setSelection(MarkdownSourceRange range)
{
    m_selection = range;
    if (m_coordinator)
        m_coordinator->textViewDidChangeSelection();
}

void MarkdownHeadlessTextView::insert(const QString& text)
{
    const MarkdownSourceRange range = selectedRanges().front();
    m_selection = {range.location + int(text.size()), 0};
    m_storage.replace(range, text);
    if (m_coordinator)
        m_coordinator->textViewDidChangeSelection();
}

void MarkdownHeadlessTextView::applyEdit(MarkdownSourceRange range, const QString& replacement,
                                         MarkdownSourceRange selection)
{
    m_undoSelections.beginEdit(selectedRanges().front());
    m_storage.replace(range, replacement);
    m_undoSelections.endEdit(selection);
    m_selection = selection;
    if (m_coordinator)
        m_coordinator->textViewDidChangeSelection();
}

void MarkdownHeadlessTextView::undo()
{
    const auto selection = m_undoSelections.undo([this] { m_storage.document()->undo(); });
    m_selection = selection.value_or(selectedRanges().front());
}

void MarkdownHeadlessTextView::redo()
{
    const auto selection = m_undoSelections.redo([this] { m_storage.document()->redo(); });
    m_selection = selection.value_or(selectedRanges().front());
}

void MarkdownHeadlessTextView::setMarkedText(const QString& text)
{
    m_marked = text;
    if (m_coordinator)
        m_coordinator->textViewDidChangeMarkedText();
}

void MarkdownHeadlessTextView::commitMarkedText(const QString& text)
{
    m_marked.clear();
    insert(text);
    if (m_coordinator)
        m_coordinator->textViewDidChangeMarkedText();
}

void MarkdownHeadlessTextView::installFragments(const MarkdownEditorFragmentStore& store)
{
    m_painter.setStore(store);
    ++m_fragmentRevision;
}

void MarkdownHeadlessTextView::setTemporaryHighlights(std::vector<MarkdownSourceRange> ranges, QColor color)
{
    m_painter.setHighlights(std::move(ranges), color);
}

void MarkdownHeadlessTextView::applyConfiguration(const MarkdownEditorConfiguration& config)
{
    m_painter.setConfiguration(config);
    m_storage.document()->setDefaultFont(MarkdownTextStorage::font(config.bodyFont()));
    MarkdownLayoutManager::Geometry geometry;
    geometry.readingWidth = config.readingWidth.value_or(0);
    geometry.horizontalInset = config.textInsets.horizontal;
    geometry.verticalInset = config.textInsets.vertical;
    m_layout->setGeometry(geometry);
}

}
