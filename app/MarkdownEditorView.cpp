#include "MarkdownEditorView.h"

#include "MarkdownEngine/Editing/MarkdownEditingCommands.h"
#include "MarkdownEngine/Layout/MarkdownEditorCoordinator.h"
#include "MarkdownEngine/Styling/MarkdownASTStyler.h"

#include <QClipboard>
#include <QDesktopServices>
#include <QGuiApplication>
#include <QMimeData>
#include <QInputMethodEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QScrollBar>
#include <QTextCursor>
#include <utility>

namespace velmo::ui {

namespace {

using markdown::MarkdownEditorFragmentRole;
using markdown::MarkdownSourceRange;
using markdown::MarkdownTextAttributes;

bool opensInBrowser(const QUrl& url)
{
    const QString scheme = url.scheme().toLower();
    return scheme == QLatin1String("http") || scheme == QLatin1String("https") || scheme == QLatin1String("mailto");
}

}

MarkdownEditorView::MarkdownEditorView(QWidget* parent)
    : QTextEdit(parent)
    , m_layout(new markdown::MarkdownLayoutManager(m_storage))
    , m_painter(*m_layout)
    , m_undoSelections(*m_storage.document())
    , m_traceInput(qEnvironmentVariableIsSet("VELMO_TRACE_INPUT"))
{
    m_storage.document()->setDocumentLayout(m_layout);
    m_layout->setDecorationPainter([this](QPainter* painter, const QRectF& clip, bool foreground) {
        m_painter.paint(painter, clip, foreground);
    });
    setDocument(m_storage.document());
    setAcceptRichText(false);
    setFrameShape(QFrame::NoFrame);
    setLineWrapMode(QTextEdit::WidgetWidth);
    setMouseTracking(true);
    // Qt reports the caret moved by an edit before the edit itself: a selection change heard in
    // between would show a document whose text is behind the view's.
    connect(m_storage.document(), &QTextDocument::contentsChange, this, [this](int, int removed, int added) {
        if (!m_applying && (removed || added))
            m_textChanging = true;
    });
    connect(this, &QTextEdit::textChanged, this, [this] {
        const bool wasChanging = std::exchange(m_textChanging, false);
        if (m_applying || !wasChanging)
            return;
        m_storage.noteTextChanged();
        if (m_traceInput)
            qWarning().noquote() << "[input] text changed, length" << m_storage.length();
        if (m_coordinator)
            m_coordinator->textViewDidChange();
    });
    const auto selectionMoved = [this] {
        if (!m_applying && !m_textChanging && m_coordinator)
            m_coordinator->textViewDidChangeSelection();
    };
    connect(this, &QTextEdit::cursorPositionChanged, this, selectionMoved);
    connect(this, &QTextEdit::selectionChanged, this, selectionMoved);
}

MarkdownEditorView::~MarkdownEditorView() = default;

std::optional<std::pair<int, int>> MarkdownEditorView::markedRange() const
{
    if (!m_marked)
        return std::nullopt;
    return std::pair{m_markedStart, m_markedLength};
}

std::vector<MarkdownSourceRange> MarkdownEditorView::selectedRanges() const
{
    const QTextCursor cursor = textCursor();
    return {MarkdownSourceRange::fromBounds(cursor.selectionStart(), cursor.selectionEnd())};
}

void MarkdownEditorView::setSelectedRange(MarkdownSourceRange range)
{
    const int length = m_storage.length();
    const int start = std::clamp(range.location, 0, length);
    const int end = std::clamp(range.upperBound(), start, length);
    QTextCursor cursor = textCursor();
    cursor.setPosition(start);
    cursor.setPosition(end, QTextCursor::KeepAnchor);
    setTextCursor(cursor);
}

int MarkdownEditorView::selectionStart() const
{
    return textCursor().selectionStart();
}

int MarkdownEditorView::selectionLength() const
{
    return textCursor().selectionEnd() - textCursor().selectionStart();
}

QPointF MarkdownEditorView::visibleOrigin() const
{
    return QPointF(horizontalScrollBar()->value(), verticalScrollBar()->value());
}

void MarkdownEditorView::setVisibleOrigin(QPointF origin)
{
    horizontalScrollBar()->setValue(int(origin.x()));
    verticalScrollBar()->setValue(int(origin.y()));
}

void MarkdownEditorView::installFragments(const markdown::MarkdownEditorFragmentStore& store)
{
    m_painter.setStore(store);
    ++m_fragmentRevision;
    viewport()->update();
}

void MarkdownEditorView::installSelectionOverlay(const markdown::MarkdownEditorFragmentStore& overlay,
                                                 const std::vector<MarkdownSourceRange>& ranges)
{
    m_painter.setOverlay(overlay, ranges);
    ++m_fragmentRevision;
    viewport()->update();
}

void MarkdownEditorView::setTemporaryHighlights(std::vector<MarkdownSourceRange> ranges, QColor color)
{
    if (ranges.empty() && m_painter.highlights().empty())
        return;
    m_painter.setHighlights(std::move(ranges), color);
    viewport()->update();
}

void MarkdownEditorView::applyConfiguration(const markdown::MarkdownEditorConfiguration& config)
{
    m_painter.setConfiguration(config);
    const markdown::MarkdownEditorTheme& theme = config.theme;
    QPalette colors = palette();
    colors.setColor(QPalette::Base, theme.background);
    colors.setColor(QPalette::Text, theme.bodyText);
    QColor selection = theme.link;
    selection.setAlphaF(theme.isDark ? 0.45f : 0.25f);
    colors.setColor(QPalette::Highlight, selection);
    colors.setColor(QPalette::HighlightedText, theme.bodyText);
    setPalette(colors);
    m_storage.document()->setDefaultFont(markdown::MarkdownTextStorage::font(config.bodyFont()));
    m_layout->setDefaultParagraph(markdown::MarkdownASTStyler::baseParagraphStyle(config, config.bodySize));
    m_overscroll = config.overscroll;
    markdown::MarkdownLayoutManager::Geometry geometry = m_layout->geometry();
    geometry.readingWidth = config.readingWidth.value_or(0);
    geometry.horizontalInset = config.textInsets.horizontal;
    geometry.verticalInset = config.textInsets.vertical;
    geometry.bottomInset = m_overscroll.bottomInset(viewport()->height());
    m_layout->setGeometry(geometry);
    setVerticalScrollBarPolicy(config.wantsVerticalScroller() && config.scrollers.hasVerticalScroller
                                   ? Qt::ScrollBarAsNeeded : Qt::ScrollBarAlwaysOff);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    viewport()->update();
}

void MarkdownEditorView::updateOverscroll()
{
    markdown::MarkdownLayoutManager::Geometry geometry = m_layout->geometry();
    const double inset = m_overscroll.bottomInset(viewport()->height());
    if (std::abs(inset - geometry.bottomInset) < 0.5)
        return;
    geometry.bottomInset = inset;
    m_layout->setGeometry(geometry);
}

void MarkdownEditorView::scrollRangeToVisible(MarkdownSourceRange range)
{
    const QRectF caret = m_layout->caretRect(range.location);
    QScrollBar* bar = verticalScrollBar();
    const int top = bar->value();
    const int height = viewport()->height();
    if (caret.top() < top || caret.bottom() > top + height)
        bar->setValue(int(caret.top() - height / 3));
}

void MarkdownEditorView::replaceText(int location, int length, const QString& replacement, int caret)
{
    m_storage.replace({location, length}, replacement);
    setSelectedRange({caret, 0});
}

void MarkdownEditorView::applyEdit(MarkdownSourceRange range, const QString& replacement, MarkdownSourceRange selection)
{
    m_undoSelections.beginEdit(selectedRanges().front());
    m_storage.replace(range, replacement);
    m_undoSelections.endEdit(selection);
    setSelectedRange(selection);
}

void MarkdownEditorView::undoEdit()
{
    if (const auto selection = m_undoSelections.undo([this] { undo(); }))
        setSelectedRange(*selection);
}

void MarkdownEditorView::redoEdit()
{
    if (const auto selection = m_undoSelections.redo([this] { redo(); }))
        setSelectedRange(*selection);
}

bool MarkdownEditorView::copyTable(std::optional<markdown::MarkdownTableCopyFormat> format)
{
    using markdown::MarkdownEditingCommands;
    using markdown::MarkdownTableCopyFormat;
    const QString& text = m_storage.text();
    const MarkdownSourceRange selection = selectedRanges().front();
    const auto tsv = MarkdownEditingCommands::tableTSV(text, selection);
    if (!tsv)
        return false;
    const QString csv = MarkdownEditingCommands::tableClipboard(text, selection, MarkdownTableCopyFormat::csv).value_or(QString());
    const QString html = MarkdownEditingCommands::tableClipboard(text, selection, MarkdownTableCopyFormat::html).value_or(QString());
    auto* data = new QMimeData;
    data->setText(!format ? *tsv : *format == MarkdownTableCopyFormat::csv ? csv : html);
    if (format != MarkdownTableCopyFormat::csv)
        data->setHtml(html);
    if (format != MarkdownTableCopyFormat::html)
        data->setData(QStringLiteral("text/csv"), csv.toUtf8());
    QGuiApplication::clipboard()->setMimeData(data);
    return true;
}

void MarkdownEditorView::inputMethodEvent(QInputMethodEvent* event)
{
    const bool marking = !event->preeditString().isEmpty();
    if (marking && !m_marked)
        m_markedStart = textCursor().selectionStart();
    if (m_traceInput)
        qWarning().noquote() << "[input] method commit" << event->commitString() << "preedit" << event->preeditString();
    // Set before the event is handled: its commit reaches the storage inside the call.
    m_marked = marking;
    m_markedLength = marking ? int(event->preeditString().size()) : 0;
    QTextEdit::inputMethodEvent(event);
    if (m_coordinator)
        m_coordinator->textViewDidChangeMarkedText();
}

bool MarkdownEditorView::event(QEvent* event)
{
    if (event->type() == QEvent::ShortcutOverride) {
        const auto* key = static_cast<QKeyEvent*>(event);
        if (m_reservedShortcuts.contains(QKeySequence(key->keyCombination()))) {
            event->ignore();
            return true;
        }
    }
    return QTextEdit::event(event);
}

void MarkdownEditorView::keyPressEvent(QKeyEvent* event)
{
    if (m_traceInput)
        qWarning().noquote() << "[input] key" << event->key() << event->text();
    if (event->matches(QKeySequence::Undo) || event->matches(QKeySequence::Redo)) {
        event->matches(QKeySequence::Undo) ? undoEdit() : redoEdit();
        event->accept();
        return;
    }
    if (m_coordinator && !m_marked && !isReadOnly() && handleEditingKey(event)) {
        event->accept();
        return;
    }
    QTextEdit::keyPressEvent(event);
    if (m_coordinator && (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter))
        m_coordinator->textViewDidInsertNewline();
}

bool MarkdownEditorView::handleEditingKey(QKeyEvent* event)
{
    using Key = markdown::MarkdownEditorKeys::Key;
    const Qt::KeyboardModifiers modifiers = event->modifiers() & ~Qt::KeypadModifier;
    std::optional<Key> key;
    switch (event->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
        if (modifiers == Qt::NoModifier)
            key = Key::newline;
        else if (modifiers == Qt::ShiftModifier)
            key = Key::lineBreak;
        break;
    case Qt::Key_Tab:
        if (modifiers == Qt::NoModifier)
            key = Key::tab;
        break;
    case Qt::Key_Backtab:
        key = Key::backtab;
        break;
    case Qt::Key_Backspace:
        if (modifiers == Qt::NoModifier)
            key = Key::backspace;
        break;
    default:
        break;
    }
    // Shift+Tab means nothing else in a note, so it never moves the focus away.
    if (key)
        return m_coordinator->handleKey(*key) || key == Key::backtab;
    const QString typed = event->text();
    const bool plain = !(modifiers & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier));
    return plain && typed.size() == 1 && textCursor().hasSelection() && m_coordinator->handleTyped(typed.front());
}

bool MarkdownEditorView::activate(const QPoint& point, bool force)
{
    if (!m_coordinator)
        return false;
    const QPointF at = QPointF(point) + visibleOrigin();
    for (const auto& box : m_painter.checkboxes()) {
        if (box.rect.contains(at)) {
            m_coordinator->textViewDidToggleCheckbox(box.range);
            return true;
        }
    }
    const int position = m_layout->hitTest(at, Qt::FuzzyHit);
    const markdown::MarkdownEditorFragment* hit = m_coordinator->hitTarget(position);
    if (!hit)
        return false;
    // On the caret's line the source shows and a click places the caret, unless Ctrl is held.
    const auto& active = m_coordinator->lastActiveLines;
    const bool onActiveLine = std::any_of(active.begin(), active.end(),
                                          [&](MarkdownSourceRange line) { return line.containsInclusive(position); });
    if (onActiveLine && !force)
        return false;
    const MarkdownTextAttributes& a = hit->attributes;
    switch (hit->role) {
    case MarkdownEditorFragmentRole::link:
        if (!a.has(MarkdownTextAttributes::Link))
            return false;
        if (const QUrl url(a.link()); opensInBrowser(url))
            QDesktopServices::openUrl(url);
        else
            m_coordinator->textViewDidOpenURL(url);
        return true;
    case MarkdownEditorFragmentRole::wikiLink: {
        const QString id = a.wikiLinkID();
        const qsizetype hash = id.indexOf(u'#');
        m_coordinator->textViewDidActivateWikiLink(hash < 0 ? id : id.left(hash),
                                                   hash < 0 ? std::nullopt : std::optional(id.mid(hash + 1)));
        return true;
    }
    case MarkdownEditorFragmentRole::tag: {
        QString tag = m_storage.text().mid(hit->range.location, hit->range.length);
        if (tag.startsWith(u'#'))
            tag.remove(0, 1);
        m_coordinator->textViewDidActivateTag(tag);
        return true;
    }
    default:
        return false;
    }
}

void MarkdownEditorView::mousePressEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton
        && activate(event->position().toPoint(), event->modifiers().testFlag(Qt::ControlModifier))) {
        event->accept();
        return;
    }
    QTextEdit::mousePressEvent(event);
}

void MarkdownEditorView::mouseMoveEvent(QMouseEvent* event)
{
    QTextEdit::mouseMoveEvent(event);
    const QPointF at = event->position() + visibleOrigin();
    bool overBox = false;
    for (const auto& box : m_painter.checkboxes())
        overBox = overBox || box.rect.contains(at);
    viewport()->setCursor(overBox ? Qt::PointingHandCursor : Qt::IBeamCursor);
}

void MarkdownEditorView::resizeEvent(QResizeEvent* event)
{
    QTextEdit::resizeEvent(event);
    updateOverscroll();
}

}
