#include "RestyleSupport.h"

#include <gtest/gtest.h>

using namespace velmo::markdown;

namespace {

// Formulas and diagrams become pictures, so that kept tiles carry attachments.
struct FixedLatex final : LatexRenderer {
    std::optional<LatexRenderResult> render(const QString&, LatexRenderMode) override
    {
        return LatexRenderResult{QImage(10, 10, QImage::Format_ARGB32), QSizeF(10, 30), 2};
    }
};
struct FixedDiagram final : DiagramImageRenderer {
    std::optional<EmbeddedImageInfo> render(const QString&, const QString&) override
    {
        return EmbeddedImageInfo{QImage(80, 10, QImage::Format_ARGB32), QSizeF(80, 10), std::nullopt};
    }
};

// No link reference definitions and no footnotes: they change inlines anywhere.
const char16_t* const notes[] = {
    u"# Title #tag\n\nSome *text* with #topic and [a link](https://x.org).\n\n## Second ##\n\n"
    u"More text ![pic](a.png) and `code #not`.\n\nSetext\n===\n\nlast line #end\n",
    u"Intro\n\n1. one\n2. two\n3. three\n4. four\n5. five\n6. six\n7. seven\n8. eight\n9. nine\n\n"
    u"between\n\n- a\n  - nested\n- b\n\n* [ ] task\n* [x] done #tag\n\nend\n",
    u"> quoted *text*\n> more\n\n> [!NOTE]\n> a callout #c\n\n- item\n> quote after item\n\ntail\n",
    u"Text before\n\n```cpp\nint main() { return 0; } // #x\n```\n\nmiddle $x^2$ inline\n\n$$\na + b\n$$\n\n"
    u"~~~\nplain\n~~~\n\n```mermaid\ngraph TD\n```\n\nafter\n",
    u"| a | b |\n|---|:-:|\n| 1 | 2 |\n| 3 | [[Wiki]] |\n\npara #t\n\n| x |\n|---|\n| y |\n",
    u"8. h\n9. i\n10. j\n\n- x\n- y\n\n1) p\n2) q\n",
};

struct Edit {
    const char* name;
    // The replaced span and the text put there, for the line [start, end) (end before its break).
    std::function<std::tuple<int, int, QString>(const QString& text, int start, int end)> make;
};

int nextLineStart(const QString& text, int end)
{
    return end < text.size() ? end + 1 : end;
}

const Edit edits[] = {
    {"type a letter", [](const QString&, int s, int e) { return std::tuple{(s + e) / 2, (s + e) / 2, QStringLiteral("x")}; }},
    {"type a digit at the line's start", [](const QString&, int s, int) { return std::tuple{s, s, QStringLiteral("1")}; }},
    {"split a block", [](const QString&, int s, int e) { return std::tuple{(s + e) / 2, (s + e) / 2, QStringLiteral("\n\n")}; }},
    {"join with the next block",
     [](const QString& t, int, int e) {
         int next = nextLineStart(t, e);
         while (next < t.size() && t.at(next) == u'\n')
             ++next;
         return std::tuple{e, next, QString()};
     }},
    {"delete the line", [](const QString& t, int s, int e) { return std::tuple{s, nextLineStart(t, e), QString()}; }},
    {"type = under it", [](const QString&, int, int e) { return std::tuple{e, e, QStringLiteral("\n=")}; }},
    {"type a fence opener", [](const QString&, int s, int) { return std::tuple{s, s, QStringLiteral("```\n")}; }},
};

// The selection with its lines, as the coordinator reports it.
MarkdownSourceEditorState selection(const QString& text, int from, int to)
{
    const auto lines = MarkdownASTStyler::activeLineRanges({{{from, 0}, {to, 0}}, {}}, text);
    return {{MarkdownSourceRange::fromBounds(from, to)}, {lines.front().united(lines.back())}};
}

// Every fence coloured, keyed as the coordinator keys it.
QHash<QString, MarkdownStyledText> colouring(const MarkdownDocument& document)
{
    QHash<QString, MarkdownStyledText> code;
    for (const MarkdownBlock& block : document.blocks) {
        if (!block.is<block_kind::Fence>() || block.contentRange.length <= 0)
            continue;
        MarkdownTextAttributes a;
        a.setForeground(QColor(200, 0, 0));
        MarkdownStyledText styled(document.text.mid(block.contentRange.location, block.contentRange.length), {});
        styled.add({0, std::min(3, block.contentRange.length)}, a);
        code.insert(MarkdownASTStyler::codeKey(block), styled);
    }
    return code;
}

struct Pass {
    MarkdownDocument document;
    QHash<QString, MarkdownStyledText> code;
    MarkdownASTStyler::Request request;
};

void prepare(Pass& pass, const QString& text, MarkdownSourceEditorState state, const MarkdownEditorConfiguration& config,
             MarkdownEditorAttachmentFactory& attachments, bool coloured)
{
    pass.document = MarkdownDocument::parse(text);
    pass.code = coloured ? colouring(pass.document) : QHash<QString, MarkdownStyledText>();
    pass.request.document = &pass.document;
    pass.request.config = &config;
    pass.request.attachments = &attachments;
    pass.request.selection = std::move(state);
    pass.request.highlightedCode = &pass.code;
}

// The pass after an edit from `old`'s store, beside a full one; the old store alone or shared.
std::string restyleDifference(const Pass& old, const Pass& now, bool shared,
                              const std::vector<MarkdownSourceRange>& stale = {}, size_t* styled = nullptr)
{
    MarkdownASTStyler::Result first = MarkdownASTStyler::style(old.request);
    if (!shared)
        first.attributedString = {};
    const auto change = velmo::test::changeBetween(old.document, now.document);
    const auto got = MarkdownASTStyler::restyle(now.request, std::move(first.fragments), change, stale);
    if (styled)
        *styled = got.styledBlocks;
    return velmo::test::difference(got, MarkdownASTStyler::style(now.request), now.document.text);
}

}

// Every edit on every line of every note, with the selection at the edit and elsewhere before
// and after it: the pass after the edit equals a full one.
TEST(MarkdownASTStylerRestyle, EqualsAFullPassAfterAnyEdit)
{
    MarkdownEditorConfiguration config;
    config.services.latex = std::make_shared<FixedLatex>();
    config.services.diagrams = std::make_shared<FixedDiagram>();
    MarkdownEditorAttachmentFactory attachments(config.services);
    size_t passes = 0;
    for (const char16_t* note : notes) {
        const QString before = QString::fromUtf16(note);
        for (int lineStart = 0; lineStart < before.size();) {
            const qsizetype found = before.indexOf(u'\n', lineStart);
            const int lineEnd = found < 0 ? int(before.size()) : int(found);
            for (const Edit& edit : edits) {
                const auto [from, to, inserted] = edit.make(before, lineStart, lineEnd);
                const QString after = before.left(from) + inserted + before.mid(to);
                const int caret = from + int(inserted.size());
                // Old selection, new selection: at the edit, far from it, a range over it.
                const std::pair<MarkdownSourceEditorState, MarkdownSourceEditorState> selections[] = {
                    {selection(before, from, from), selection(after, caret, caret)},
                    {selection(before, 1, 1), selection(after, caret, caret)},
                    {selection(before, from, from), selection(after, int(after.size()) - 2, int(after.size()) - 2)},
                    {selection(before, std::max(from - 5, 0), std::min(to + 5, int(before.size()))),
                     selection(after, std::max(from - 3, 0), caret)},
                };
                for (const auto& [oldSelection, newSelection] : selections) {
                    // Fences coloured before and after, or only on one side of the edit.
                    for (const auto& [colouredBefore, colouredAfter] :
                         {std::pair{false, false}, std::pair{true, true}, std::pair{true, false}, std::pair{false, true}}) {
                        Pass old, now;
                        prepare(old, before, oldSelection, config, attachments, colouredBefore);
                        prepare(now, after, newSelection, config, attachments, colouredAfter);
                        // Alternately sole owner of the old store and sharing it with its styled text.
                        ASSERT_EQ(restyleDifference(old, now, ++passes % 2), "")
                            << edit.name << " at " << from << " of\n"
                            << before.toStdString() << "\n--- giving\n" << after.toStdString();
                    }
                }
            }
            lineStart = lineEnd + 1;
        }
    }
    EXPECT_GT(passes, 8000u);
}

// An edit styles again the blocks the reparse replaced (the edited one and the one whose look
// ahead reached it), the one before them, the list runs they border and the selection's
// blocks; the rest is kept.
TEST(MarkdownASTStylerRestyle, StylesOnlyWhatTheEditReaches)
{
    struct Case {
        const char16_t* before;
        const char16_t* typed; // inserted where "|" is; the caret ends after it
        size_t styled;
    };
    const Case cases[] = {
        {u"a\n\nb\n\nc|\n\nd\n\ne\n", u"x", 3},
        {u"|a\n\nb\n\nc\n", u"x", 1},
        {u"a\n\nb\n\nc\n\nd|", u"x", 3},
        {u"a\n\nb\n\n|c\n\nd\n\ne\n", u"\n", 3},
        // The ninth item becomes the tenth: the run's gutter widens.
        {u"p\n\n1. a\n2. b\n3. c\n4. d\n5. e\n6. f\n7. g\n8. h\n9. i|\n\nq\n\nr\n\ns\n", u"\n10. j", 10},
        {u"p\n\n- a\n- b|\n\nq\n\n- c\n\nr\n", u"x", 3},
        // Joining two runs: both are styled again.
        {u"a\n\n- a\n|\n- b\n\nc\n", u"- x", 4},
    };
    MarkdownEditorConfiguration config;
    MarkdownEditorAttachmentFactory attachments(config.services);
    // Paragraphs after every case, so that no case marks half the blocks.
    const QString tail = QStringLiteral("\n\no").repeated(10) + u'\n';
    for (const Case& c : cases) {
        QString before = QString::fromUtf16(c.before) + tail;
        const int at = int(before.indexOf(u'|'));
        before.remove(at, 1);
        const QString after = before.left(at) + QString::fromUtf16(c.typed) + before.mid(at);
        const int caret = at + int(QString::fromUtf16(c.typed).size());
        Pass old, now;
        prepare(old, before, selection(before, at, at), config, attachments, false);
        prepare(now, after, selection(after, caret, caret), config, attachments, false);
        size_t styled = 0;
        EXPECT_EQ(restyleDifference(old, now, false, {}, &styled), "") << after.toStdString();
        EXPECT_EQ(styled, c.styled) << after.toStdString();
    }
}

// Stale ranges of the old text are styled again, wherever the edit moved them.
TEST(MarkdownASTStylerRestyle, StylesStaleRangesAgain)
{
    const QString tail = QStringLiteral("\n\no").repeated(4);
    const QString before = QStringLiteral("# One\n\npara **b**\n\n# Two\n\ntext *i*") + tail;
    const QString after = QStringLiteral("# One!\n\npara **b**\n\n# Two\n\ntext *i*") + tail;
    MarkdownEditorConfiguration config;
    MarkdownEditorAttachmentFactory attachments(config.services);
    Pass old, now;
    // The old store was made with the caret on "text", then an overlay revealed "para".
    prepare(old, before, selection(before, int(before.indexOf(u"text")), int(before.indexOf(u"text"))), config, attachments, false);
    prepare(now, after, selection(after, 6, 6), config, attachments, false);
    const int para = int(before.indexOf(u"para"));
    size_t styled = 0;
    EXPECT_EQ(restyleDifference(old, now, false, {{para, 4}}, &styled), "");
    // The edited heading, "para" (stale) and "text" (the old caret's), but not "# Two".
    EXPECT_EQ(styled, 3u);
}
