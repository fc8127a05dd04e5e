#pragma once

#include "Editor/Model/MarkdownFile.h"
#include "MarkdownEngine/Core/MarkdownSourceEditorState.h"
#include "MarkdownEngine/Core/MarkdownTextStatistics.h"
#include "MarkdownEngine/Core/OutlineEntry.h"
#include "Velmo/DocumentCaretState.h"

#include <QDateTime>
#include <QObject>
#include <QString>
#include <QUrl>
#include <optional>
#include <vector>

namespace velmo::app {

// One open note: its file, the text as edited and what is believed to be on disk. Its `id`
// lives as long as the object and survives renames, so a write in flight still finds it.
class OpenDocument : public QObject {
    Q_OBJECT

public:
    OpenDocument(editor::MarkdownFile file, QString text);
    OpenDocument(const OpenDocument&) = delete;
    OpenDocument& operator=(const OpenDocument&) = delete;

    const editor::MarkdownFile& file() const { return m_file; }
    const QString& id() const { return m_id; }
    const QString& savedText() const { return m_savedText; }
    const QString& text() const { return m_text; }
    bool isDirty() const { return m_isDirty; }
    const markdown::MarkdownTextStatistics& statistics() const { return m_statistics; }
    const std::vector<markdown::OutlineEntry>& outline() const { return m_outline; }
    qsizetype caret() const { return m_storedCaret; }
    DocumentCaretState& caretState() { return m_caretState; }
    const DocumentCaretState& caretState() const { return m_caretState; }
    const markdown::MarkdownSourceEditorState& state() const { return m_state; }
    const std::optional<QString>& loadError() const { return m_loadError; }
    const std::optional<QDateTime>& diskDate() const { return m_diskDate; }

    QUrl url() const { return m_file.url(); }
    // The file name without its extension.
    QString title() const { return m_file.name(); }

    // Dirty exactly when the text differs from the saved text.
    void setText(const QString& text);
    void setCaret(qsizetype caret);
    void setStatistics(const markdown::MarkdownTextStatistics& statistics);
    void setOutline(std::vector<markdown::OutlineEntry> outline);
    void setState(const markdown::MarkdownSourceEditorState& state);

    // A write of ours finished; the text typed meanwhile stays as it is.
    void noteSaved(const QString& text, std::optional<QDateTime> date);
    void acceptSavedContents(const QString& text, std::optional<qsizetype> caret);
    void applyDiskContents(const QString& text, std::optional<QDateTime> date);
    // The disk's copy moved to a new date without a change of text.
    void setDiskDate(std::optional<QDateTime> date) { m_diskDate = std::move(date); }
    void retarget(const QUrl& url);
    void reload();
    void save();

signals:
    void changed();
    void textChanged();
    void caretChanged();

private:
    void updateDirty();

    editor::MarkdownFile m_file;
    QString m_id;
    QString m_savedText;
    QString m_text;
    bool m_isDirty = false;
    markdown::MarkdownTextStatistics m_statistics;
    std::vector<markdown::OutlineEntry> m_outline;
    qsizetype m_storedCaret = 0;
    DocumentCaretState m_caretState;
    markdown::MarkdownSourceEditorState m_state;
    std::optional<QString> m_loadError;
    std::optional<QDateTime> m_diskDate;
};

}
