#pragma once

#include "MarkdownEngine/Core/MarkdownTable.h"
#include "MarkdownEngine/Styling/MarkdownEditorFragmentStore.h"
#include "MarkdownEngine/Styling/MarkdownStyledText.h"

#include <QString>
#include <vector>

namespace velmo::markdown {

// The styled text of a whole note, worked out only for the stretches asked for: a keystroke
// writes a few lines into the editor, and laying every fragment over the whole note for
// them would cost as much as the rest of the pass. Whatever the stretch, each character gets
// the attributes it has in `resolved()`.
class MarkdownStyledNote {
public:
    struct Stretch {
        MarkdownStyledText styled;
        int offset = 0; // where `styled` starts in the note
    };

    MarkdownStyledNote() = default;
    // `tables` are the note's tables whose columns are lined up.
    MarkdownStyledNote(QString text, MarkdownTextAttributes base, MarkdownEditorFragmentStore fragments,
                       std::vector<MarkdownTable> tables);

    const QString& text() const { return m_text; }
    int length() const { return int(m_text.size()); }

    // The styled text of the whole note.
    [[nodiscard]] MarkdownStyledText resolved() const;
    // A stretch covering `range` (clipped to the note), grown to whole tables: lining up a
    // column takes every row.
    [[nodiscard]] Stretch stretch(MarkdownSourceRange range) const;

private:
    QString m_text;
    MarkdownTextAttributes m_base;
    MarkdownEditorFragmentStore m_fragments;
    std::vector<MarkdownTable> m_tables;
};

}
