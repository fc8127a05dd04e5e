#include "Velmo/EditorLineEnds.h"

#include <gtest/gtest.h>

using velmo::app::EditorLineEnds;

TEST(EditorLineEnds, ANoteKeepsItsOwnTerminatorWhenItUsesOneThroughout)
{
    struct Case {
        const char* note;
        const char* terminator;
    };
    const Case cases[] = {
        {"a\r\nb\r\n", "\r\n"},
        {"a\rb", "\r"},
        {"a\nb", "\n"},
        {"no line end", "\n"},
        {"", "\n"},
        {"mixed\r\nends\n", "\n"},
        {"mixed\rends\r\n", "\n"},
    };
    for (const Case& c : cases) {
        const QString note = QString::fromUtf8(c.note);
        const EditorLineEnds ends = EditorLineEnds::of(note);
        EXPECT_EQ(ends.terminator(), QString::fromUtf8(c.terminator)) << c.note;
        if (ends.isPlain())
            continue;
        const QString editor = ends.toEditor(note);
        EXPECT_FALSE(editor.contains(u'\r'));
        EXPECT_EQ(ends.toNote(editor), note) << "round trip of " << c.note;
    }
}

TEST(EditorLineEnds, OffsetsMapAcrossCRLF)
{
    const QString note = QStringLiteral("ab\r\ncd\r\n\r\ne");
    const QString editor = QStringLiteral("ab\ncd\n\ne");
    const EditorLineEnds ends = EditorLineEnds::of(note);
    // note offset → editor offset
    const std::pair<int, int> pairs[] = {{0, 0}, {2, 2}, {3, 2}, {4, 3}, {6, 5}, {8, 6}, {10, 7}, {11, 8}, {99, 8}};
    for (const auto& [inNote, inEditor] : pairs)
        EXPECT_EQ(ends.toEditorOffset(note, inNote), inEditor) << inNote;
    for (int offset = 0; offset <= editor.size(); ++offset)
        EXPECT_EQ(ends.toEditorOffset(note, ends.toNoteOffset(editor, offset)), offset);
}
