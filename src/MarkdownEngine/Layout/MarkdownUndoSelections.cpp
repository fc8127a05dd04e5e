#include "MarkdownEngine/Layout/MarkdownUndoSelections.h"

#include <QTextDocument>

namespace velmo::markdown {

MarkdownUndoSelections::MarkdownUndoSelections(QTextDocument& document)
    : m_document(document)
{
    // A new step replaces whatever could have been redone: entries that end at or past its end
    // are gone. (Entries ending inside it can never meet a step boundary again.)
    m_added = QObject::connect(&document, &QTextDocument::undoCommandAdded, [this] {
        m_entries.erase(m_entries.lower_bound(m_document.availableUndoSteps()), m_entries.end());
    });
}

MarkdownUndoSelections::~MarkdownUndoSelections()
{
    QObject::disconnect(m_added);
}

void MarkdownUndoSelections::beginEdit(MarkdownSourceRange before)
{
    m_pending = {m_document.availableUndoSteps(), before, {}, m_document.characterCount(), 0};
}

void MarkdownUndoSelections::endEdit(MarkdownSourceRange after)
{
    const int end = m_document.availableUndoSteps();
    if (end <= m_pending.start)
        return; // the edit made no undo step (undo switched off)
    m_pending.after = after;
    m_pending.lengthAfter = m_document.characterCount();
    m_entries[end] = m_pending;
}

std::optional<MarkdownSourceRange> MarkdownUndoSelections::undo(const std::function<void()>& perform)
{
    const auto entry = m_entries.find(m_document.availableUndoSteps());
    const bool matches = entry != m_entries.end() && entry->second.lengthAfter == m_document.characterCount();
    perform();
    if (matches && m_document.availableUndoSteps() == entry->second.start
        && m_document.characterCount() == entry->second.lengthBefore)
        return entry->second.before;
    return std::nullopt;
}

std::optional<MarkdownSourceRange> MarkdownUndoSelections::redo(const std::function<void()>& perform)
{
    const int start = m_document.availableUndoSteps();
    const int length = m_document.characterCount();
    perform();
    const auto entry = m_entries.find(m_document.availableUndoSteps());
    if (entry != m_entries.end() && entry->second.start == start && entry->second.lengthBefore == length
        && entry->second.lengthAfter == m_document.characterCount())
        return entry->second.after;
    return std::nullopt;
}

}
