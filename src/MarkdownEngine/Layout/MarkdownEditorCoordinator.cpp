#include "MarkdownEngine/Layout/MarkdownEditorCoordinator.h"

#include "MarkdownEngine/Core/MarkdownOutline.h"
#include "MarkdownEngine/Core/TextCharacters.h"
#include "MarkdownEngine/Layout/MarkdownTextStorage.h"
#include "MarkdownEngine/Layout/MarkdownTextView.h"

#include <QCoreApplication>
#include <QDebug>
#include <QEvent>
#include <QMetaObject>
#include <QStringList>
#include <QTextBlock>
#include <algorithm>

namespace velmo::markdown {

namespace {

using Role = MarkdownEditorFragmentRole;

// Past this many fragments restyled by caret moves, the next move styles the whole note again.
constexpr std::size_t maximumOverlayFragments = 20000;

bool isSelectionSensitive(const MarkdownEditorFragment& f)
{
    if (f.isHidden)
        return true;
    switch (f.role) {
    case Role::headingMarker: case Role::blockquoteMarker: case Role::listMarker: case Role::fenceMarker:
    case Role::fenceInfo: case Role::codeMarker: case Role::linkMarker: case Role::linkDestination:
    case Role::table: case Role::tableRule: case Role::tableAlignment: case Role::imageEmbed: case Role::imageAlt:
    case Role::latex: case Role::directive: case Role::directiveMarker: case Role::footnoteMarker:
    case Role::emphasisMarker: case Role::escapeMarker:
        return true;
    default:
        return false;
    }
}

MarkdownSourceRange wholeLines(QStringView text, MarkdownSourceRange range)
{
    const chars::LineBounds first = chars::lineAt(text, std::clamp<qsizetype>(range.location, 0, text.size()));
    const chars::LineBounds last = chars::lineAt(text, std::clamp<qsizetype>(range.upperBound(), 0, text.size()));
    return MarkdownSourceRange::fromBounds(int(first.start), int(last.end));
}

// What `after` has in place of `before` between their common start and common end.
MarkdownSourceRange changed(QStringView before, QStringView after)
{
    const chars::Difference d = chars::difference(before, after);
    return MarkdownSourceRange::fromBounds(int(d.start), int(d.afterEnd));
}

const QEvent::Type releaseEvent = QEvent::Type(QEvent::registerEventType());

QString describe(const MarkdownStyledText::Run& run)
{
    QString out = QStringLiteral("%1:%2").arg(run.range.location).arg(run.range.length);
    const MarkdownTextAttributes& a = run.attributes;
    if (a.has(MarkdownTextAttributes::Role))
        out += u' ' + rawValue(a.role);
    if (a.has(MarkdownTextAttributes::Hidden) && a.hidden)
        out += QStringLiteral(" hidden");
    if (a.has(MarkdownTextAttributes::Font))
        out += QStringLiteral(" %1@%2").arg(a.font.family()).arg(a.font.pointSize);
    return out;
}

void traceRuns(const char* label, const std::vector<MarkdownStyledText::Run>& runs)
{
    constexpr std::size_t samples = 8;
    QStringList parts;
    for (std::size_t i = 0; i < runs.size() && i < samples; ++i)
        parts << describe(runs[i]);
    qWarning().noquote() << label << QStringLiteral("runs=%1 samples=").arg(runs.size()) + parts.join(QStringLiteral(", "));
}

}

MarkdownEditorCoordinator::MarkdownEditorCoordinator(MarkdownTextView& view, MarkdownEditorConfiguration configuration,
                                                     QObject* parent)
    : QObject(parent)
    , textView(view)
    , config(std::move(configuration))
    , attachmentFactory(std::make_unique<MarkdownEditorAttachmentFactory>(config.services))
    , m_traceStyle(qEnvironmentVariableIsSet("VELMO_TRACE_STYLE"))
{
    attachmentFactory->inlineLatexVerticalPadding = config.inlineLatex.verticalPadding;
    textView.applyConfiguration(config);
    listenToBus();
}

MarkdownEditorCoordinator::~MarkdownEditorCoordinator() = default;

QString MarkdownEditorCoordinator::text() const
{
    return textView.textStorage().text();
}

MarkdownSourceRange MarkdownEditorCoordinator::selectedRange() const
{
    const auto ranges = textView.selectedRanges();
    return ranges.empty() ? MarkdownSourceRange{} : ranges.front();
}

bool MarkdownEditorCoordinator::isComposing() const
{
    return textView.inputTransactionDepth() >= 1 || textView.hasMarkedText();
}

MarkdownSourceEditorState MarkdownEditorCoordinator::makeEditorState() const
{
    const QString t = text();
    MarkdownSourceEditorState state;
    for (MarkdownSourceRange range : textView.selectedRanges()) {
        range = range.intersection({0, int(t.size())});
        state.selectedRanges.push_back(range);
        if (range.length > 0) {
            const chars::LineBounds first = chars::lineAt(t, range.location);
            const chars::LineBounds last = chars::lineAt(t, range.upperBound() - 1);
            state.selectedLineRanges.push_back(MarkdownSourceRange::fromBounds(int(first.start), int(last.end)));
        }
    }
    return state;
}

MarkdownASTStyler::Request MarkdownEditorCoordinator::request() const
{
    MarkdownASTStyler::Request r;
    r.document = &document;
    r.selection = editorState;
    r.config = &config;
    r.attachments = attachmentFactory.get();
    r.maximumEmbedWidth = maximumEmbedWidth;
    r.highlightedCode = &lastHighlightedCode;
    return r;
}

void MarkdownEditorCoordinator::textViewDidChange()
{
    if (textView.isApplyingStyle() || isComposing())
        return;
    ++textRevision;
    scheduleRestyle();
    refreshInlineSelection();
    if (delegate)
        delegate->coordinatorDidChangeText(*this);
}

void MarkdownEditorCoordinator::scheduleRestyle()
{
    if (scheduled)
        return;
    scheduled = true;
    // One pass per turn of the event loop, after the key event that asked for it.
    QMetaObject::invokeMethod(this, [this] { restyleNow(); }, Qt::QueuedConnection);
}

void MarkdownEditorCoordinator::textViewDidChangeSelection()
{
    if (textView.isApplyingStyle() || isComposing())
        return;
    editorState = makeEditorState();
    refreshInlineSelection();
    if (delegate)
        delegate->coordinatorDidChangeSelection(*this, editorState);
    tellStatistics();
    const auto activeLines = MarkdownASTStyler::activeLineRanges(editorState, text());
    if (activeLines == lastActiveLines
        && MarkdownASTStyler::formulaUnderSelection(editorState, fragments) == lastFormulaUnderCaret)
        return;
    scheduleRestyle();
}

void MarkdownEditorCoordinator::textViewDidChangeMarkedText()
{
    refreshInlineSelection();
    if (!isComposing())
        scheduleRestyle();
}

void MarkdownEditorCoordinator::restyleNow()
{
    scheduled = false;
    // The storage must not change under a composition; the pass is made up when it ends.
    if (isComposing())
        return;
    const QString t = text();
    const bool sameDocument = document.text == t && document.options == parseOptions;
    if (isRestyled && sameDocument) {
        restyleSelectionNow();
        textView.refreshTypingAttributesAtCaret();
        return;
    }
    if (!sameDocument) {
        // Whatever the reparse does not take over is freed after the frame.
        MarkdownDocument old = std::move(document);
        if (old.options == parseOptions) {
            MarkdownDocumentChange change;
            document = MarkdownDocument::reparse(std::move(old), t, change);
            documentChange = change;
        } else {
            document = MarkdownDocument::parse(t, parseOptions);
            documentChange.reset();
        }
        retire(std::move(old));
    }
    editorState = makeEditorState();
    lastHighlightedCode = highlightedCode();
    MarkdownASTStyler::Result result = styleFromStore(documentChange);
    documentChange.reset();
    ++fullStylePassCount;
    apply(result, result.activeLines, !isRestyled);
    installStore(std::move(result.fragments));
    lastText = t;
    lastActiveLines = result.activeLines;
    lastFormulaUnderCaret = MarkdownASTStyler::formulaUnderSelection(editorState, fragments);
    isRestyled = true;
    refreshOutline();
    tellStatistics();
    applyFindHighlights();
    textView.refreshTypingAttributesAtCaret();
    traceStorage("\n[trace] storage ");
}

MarkdownASTStyler::Result MarkdownEditorCoordinator::styleFromStore(const std::optional<MarkdownDocumentChange>& change)
{
    MarkdownASTStyler::Result result;
    if (m_storeReusable && change && maximumEmbedWidth == m_storeEmbedWidth) {
        // Shared, the store would be copied rather than edited in place: the view lets go.
        textView.installFragments(MarkdownEditorFragmentStore::empty());
        result = MarkdownASTStyler::restyle(request(), std::move(fragments), *change, overlayRanges);
    } else {
        result = MarkdownASTStyler::style(request());
    }
    m_storeReusable = true;
    m_storeEmbedWidth = maximumEmbedWidth;
    restyledBlockCount = result.styledBlocks;
    return result;
}

void MarkdownEditorCoordinator::installStore(MarkdownEditorFragmentStore store)
{
    std::swap(fragments, store);
    retire(std::move(store));
    selectionOverlay = {};
    overlayRanges.clear();
    textView.installSelectionOverlay(selectionOverlay, overlayRanges);
    selectionSensitiveRanges.clear();
    textView.installFragments(fragments);
}

void MarkdownEditorCoordinator::retire(MarkdownDocument&& old)
{
    // A second pass before the release ran frees the older one here.
    m_retiredDocument = std::move(old);
    postRelease();
}

void MarkdownEditorCoordinator::retire(MarkdownEditorFragmentStore&& old)
{
    m_retiredStore = std::move(old);
    postRelease();
}

void MarkdownEditorCoordinator::postRelease()
{
    if (m_releasePosted)
        return;
    m_releasePosted = true;
    // Low priority, as the widget's repaint is posted: queued behind it, the release comes
    // after the frame the pass was made for.
    QCoreApplication::postEvent(this, new QEvent(releaseEvent), Qt::LowEventPriority);
}

bool MarkdownEditorCoordinator::event(QEvent* event)
{
    if (event->type() != releaseEvent)
        return QObject::event(event);
    m_releasePosted = false;
    m_retiredDocument = {};
    m_retiredStore = {};
    return true;
}

MarkdownSourceRange MarkdownEditorCoordinator::changedTextRange() const
{
    const QString t = text();
    if (lastText == t)
        return {};
    if (lastText.isEmpty())
        return {0, int(t.size())};
    return changed(lastText, t);
}

MarkdownSourceRange MarkdownEditorCoordinator::dirtyRange(const std::vector<MarkdownSourceRange>& activeLines) const
{
    const QString t = text();
    std::vector<MarkdownSourceRange> ranges = activeLines;
    ranges.insert(ranges.end(), lastActiveLines.begin(), lastActiveLines.end());
    ranges.push_back(changedTextRange());
    std::optional<MarkdownSourceRange> united;
    for (const MarkdownSourceRange& r : ranges) {
        if (r.length < 1 && r.location < 1)
            continue;
        united = united ? united->united(r) : r;
    }
    if (!united)
        return {};
    return wholeLines(t, *united).intersection({0, int(t.size())});
}

MarkdownSourceRange MarkdownEditorCoordinator::alignedToTables(MarkdownSourceRange range) const
{
    // Kerning lines up a table's columns from all its rows: a changed row rewrites the table.
    for (const MarkdownBlock& block : document.blocks) {
        if (block.range.location > range.upperBound())
            break;
        if (block.is<block_kind::Table>() && (block.range.intersects(range) || block.range.containsInclusive(range.location)))
            range = range.united(block.range);
    }
    return range;
}

void MarkdownEditorCoordinator::apply(const MarkdownASTStyler::Result& result,
                                      const std::vector<MarkdownSourceRange>& activeLines, bool forceAllAttributes)
{
    MarkdownTextStorage& storage = textView.textStorage();
    const auto selection = textView.selectedRanges();
    const QPointF origin = textView.visibleOrigin();
    textView.setApplyingStyle(true);
    const MarkdownSourceRange dirty = dirtyRange(activeLines);
    const int length = storage.length();
    const MarkdownSourceRange whole{0, length};
    if (result.attributedString.text() != storage.text()) {
        // The text moved under the pass: leave the storage and come back next turn.
        lastAppliedRange = {};
        textView.setApplyingStyle(false);
        isRestyled = false;
        scheduleRestyle();
        return;
    }
    MarkdownSourceRange range = forceAllAttributes || 2 * dirty.length >= length ? whole : alignedToTables(dirty);
    range = range.intersection(whole);
    lastAppliedRange = range;
    if (range.length > 0 || range == whole)
        copyStyled(result.attributedString, range);
    if (textView.selectedRanges() != selection && !selection.empty())
        textView.setSelectedRange(selection.front());
    if (textView.visibleOrigin() != origin)
        textView.setVisibleOrigin(origin);
    textView.setApplyingStyle(false);
    editorState = makeEditorState();
    trace(result.attributedString);
}

void MarkdownEditorCoordinator::copyStyled(const MarkdownStyledNote& styled, MarkdownSourceRange range)
{
    MarkdownTextStorage& storage = textView.textStorage();
    // A large range goes in pieces of whole lines: the styled text of a whole large note at
    // once would hold a run for every change of style in it.
    constexpr int piece = 64 * 1024;
    if (range.location <= 0 && range.upperBound() >= styled.length() && styled.length() <= piece) {
        storage.copyAttributes(styled.resolved(), range);
        return;
    }
    const QString& text = styled.text();
    int start = range.location;
    do {
        int end = range.upperBound();
        if (end - start > piece) {
            const qsizetype newline = text.indexOf(u'\n', start + piece);
            if (newline >= 0 && newline + 1 < end)
                end = int(newline) + 1;
        }
        // Only the lines written are worked out, from a character early: an empty last line
        // takes its paragraph from the run before it.
        const MarkdownSourceRange part = MarkdownSourceRange::fromBounds(start, end);
        const MarkdownSourceRange lines = wholeLines(text, part);
        const MarkdownStyledNote::Stretch stretch =
            styled.stretch(MarkdownSourceRange::fromBounds(std::max(0, lines.location - 1), lines.upperBound()));
        storage.copyAttributes(stretch.styled, part, stretch.offset);
        start = end;
    } while (start < range.upperBound());
}

MarkdownTextAttributes MarkdownEditorCoordinator::baseAttributes() const
{
    const MarkdownFontDescriptor body = config.bodyFont();
    MarkdownParagraphMetrics paragraph = MarkdownASTStyler::baseParagraphStyle(config, body.pointSize);
    const double factor = config.paragraph.blankLineFactor;
    if (factor >= 0 && factor < 1)
        paragraph.paragraphSpacing *= float(std::max(factor - 0.7, 0.0) / 0.3);
    MarkdownTextAttributes base;
    base.setFont(body).setForeground(config.theme.bodyText).setParagraph(paragraph);
    return base;
}

void MarkdownEditorCoordinator::restyleSelectionNow()
{
    editorState = makeEditorState();
    const QString t = text();
    const auto activeLines = MarkdownASTStyler::activeLineRanges(editorState, t);
    const auto formula = MarkdownASTStyler::formulaUnderSelection(editorState, fragments);
    if (activeLines == lastActiveLines && formula == lastFormulaUnderCaret)
        return;
    std::vector<MarkdownSourceRange> affected = activeLines;
    affected.insert(affected.end(), lastActiveLines.begin(), lastActiveLines.end());
    if (config.markers.revealsMarkersOnActiveLine && !config.rawSourceMode) {
        const bool touches = std::any_of(affected.begin(), affected.end(), [&](MarkdownSourceRange line) {
            const auto inStore = fragments.fragments(line);
            return std::any_of(inStore.begin(), inStore.end(),
                               [](const MarkdownEditorFragment* f) { return isSelectionSensitive(*f); })
                || std::any_of(selectionSensitiveRanges.begin(), selectionSensitiveRanges.end(),
                               [&](MarkdownSourceRange r) { return r.intersection(line).length > 0; });
        });
        if (!touches) {
            lastActiveLines = activeLines;
            return;
        }
    }
    const MarkdownASTStyler::Request req = request();
    MarkdownASTStyler::SelectionFragments selected = MarkdownASTStyler::selectionFragments(req, affected);
    if (selected.ranges.empty()) {
        lastActiveLines = activeLines;
        return;
    }
    const auto intersectsAny = [&](const MarkdownEditorFragment& f) {
        return std::any_of(selected.ranges.begin(), selected.ranges.end(),
                           [&](MarkdownSourceRange r) { return f.intersects(r); });
    };
    // The overlay keeps its fragments outside the new ranges and takes the new ones; rebuilding
    // the whole store would cost a sort of every fragment of the note.
    std::vector<MarkdownEditorFragment> overlay;
    for (const MarkdownEditorFragment& f : selectionOverlay.fragments()) {
        if (!intersectsAny(f))
            overlay.push_back(f);
    }
    overlay.insert(overlay.end(), selected.fragments.begin(), selected.fragments.end());
    std::vector<MarkdownSourceRange> ranges = overlayRanges;
    ranges.insert(ranges.end(), selected.ranges.begin(), selected.ranges.end());
    std::sort(ranges.begin(), ranges.end(), [](auto a, auto b) { return a.location < b.location; });
    std::vector<MarkdownSourceRange> merged;
    for (const MarkdownSourceRange& r : ranges) {
        if (!merged.empty() && r.location <= merged.back().upperBound())
            merged.back() = merged.back().united(r);
        else
            merged.push_back(r);
    }
    selectionOverlay = MarkdownEditorFragmentStore(std::move(overlay));
    overlayRanges = std::move(merged);
    for (const MarkdownEditorFragment& f : selected.fragments) {
        if (isSelectionSensitive(f))
            selectionSensitiveRanges.push_back(f.range);
    }

    MarkdownTextStorage& storage = textView.textStorage();
    const auto selection = textView.selectedRanges();
    const QPointF origin = textView.visibleOrigin();
    textView.setApplyingStyle(true);
    const bool touchesTable = std::any_of(document.blocks.begin(), document.blocks.end(), [&](const MarkdownBlock& b) {
        return b.is<block_kind::Table>() && std::any_of(selected.ranges.begin(), selected.ranges.end(),
                                                         [&](MarkdownSourceRange r) { return b.range.intersects(r); });
    });
    if (touchesTable || selectionOverlay.fragments().size() > maximumOverlayFragments) {
        // Column kerning needs the whole table's rows: the store made again where the selection
        // reaches, and the tables' lines copied.
        MarkdownASTStyler::Result result =
            styleFromStore(MarkdownDocumentChange::none(document.blocks.size(), int(t.size())));
        for (const MarkdownSourceRange& r : selected.ranges)
            copyStyled(result.attributedString, alignedToTables(wholeLines(t, r)));
        installStore(std::move(result.fragments));
    } else {
        const MarkdownTextAttributes base = baseAttributes();
        for (const MarkdownSourceRange& r : selected.ranges) {
            // The range's own lines: a range ending at a line's start leaves that line alone.
            const MarkdownSourceRange lines =
                wholeLines(t, {r.location, std::max(0, r.length - 1)}).intersection({0, int(t.size())});
            MarkdownStyledText local(t.mid(lines.location, lines.length), base);
            std::vector<MarkdownEditorFragment> shifted;
            for (const MarkdownEditorFragment* f : selectionOverlay.fragments(lines)) {
                MarkdownEditorFragment moved = *f;
                moved.range = f->range.intersection(lines);
                moved.range.location -= lines.location;
                shifted.push_back(std::move(moved));
            }
            MarkdownEditorFragmentStore(std::move(shifted)).apply(local, base);
            storage.copyAttributes(local, lines, lines.location);
        }
        textView.installSelectionOverlay(selectionOverlay, overlayRanges);
    }
    if (textView.selectedRanges() != selection && !selection.empty())
        textView.setSelectedRange(selection.front());
    if (textView.visibleOrigin() != origin)
        textView.setVisibleOrigin(origin);
    textView.setApplyingStyle(false);
    ++selectionStylePassCount;
    lastActiveLines = activeLines;
    lastFormulaUnderCaret = formula;
    applyFindHighlights();
}

QHash<QString, MarkdownStyledText> MarkdownEditorCoordinator::highlightedCode()
{
    QHash<QString, MarkdownStyledText> result;
    // The cache goes by language and content, not by codeKey's location: typing above a fence
    // moves it without changing its colours. It keeps only the fences the note still has.
    QHash<QString, MarkdownStyledText> cache;
    const std::shared_ptr<SyntaxHighlighter>& highlighter = config.services.syntaxHighlighter;
    for (const MarkdownBlock& block : document.blocks) {
        const auto* fence = block.as<block_kind::Fence>();
        if (!fence || block.contentRange.length <= 0)
            continue;
        const QString content = document.text.mid(block.contentRange.location, block.contentRange.length);
        const QString cacheKey = fence->language.value_or(QString()) + QChar(0x1) + content;
        if (const auto it = codeCache.constFind(cacheKey); it != codeCache.constEnd()) {
            cache.insert(cacheKey, *it);
            result.insert(MarkdownASTStyler::codeKey(block), *it);
            continue;
        }
        if (!highlighter)
            continue;
        // A failed colouring is asked again on the next pass.
        if (auto coloured = highlighter->highlightedCode(content, fence->language)) {
            cache.insert(cacheKey, *coloured);
            result.insert(MarkdownASTStyler::codeKey(block), std::move(*coloured));
        }
    }
    codeCache = std::move(cache);
    return result;
}

void MarkdownEditorCoordinator::setText(const QString& newText, int caretAt)
{
    ++textRevision;
    isRestyled = false;
    m_storeReusable = false;
    textView.setApplyingStyle(true);
    textView.textStorage().resetText(newText);
    textView.setSelectedRange({std::clamp(caretAt, 0, int(newText.size())), 0});
    textView.setApplyingStyle(false);
    textView.resetInputNotifications();
    editorState = makeEditorState();
    lastText.clear();
    codeCache.clear();
    restyleNow();
}

void MarkdownEditorCoordinator::update(const MarkdownEditorConfiguration& newConfig)
{
    const bool sameStyle = config.hasSameStyle(newConfig);
    const MarkdownEditorServices& a = config.services;
    const MarkdownEditorServices& b = newConfig.services;
    const bool sameServices = a.wikiLinks == b.wikiLinks && a.images == b.images
        && a.syntaxHighlighter == b.syntaxHighlighter && a.latex == b.latex && a.diagrams == b.diagrams;
    config = newConfig;
    textView.applyConfiguration(config);
    if (!sameStyle || !sameServices) {
        attachmentFactory = std::make_unique<MarkdownEditorAttachmentFactory>(config.services);
        attachmentFactory->inlineLatexVerticalPadding = config.inlineLatex.verticalPadding;
        m_storeReusable = false;
    }
    if (!sameStyle) {
        codeCache.clear();
        isRestyled = false;
        m_storeReusable = false;
        restyleNow();
    }
}

void MarkdownEditorCoordinator::attachmentDidBecomeReady()
{
    attachmentFactory->invalidate();
    isRestyled = false;
    m_storeReusable = false;
    restyleNow();
}

void MarkdownEditorCoordinator::select(MarkdownSourceRange range)
{
    const int length = int(text().size());
    const int start = std::clamp(range.location, 0, length);
    textView.setSelectedRange({start, std::clamp(range.length, 0, length - start)});
}

void MarkdownEditorCoordinator::selectAndReveal(MarkdownSourceRange range)
{
    select(range);
    textView.scrollRangeToVisible(selectedRange());
}

bool MarkdownEditorCoordinator::revealHeading(const QString& title)
{
    const QString t = text();
    const auto entry = MarkdownOutline::entry(title, t);
    if (!entry)
        return false;
    selectAndReveal({entry->lineStart, 0});
    return true;
}

void MarkdownEditorCoordinator::revealLine(int line, const QString& query)
{
    const QString t = text();
    int start = 0;
    for (int current = 1; current < line && start < t.size(); ++current) {
        const chars::LineBounds bounds = chars::lineAt(t, start);
        if (bounds.end == bounds.start || bounds.end >= t.size()) {
            start = int(bounds.end);
            break;
        }
        start = int(bounds.end);
    }
    const chars::LineBounds bounds = chars::lineAt(t, std::min<qsizetype>(start, t.size()));
    const QStringView lineText = QStringView(t).mid(bounds.start, bounds.contentsEnd - bounds.start);
    const qsizetype found = query.isEmpty() ? -1 : lineText.indexOf(query, 0, Qt::CaseInsensitive);
    if (found >= 0)
        selectAndReveal({int(bounds.start + found), int(query.size())});
    else
        selectAndReveal({int(bounds.start), 0});
}

void MarkdownEditorCoordinator::performReveals(EditorReveals& reveals)
{
    while (auto reveal = reveals.take()) {
        if (const auto* r = std::get_if<EditorReveal::Range>(&reveal->kind))
            selectAndReveal(r->range);
        else if (const auto* f = std::get_if<EditorReveal::Find>(&reveal->kind))
            revealLine(f->line, f->query);
        else if (const auto* h = std::get_if<EditorReveal::Heading>(&reveal->kind))
            revealHeading(h->title);
    }
}

void MarkdownEditorCoordinator::applyFindHighlights()
{
    if (isComposing())
        return;
    const int length = int(text().size());
    std::vector<MarkdownSourceRange> clipped;
    for (const MarkdownSourceRange& r : findHighlights) {
        const MarkdownSourceRange c = r.intersection({0, length});
        if (c.length > 0)
            clipped.push_back(c);
    }
    QColor color = config.theme.findMatchHighlight;
    color.setAlphaF(float(config.markers.findMatchHighlightAlpha));
    textView.setTemporaryHighlights(std::move(clipped), color);
}

void MarkdownEditorCoordinator::refreshOutline()
{
    const QString t = text();
    if (lastOutlineText && *lastOutlineText == t)
        return;
    if (!lastOutlineText || !shiftOutline(*lastOutlineText, t))
        outlineEntries = MarkdownOutline::entries(t);
    lastOutlineText = t;
    if (delegate)
        delegate->coordinatorDidChangeOutline(*this, outlineEntries);
}

bool MarkdownEditorCoordinator::shiftOutline(const QString& before, const QString& after)
{
    // Reading the outline walks every line of the note. An edit inside one line that starts,
    // past its leading space, with no "#", "`" or "~" before or after it can neither make nor
    // end a heading or a fence: the entries stay and those past it move by the change in length.
    const MarkdownSourceRange edit = changed(before, after);
    const qsizetype prefix = edit.location;
    const qsizetype suffix = after.size() - edit.upperBound();
    const auto isPlainLine = [](QStringView text, qsizetype changedStart, qsizetype changedEnd) {
        for (qsizetype i = changedStart; i < changedEnd; ++i) {
            if (chars::isNewline(text[i].unicode()))
                return false;
        }
        const chars::LineBounds line = chars::lineAt(text, changedStart);
        const QStringView content = chars::trimmed(text.mid(line.start, line.contentsEnd - line.start));
        return content.isEmpty() || (content[0] != u'#' && content[0] != u'`' && content[0] != u'~');
    };
    // A character put between a CR and its LF splits one line break into two.
    if ((prefix > 0 && before[prefix - 1] == u'\r') || !isPlainLine(before, prefix, before.size() - suffix)
        || !isPlainLine(after, prefix, after.size() - suffix))
        return false;
    const int delta = int(after.size() - before.size());
    for (OutlineEntry& entry : outlineEntries) {
        if (entry.lineStart > prefix) {
            entry.lineStart += delta;
            entry.contentStart += delta;
        }
    }
    return true;
}

InlineSelectionState MarkdownEditorCoordinator::formatState() const
{
    InlineSelectionState state;
    const MarkdownTextStorage& storage = textView.textStorage();
    const MarkdownSourceRange range = selectedRange();
    // The attributes typing would take: those of the character before a caret.
    const int at = range.length > 0 ? range.location : range.location - 1;
    if (at < 0 || at >= storage.length())
        return state;
    const QTextBlock block = storage.document()->findBlock(at);
    const MarkdownBlockStyle* style = storage.blockStyle(block);
    if (!style)
        return state;
    const int local = at - block.position();
    for (const MarkdownStyledText::Run& run : style->runs) {
        if (!run.range.contains(local))
            continue;
        const MarkdownTextAttributes& a = run.attributes;
        state.bold = a.has(MarkdownTextAttributes::Font) && a.font.isBold() && a.role != Role::heading;
        state.italic = a.has(MarkdownTextAttributes::Font) && a.font.italic;
        state.highlight = a.has(MarkdownTextAttributes::Background)
            && a.background == config.theme.highlightColor.rgba();
        state.strikethrough = a.has(MarkdownTextAttributes::Strikethrough);
        state.code = a.has(MarkdownTextAttributes::Role) && a.role == Role::inlineCode;
    }
    return state;
}

void MarkdownEditorCoordinator::refreshInlineSelection()
{
    inlineSelection = formatState();
}

MarkdownTextStatistics MarkdownEditorCoordinator::measureStatistics()
{
    const QString t = text();
    const MarkdownSourceRange range = selectedRange().intersection({0, int(t.size())});
    if (range.length > 0) {
        ++statisticsMeasurementCount;
        return MarkdownTextStatistics::measure(t, range, true);
    }
    if (cachedStatisticsRevision != textRevision) {
        ++statisticsMeasurementCount;
        if (m_statisticsText.isNull())
            cachedDocumentStatistics = MarkdownTextStatistics::measure(t, {0, int(t.size())}, false);
        else if (m_statisticsText != t)
            cachedDocumentStatistics = MarkdownTextStatistics::remeasured(cachedDocumentStatistics, m_statisticsText, t,
                                                                          changed(m_statisticsText, t));
        cachedStatisticsRevision = textRevision;
        m_statisticsText = t;
    }
    return cachedDocumentStatistics;
}

void MarkdownEditorCoordinator::tellStatistics()
{
    const MarkdownTextStatistics measured = measureStatistics();
    if (measured == statistics)
        return;
    statistics = measured;
    if (delegate)
        delegate->coordinatorDidChangeStatistics(*this, statistics);
}

const MarkdownEditorFragment* MarkdownEditorCoordinator::hitTarget(int position) const
{
    for (const MarkdownSourceRange& r : overlayRanges) {
        if (r.contains(position))
            return selectionOverlay.hitTarget(position);
    }
    return fragments.hitTarget(position);
}

void MarkdownEditorCoordinator::textViewDidToggleCheckbox(MarkdownSourceRange box)
{
    const QString t = text();
    if (box.length != 3 || box.upperBound() > t.size())
        return;
    const QChar mark = t.at(box.location + 1);
    const QString replacement = (mark == u' ') ? QStringLiteral("x") : QStringLiteral(" ");
    textView.textStorage().replace({box.location + 1, 1}, replacement);
}

void MarkdownEditorCoordinator::textViewDidActivateWikiLink(const QString& target, const std::optional<QString>& heading)
{
    if (delegate)
        delegate->coordinatorDidActivateWikiLink(target, heading);
}

void MarkdownEditorCoordinator::textViewDidActivateTag(const QString& tag)
{
    if (delegate)
        delegate->coordinatorDidActivateTag(tag);
}

void MarkdownEditorCoordinator::textViewDidOpenURL(const QUrl& url)
{
    if (delegate)
        delegate->coordinatorDidOpenURLs({url});
}

void MarkdownEditorCoordinator::traceStorage(const char* label) const
{
    if (m_traceStyle)
        traceRuns(label, textView.textStorage().runs());
}

void MarkdownEditorCoordinator::trace(const MarkdownStyledNote& final) const
{
    if (m_traceStyle)
        traceRuns("[trace] final   ", final.resolved().runs());
}

}
