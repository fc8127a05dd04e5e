#include "Velmo/EditorHostCoordinator.h"

#include "Velmo/AppState.h"

#include <QFileInfo>

namespace velmo::app {

EditorHostCoordinator::EditorHostCoordinator(AppState& state, markdown::MarkdownEditorCoordinator& coordinator,
                                             QObject* parent)
    : QObject(parent)
    , m_state(state)
    , m_coordinator(coordinator)
{
    m_coordinator.delegate = this;
    installDefaultCallbacks();
}

EditorHostCoordinator::~EditorHostCoordinator()
{
    if (m_coordinator.delegate == this)
        m_coordinator.delegate = nullptr;
}

void EditorHostCoordinator::installDefaultCallbacks()
{
    onStatistics = [this](const markdown::MarkdownTextStatistics& statistics) {
        if (m_document && !(m_document->statistics() == statistics))
            m_document->setStatistics(statistics);
    };
    onOutline = [this](const std::vector<markdown::OutlineEntry>& outline) {
        if (m_document && m_document->outline() != outline)
            m_document->setOutline(outline);
    };
    onWikiLink = [this](const QString& target, const std::optional<QString>&) {
        // Until link navigation exists: a note of that name in the folder, compared as a user would.
        for (const editor::MarkdownFile& note : m_state.workspace().notes()) {
            if (QFileInfo(note.url().toLocalFile()).completeBaseName().compare(target, Qt::CaseInsensitive) == 0) {
                m_state.open(note.url(), true);
                return;
            }
        }
        m_state.setStatusMessage(QStringLiteral("No note named %1").arg(target));
    };
    onOpenURLs = [this](const std::vector<QUrl>& urls) {
        for (const QUrl& url : urls)
            m_state.openAny(url);
    };
    onStatus = [this](const QString& text) {
        if (!text.isEmpty())
            m_state.setStatusMessage(text);
    };
    onAlert = [this](const QString& title, const QString& message) { m_state.warn(title, message); };
}

void EditorHostCoordinator::setDocument(OpenDocument* document)
{
    m_document = document;
    m_coordinator.documentId = document ? document->id() : QString();
    m_lineEnds = EditorLineEnds::of(document ? document->text() : QString());
    m_isEditing = true;
    m_coordinator.setText(editorText(), editorCaret());
    m_isEditing = false;
    publish();
}

void EditorHostCoordinator::synchronizeDocument()
{
    if (!m_document || m_isEditing || m_coordinator.isComposing())
        return;
    if (m_coordinator.text() != editorText()) {
        // A reload may bring other line ends.
        m_lineEnds = EditorLineEnds::of(m_document->text());
        if (const QString text = editorText(); m_coordinator.text() != text)
            m_coordinator.setText(text, editorCaret());
    }
    const int caret = editorCaret();
    if (m_coordinator.selectedRange().location != caret)
        m_coordinator.select({caret, 0});
}

QString EditorHostCoordinator::editorText() const
{
    return m_document ? m_lineEnds.toEditor(m_document->text()) : QString();
}

int EditorHostCoordinator::editorCaret() const
{
    if (!m_document)
        return 0;
    return int(m_lineEnds.toEditorOffset(m_document->text(), m_document->caret()));
}

qsizetype EditorHostCoordinator::noteCaret() const
{
    return m_lineEnds.toNoteOffset(m_coordinator.text(), m_coordinator.selectedRange().location);
}

void EditorHostCoordinator::publish()
{
    if (onFormatState) {
        const markdown::InlineSelectionState format = m_coordinator.formatState();
        if (!m_formatState || !(*m_formatState == format)) {
            m_formatState = format;
            onFormatState(format);
        }
    }
    if (onStatistics)
        onStatistics(m_coordinator.statistics);
    if (m_document)
        m_document->setState(m_coordinator.editorState);
}

void EditorHostCoordinator::coordinatorDidChangeText(markdown::MarkdownEditorCoordinator& coordinator)
{
    // No partial composition ever reaches the note.
    if (!m_document || coordinator.isComposing())
        return;
    m_isEditing = true;
    m_document->setCaret(noteCaret());
    m_document->setText(m_lineEnds.toNote(coordinator.text()));
    if (onTextChange)
        onTextChange();
    publish();
    m_isEditing = false;
}

void EditorHostCoordinator::coordinatorDidChangeSelection(markdown::MarkdownEditorCoordinator& coordinator,
                                                          const markdown::MarkdownSourceEditorState&)
{
    if (!m_document || coordinator.isComposing())
        return;
    m_document->setCaret(noteCaret());
    publish();
}

void EditorHostCoordinator::coordinatorDidChangeStatistics(markdown::MarkdownEditorCoordinator&,
                                                           const markdown::MarkdownTextStatistics& statistics)
{
    if (onStatistics)
        onStatistics(statistics);
}

void EditorHostCoordinator::coordinatorDidChangeOutline(markdown::MarkdownEditorCoordinator&,
                                                        const std::vector<markdown::OutlineEntry>& outline)
{
    if (onOutline)
        onOutline(outline);
}

void EditorHostCoordinator::coordinatorDidActivateWikiLink(const QString& target, const std::optional<QString>& heading)
{
    if (onWikiLink)
        onWikiLink(target, heading);
}

void EditorHostCoordinator::coordinatorDidActivateTag(const QString& tag)
{
    m_state.selectTag(tag);
}

void EditorHostCoordinator::coordinatorDidOpenURLs(const std::vector<QUrl>& urls)
{
    if (onOpenURLs)
        onOpenURLs(urls);
}

}
