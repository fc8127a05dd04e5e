#pragma once

#include "MarkdownEngine/Core/MarkdownSourceRange.h"
#include "MarkdownEngine/Styling/MarkdownParagraphMetrics.h"
#include "MarkdownEngine/Styling/MarkdownStyledText.h"

#include <QHash>
#include <QString>
#include <QTextCharFormat>
#include <QTextDocument>
#include <QTextLayout>
#include <memory>
#include <vector>

namespace velmo::markdown {

// What a line of the storage looks like, kept beside the text rather than in it: the document
// and its undo history see only text edits. Block-relative offsets.
struct MarkdownBlockStyle {
    std::vector<QTextLayout::FormatRange> formats;
    MarkdownParagraphMetrics paragraph;
    bool hasParagraph = false;
    // The styler's runs of the line, kept for traces and the dump.
    std::vector<MarkdownStyledText::Run> runs;
};

// The editor's text storage: a QTextDocument holding the plain note text and nothing else,
// with the styler's attributes held per line as layout formats and paragraph metrics. Writing
// a range touches only the lines it covers. Offsets are UTF-16 units of `text()`.
class MarkdownTextStorage {
public:
    MarkdownTextStorage();
    ~MarkdownTextStorage();
    MarkdownTextStorage(const MarkdownTextStorage&) = delete;
    MarkdownTextStorage& operator=(const MarkdownTextStorage&) = delete;

    QTextDocument* document() const { return m_document.get(); }
    // The note's text; line breaks between blocks read as LF. Cached until the text changes.
    const QString& text() const;
    int length() const { return int(text().size()); }

    // Replaces the whole text and forgets the undo history (a newly opened note).
    void resetText(const QString& text);
    // Replaces a range as one undoable step (a change made by the program).
    void replace(MarkdownSourceRange range, const QString& replacement);

    // Copies the attributes of `styled` (the same text) over the lines `range` touches; the
    // rest keeps what it had. Returns the lines written as a range of the text.
    // `styled` may also describe only a stretch of the text starting at `offset`.
    MarkdownSourceRange copyAttributes(const MarkdownStyledText& styled, MarkdownSourceRange range, int offset = 0);
    // Lays `attributes` over `range` on top of what is there (the selection pass).
    void addAttributes(MarkdownSourceRange range, const MarkdownTextAttributes& attributes);

    // The style of the line holding `position`; null before the first pass.
    [[nodiscard]] const MarkdownBlockStyle* blockStyle(const QTextBlock& block) const;
    // Attribute runs over the whole text, for traces.
    [[nodiscard]] std::vector<MarkdownStyledText::Run> runs() const;

    // Design points to Qt font points: a point of the styler is a device-independent pixel.
    [[nodiscard]] static QTextCharFormat charFormat(const MarkdownTextAttributes& attributes);
    [[nodiscard]] static QFont font(const MarkdownFontDescriptor& descriptor);

    // Bumped on each text change; attribute writes leave it.
    int textRevision() const { return m_textRevision; }
    void noteTextChanged();

private:
    // Brings the cached text over a change the document reported, or marks it stale.
    void patchText(int position, int removed, int added);
    void writeBlock(QTextBlock block, const MarkdownStyledText& styled, int offset);
    // What charFormat reads of a set, and nothing else: sets that differ only in their
    // paragraph, role and the like share one format. Absent keys hold default values.
    struct FormatKey {
        std::uint32_t keys = 0;
        MarkdownFontDescriptor font;
        QRgb foreground = 0, background = 0, underlineColor = 0;
        float baselineOffset = 0, kern = 0;
        QString link;
        bool hidden = false;

        explicit FormatKey(const MarkdownTextAttributes& attributes);
        bool operator==(const FormatKey& other) const;
        [[nodiscard]] size_t hash(size_t seed) const;
        friend size_t qHash(const FormatKey& key, size_t seed = 0) { return key.hash(seed); }
    };
    // charFormat(attributes), made once per distinct set: a note's runs come back to the same
    // few sets, and each format made costs a handful of allocations.
    const QTextCharFormat& formatFor(const MarkdownTextAttributes& attributes);

    QHash<FormatKey, QTextCharFormat> m_formats;

    std::unique_ptr<QTextDocument> m_document;
    mutable QString m_text;
    mutable bool m_textValid = false;
    bool m_patched = false; // the current change's report has patched the text
    bool m_writingAttributes = false;
    int m_textRevision = 0;
};

}
