#include "MarkdownEngine/Layout/MarkdownTextStorage.h"

#include <gtest/gtest.h>

using namespace velmo::markdown;

namespace {

// The cached text is patched as the document reports each edit: after every kind of edit it
// must read as the document's text rebuilt from scratch. Without a layout the document does
// not say where it changed, and the text is rebuilt.
void editEveryWay(bool withLayout)
{
    MarkdownTextStorage storage;
    if (withLayout)
        storage.document()->documentLayout();
    storage.resetText(QStringLiteral("first line\nsecond line\n\nlast"));
    const auto rebuilt = [&] {
        return storage.document()->toRawText().replace(QChar::ParagraphSeparator, u'\n');
    };
    struct Edit {
        int at, removed;
        QString inserted;
    };
    const Edit edits[] = {
        {0, 0, QStringLiteral("x")},           // the first block
        {0, 1, QString()},
        {5, 0, QStringLiteral("\n")},          // splits a line
        {5, 1, QString()},                     // joins it again
        {8, 10, QStringLiteral("a\nb\rc")},    // across lines; a CR becomes a line break
        {-1, 0, QStringLiteral("end")},        // at the end (-1: the text's length)
        {-1, 0, QStringLiteral("\n")},
        {0, -1, QStringLiteral("all new")},    // the whole text (-1: to the end)
        {3, 0, QString(5000, u'z')},           // past what is patched
        {2, 4990, QString()},
    };
    for (const Edit& edit : edits) {
        const int length = storage.length();
        const int at = edit.at < 0 ? length : edit.at;
        const int removed = edit.removed < 0 ? length - at : edit.removed;
        storage.replace({at, removed}, edit.inserted);
        ASSERT_EQ(storage.text(), rebuilt()) << at << " " << removed;
    }
    while (storage.document()->isUndoAvailable()) {
        storage.document()->undo();
        ASSERT_EQ(storage.text(), rebuilt()) << "undo";
    }
    while (storage.document()->isRedoAvailable()) {
        storage.document()->redo();
        ASSERT_EQ(storage.text(), rebuilt()) << "redo";
    }
}

}

TEST(MarkdownTextStorage, TextFollowsEveryEdit)
{
    editEveryWay(true);
    editEveryWay(false);
}
