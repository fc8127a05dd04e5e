#include "Velmo/OpenDocument.h"

#include <QUuid>

namespace velmo::app {

OpenDocument::OpenDocument(editor::MarkdownFile file, QString text)
    : m_file(std::move(file))
    , m_id(QUuid::createUuid().toString(QUuid::WithoutBraces))
    , m_savedText(text)
    , m_text(std::move(text))
    , m_diskDate(m_file.modificationDate())
{
    m_caretState.updateText(m_text, m_storedCaret);
}

void OpenDocument::updateDirty()
{
    const bool dirty = m_text != m_savedText;
    if (dirty != m_isDirty) {
        m_isDirty = dirty;
        emit changed();
    }
}

void OpenDocument::setText(const QString& text)
{
    if (text == m_text)
        return;
    m_text = text;
    updateDirty();
    m_caretState.updateText(m_text, m_storedCaret);
    emit textChanged();
    emit changed();
}

void OpenDocument::setCaret(qsizetype caret)
{
    if (caret == m_storedCaret)
        return;
    m_storedCaret = caret;
    m_caretState.updateCaret(caret);
    emit caretChanged();
}

void OpenDocument::setStatistics(const markdown::MarkdownTextStatistics& statistics)
{
    m_statistics = statistics;
    emit changed();
}

void OpenDocument::setOutline(std::vector<markdown::OutlineEntry> outline)
{
    m_outline = std::move(outline);
    emit changed();
}

void OpenDocument::setState(const markdown::MarkdownSourceEditorState& state)
{
    m_state = state;
    emit changed();
}

void OpenDocument::noteSaved(const QString& text, std::optional<QDateTime> date)
{
    m_diskDate = date;
    m_savedText = text;
    updateDirty();
}

void OpenDocument::acceptSavedContents(const QString& text, std::optional<qsizetype> caret)
{
    m_diskDate = m_file.modificationDate();
    m_savedText = text;
    if (caret && *caret != m_storedCaret)
        setCaret(*caret);
    setText(text);
    updateDirty();
}

void OpenDocument::applyDiskContents(const QString& text, std::optional<QDateTime> date)
{
    m_savedText = text;
    m_storedCaret = std::min(m_storedCaret, text.size());
    setText(text);
    updateDirty();
    m_loadError.reset();
    m_diskDate = date;
    emit changed();
}

void OpenDocument::retarget(const QUrl& url)
{
    m_file = editor::MarkdownFile(url);
    m_diskDate = m_file.modificationDate();
    emit changed();
}

void OpenDocument::reload()
{
    try {
        const QString text = m_file.read(true);
        applyDiskContents(text, m_file.modificationDate());
    } catch (const editor::MarkdownFileError& error) {
        m_loadError = error.message();
        emit changed();
    }
}

void OpenDocument::save()
{
    m_file.write(m_text);
    acceptSavedContents(m_text, std::nullopt);
}

}
