#include "MarkdownEngine/Core/MarkdownDocument.h"

#include <QRandomGenerator>
#include <gtest/gtest.h>

using namespace velmo::markdown;

namespace {

// Notes that hold every kind of block, and the openers and closers that reach across lines.
const QString notes[] = {
    QStringLiteral("---\ntitle: x\n---\n# Head\n\nPara *em* and `code`\nsecond line\n\n- a\n- b\n  more\n"
                   "1. one\n2. two\n\n> quote\n> > deep\nlazy\n\n```js\nlet x\n```\n\n$$\nx^2\n$$\n\n"
                   "| a | b |\n|---|:-:|\n| 1 | 2 |\n\n::: note\nbody\n:::\n\n::tip[x]\n\n<div>\nhi\n</div>\n"
                   "Setext\n===\n\n***\n\n- [ ] task #tag\n"),
    QStringLiteral("a\n> b\nc\n\n\\[\nx\n\\]\n\n[^1]: foot\n  more\n\nref[^1] and [l][k]\n\n[k]: /url\n\ntail\n"),
    QStringLiteral("$$\nopen formula\n\ntext\n\n```\nunclosed fence\n\nend"),
    QStringLiteral("x|y\n-|-\n\npara\nx|y\n-|-\n1|2\n\n   - indented\n\t- tab\n> - quoted item\n> text\n"),
};

// Insertions that change what lines are: openers, closers, underlines, definitions.
const QString insertions[] = {
    QStringLiteral("a"), QStringLiteral("\n"), QStringLiteral("\n\n"), QStringLiteral("$$\n"),
    QStringLiteral("\n$$"), QStringLiteral("```\n"), QStringLiteral("# "), QStringLiteral("=\n"),
    QStringLiteral("|"), QStringLiteral("-|-\n"), QStringLiteral("> "), QStringLiteral("- "),
    QStringLiteral("10. "), QStringLiteral("[x]: /u\n"), QStringLiteral("[^2]: n\n"), QStringLiteral("---\n"),
    QStringLiteral("::: x\n"), QStringLiteral(":::\n"), QStringLiteral("\\[\n"), QStringLiteral("<div>\n"),
    QStringLiteral("</div>"), QStringLiteral("  "), QStringLiteral("\r\n"), QStringLiteral("*"),
};

QString describe(const MarkdownDocument& d)
{
    QString out;
    for (const MarkdownBlock& b : d.blocks) {
        out += QStringLiteral("%1 [%2,%3) c[%4,%5) m%6 q%7 l%8 i%9\n")
                   .arg(b.kind.index()).arg(b.range.location).arg(b.range.upperBound())
                   .arg(b.contentRange.location).arg(b.contentRange.upperBound()).arg(b.markerRanges.size())
                   .arg(b.quoteDepth).arg(b.listDepth).arg(b.inlines.size());
    }
    return out;
}

void expectSameAsParse(const MarkdownDocument& reparsed, const MarkdownDocumentChange& change,
                       const MarkdownDocument& before, const QString& text, const QString& what)
{
    const MarkdownDocument parsed = MarkdownDocument::parse(text, before.options);
    ASSERT_TRUE(reparsed.hasSameTree(parsed)) << qPrintable(what) << "\n" << qPrintable(text) << "\n"
                                              << qPrintable(describe(reparsed)) << "vs\n"
                                              << qPrintable(describe(parsed));
    // The change's bookkeeping: kept blocks keep their ids, and the counts add up.
    ASSERT_LE(change.firstBlock, change.oldEnd);
    ASSERT_EQ(reparsed.blocks.size() - change.newEnd, before.blocks.size() - change.oldEnd) << qPrintable(what);
    for (size_t i = 0; i < change.firstBlock; ++i)
        ASSERT_EQ(reparsed.blocks[i].id, before.blocks[i].id) << qPrintable(what);
    for (size_t i = change.oldEnd; i < before.blocks.size(); ++i)
        ASSERT_EQ(reparsed.blocks[change.newIndex(i)].id, before.blocks[i].id) << qPrintable(what);
    if (change.firstBlock > 0) {
        ASSERT_LE(before.blocks[change.firstBlock - 1].range.upperBound(), change.start);
    }
    if (change.oldEnd < before.blocks.size()) {
        ASSERT_EQ(before.blocks[change.oldEnd].range.location, change.oldStop);
    }
}

// The note followed by copies of itself past the first window the walk splits, so that the
// walk also meets the old one inside a window and grows windows.
QString padded(const QString& note)
{
    QString text = note;
    while (text.size() < 4700)
        text += QStringLiteral("\n\n") + note;
    return text;
}

MarkdownDocument reparsed(const MarkdownDocument& before, const QString& text, MarkdownDocumentChange& change)
{
    MarkdownDocument copy = before;
    return MarkdownDocument::reparse(std::move(copy), text, change);
}

}

TEST(BlockReparser, everyInsertionAndDeletionEverywhereMatchesAFullParse)
{
    // Alone, every position; padded, every eleventh, which is enough to cross each window edge.
    for (const QString& original : notes) {
        for (const auto& [note, step] : {std::pair{original, 1}, std::pair{padded(original), 11}}) {
            const MarkdownDocument before = MarkdownDocument::parse(note);
            for (int at = 0; at <= original.size(); at += step) {
                for (const QString& insertion : insertions) {
                    const QString text = QString(note).insert(at, insertion);
                    MarkdownDocumentChange change;
                    const MarkdownDocument after = reparsed(before, text, change);
                    expectSameAsParse(after, change, before, text, QStringLiteral("insert at %1").arg(at));
                }
                for (int length : {1, 2, 7, 30}) {
                    const QString text = QString(note).remove(at, length);
                    MarkdownDocumentChange change;
                    const MarkdownDocument after = reparsed(before, text, change);
                    expectSameAsParse(after, change, before, text,
                                      QStringLiteral("remove %1 at %2").arg(length).arg(at));
                }
            }
        }
    }
}

TEST(BlockReparser, chainsOfEditsStayExact)
{
    // Each reparse starts from the last one's result, as the editor's do.
    QRandomGenerator random(7);
    for (const QString& note : notes) {
        MarkdownDocument document = MarkdownDocument::parse(padded(note));
        for (int step = 0; step < 150; ++step) {
            QString text = document.text;
            const int at = int(random.bounded(std::min<qsizetype>(text.size(), 600) + 1));
            if (random.bounded(3) == 0)
                text.remove(at, int(random.bounded(12)));
            else
                text.insert(at, insertions[random.bounded(int(std::size(insertions)))]);
            const MarkdownDocument before = document;
            MarkdownDocumentChange change;
            document = MarkdownDocument::reparse(std::move(document), text, change);
            expectSameAsParse(document, change, before, text, QStringLiteral("step %1").arg(step));
        }
    }
}

TEST(BlockReparser, keepsTheBlocksAnEditCannotReach)
{
    QString note;
    for (int i = 0; i < 200; ++i)
        note += QStringLiteral("Paragraph %1 with *some* words.\n\n").arg(i);
    const MarkdownDocument before = MarkdownDocument::parse(note);
    const int at = int(note.indexOf(QStringLiteral("Paragraph 100 ")));
    MarkdownDocumentChange change;
    const MarkdownDocument after = reparsed(before, QString(note).insert(at + 3, u'x'), change);
    // The edited paragraph and the one before it, whose look ahead reached the edited line.
    EXPECT_EQ(change.firstBlock, 99u);
    EXPECT_EQ(change.oldEnd, 101u);
    EXPECT_EQ(change.newEnd, 101u);
    EXPECT_EQ(change.delta, 1);
    EXPECT_EQ(after.blocks[150].range.location, before.blocks[150].range.location + 1);

    // An unclosed formula opener before the edit: a closer typed later changes it.
    const QString opened = QStringLiteral("$$\n") + note;
    const MarkdownDocument open = MarkdownDocument::parse(opened);
    const int end = int(opened.size());
    const MarkdownDocument closed = reparsed(open, opened + QStringLiteral("$$\n"), change);
    EXPECT_EQ(change.firstBlock, 0u);
    EXPECT_TRUE(closed.blocks.front().is<block_kind::LatexBlock>());
    EXPECT_EQ(closed.blocks.front().range.upperBound(), end + 3);
}
