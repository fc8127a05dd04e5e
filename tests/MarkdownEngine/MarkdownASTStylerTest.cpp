#include "MarkdownEngine/Styling/MarkdownASTStyler.h"
#include "MarkdownEngine/Styling/MarkdownFragmentDump.h"

#include <QElapsedTimer>
#include <gtest/gtest.h>

using namespace velmo::markdown;
using Role = MarkdownEditorFragmentRole;

void PrintTo(const QString& text, std::ostream* out);

namespace {

enum class Mode { offLine, onLine, noReveal, raw };

// A formula renderer that always answers, so that formulas and diagrams become pictures.
struct FixedLatex final : LatexRenderer {
    std::optional<LatexRenderResult> render(const QString&, LatexRenderMode) override
    {
        return LatexRenderResult{QImage(10, 10, QImage::Format_ARGB32), QSizeF(10, 30), 2};
    }
};
struct FixedDiagram final : DiagramImageRenderer {
    std::optional<EmbeddedImageInfo> render(const QString&, const QString&) override
    {
        return EmbeddedImageInfo{QImage(800, 100, QImage::Format_ARGB32), QSizeF(800, 100), std::nullopt};
    }
};

struct Styled {
    QString text;
    MarkdownDocument document;
    MarkdownEditorConfiguration config;
    MarkdownASTStyler::Result result;

    // The fragments of a role starting where `needle` first occurs (from `from`).
    std::vector<const MarkdownEditorFragment*> at(Role role, const QString& needle, qsizetype from = 0) const
    {
        const int location = int(text.indexOf(needle, from));
        std::vector<const MarkdownEditorFragment*> found;
        for (const auto& f : result.fragments.fragments()) {
            if (f.role == role && f.range.location == location)
                found.push_back(&f);
        }
        return found;
    }
    const MarkdownEditorFragment* one(Role role, const QString& needle, qsizetype from = 0) const
    {
        auto found = at(role, needle, from);
        return found.empty() ? nullptr : found.back(); // the highest priority
    }
    QString dump() const { return MarkdownFragmentDump::section(config, result.fragments, text); }
};

std::unique_ptr<Styled> style(const QString& text, std::optional<MarkdownSourceEditorState> selection = {},
                              std::function<void(MarkdownEditorConfiguration&)> configure = {},
                              bool pictures = false)
{
    auto s = std::make_unique<Styled>();
    s->text = text;
    s->document = MarkdownDocument::parse(text);
    if (configure)
        configure(s->config);
    if (pictures) {
        s->config.services.latex = std::make_shared<FixedLatex>();
        s->config.services.diagrams = std::make_shared<FixedDiagram>();
    }
    static std::unique_ptr<MarkdownEditorAttachmentFactory> attachments;
    attachments = std::make_unique<MarkdownEditorAttachmentFactory>(s->config.services);
    MarkdownASTStyler::Request request;
    request.document = &s->document;
    request.config = &s->config;
    request.attachments = attachments.get();
    if (selection)
        request.selection = *selection;
    s->result = MarkdownASTStyler::style(request);
    return s;
}

// A caret with its line as the selected line range, as the coordinator reports it.
MarkdownSourceEditorState caretWithLine(const QString& text, int at)
{
    MarkdownSourceEditorState state = MarkdownSourceEditorState::caret(at);
    const auto line = MarkdownASTStyler::activeLineRanges(state, text);
    state.selectedLineRanges = line;
    return state;
}

std::unique_ptr<Styled> styleIn(Mode mode, const QString& construct, int onLineAt = 0)
{
    // The construct, then a line far from it where the caret rests when it is off the line.
    const QString text = construct + QStringLiteral("\n\nelsewhere");
    const int caret = mode == Mode::onLine ? onLineAt : int(text.size());
    return style(text, caretWithLine(text, caret), [mode](MarkdownEditorConfiguration& c) {
        c.markers.revealsMarkersOnActiveLine = mode != Mode::noReveal;
        c.rawSourceMode = mode == Mode::raw;
    });
}

}

TEST(MarkdownASTStyler, MarkersHideOffTheActiveLineAndShowOnIt)
{
    struct Case {
        const char16_t* construct;
        const char16_t* marker;
        Role role;
        bool alwaysHidden; // hidden on the active line too
    };
    const Case cases[] = {
        {u"# Title", u"#", Role::headingMarker, false},
        {u"Title\n===", u"===", Role::headingMarker, false},
        {u"> quoted", u">", Role::blockquoteMarker, false},
        {u"> [!NOTE]\n> body", u"[!NOTE]", Role::blockquoteMarker, false},
        {u"- item", u"-", Role::listMarker, false},
        {u"```\ncode", u"```", Role::fenceMarker, false},
        {u"[^1]: the note", u"[^1]", Role::footnoteMarker, false},
        {u":::font size=20\nbody\n:::", u":::", Role::directiveMarker, false},
        {u"some **bold** text", u"**", Role::emphasisMarker, false},
        {u"some `code` text", u"`", Role::codeMarker, false},
        {u"see [[Page]] now", u"[[", Role::linkMarker, false},
        {u"see [a](b) now", u"(b)", Role::linkMarker, false},
        {u"a \\* b", u"\\", Role::escapeMarker, true},
        {u"---", u"---", Role::thematicBreak, true},
    };
    for (const Case& c : cases) {
        const QString construct = QString::fromUtf16(c.construct), marker = QString::fromUtf16(c.marker);
        SCOPED_TRACE(construct.toStdString());
        const auto off = styleIn(Mode::offLine, construct);
        const auto* hidden = off->one(c.role, marker);
        ASSERT_TRUE(hidden) << off->dump().toStdString();
        EXPECT_TRUE(hidden->isHidden);
        EXPECT_TRUE(off->result.fragments.isHidden(int(construct.indexOf(marker))));

        for (Mode mode : {Mode::onLine, Mode::noReveal}) {
            const auto on = styleIn(mode, construct, int(construct.indexOf(marker)));
            const auto found = on->at(c.role, marker);
            const bool anyHidden = std::any_of(found.begin(), found.end(), [](auto* f) { return f->isHidden; });
            if (c.alwaysHidden) {
                EXPECT_TRUE(anyHidden);
            } else {
                ASSERT_FALSE(found.empty() && c.role != Role::linkMarker) << on->dump().toStdString();
                EXPECT_FALSE(anyHidden) << on->dump().toStdString();
                EXPECT_FALSE(on->result.fragments.isHidden(int(construct.indexOf(marker))));
            }
        }
        const auto raw = styleIn(Mode::raw, construct);
        EXPECT_TRUE(raw->result.fragments.isEmpty());
        EXPECT_TRUE(raw->result.activeLines.empty());
        const MarkdownStyledText rawText = raw->result.attributedString.resolved();
        ASSERT_EQ(rawText.runs().size(), 1u);
        EXPECT_EQ(rawText.runs()[0].attributes.font.family(), MarkdownFont::systemMonospaced());
    }
}

TEST(MarkdownASTStyler, ShownMarkersTakeTheirColours)
{
    const auto heading = styleIn(Mode::onLine, QStringLiteral("## Title"));
    EXPECT_EQ(heading->one(Role::headingMarker, "##")->attributes.foreground, heading->config.theme.headingMarker.rgba());
    EXPECT_EQ(heading->one(Role::headingMarker, "##")->priority, 30);
    const auto quote = styleIn(Mode::onLine, QStringLiteral("> text"));
    EXPECT_EQ(quote->one(Role::blockquoteMarker, ">")->attributes.foreground, quote->config.theme.quoteBar.rgba());
    // Off the line: the tiny clear font of a hidden block marker.
    const auto off = styleIn(Mode::offLine, QStringLiteral("## Title"));
    const auto* hidden = off->one(Role::headingMarker, "##");
    EXPECT_EQ(hidden->priority, 31);
    EXPECT_FLOAT_EQ(hidden->attributes.font.pointSize, 0.1f);
    EXPECT_EQ(qAlpha(hidden->attributes.foreground), 0);
}

TEST(MarkdownASTStyler, EmptyDocumentAndActiveLines)
{
    const auto empty = style(QString(), MarkdownSourceEditorState::caret(0));
    EXPECT_EQ(empty->result.attributedString.length(), 0);
    EXPECT_TRUE(empty->result.fragments.isEmpty());
    ASSERT_EQ(empty->result.activeLines.size(), 1u);
    EXPECT_EQ(empty->result.activeLines[0], (MarkdownSourceRange{0, 0}));

    // A selection across two lines: its line ranges make both active, the length rule adds none.
    const QString text = QStringLiteral("# one\n# two\n# three");
    MarkdownSourceEditorState state{{{4, 2}}, {{0, 12}}};
    const auto two = style(text, state);
    EXPECT_EQ(two->result.activeLines, std::vector<MarkdownSourceRange>{(MarkdownSourceRange{0, 12})});
    EXPECT_FALSE(two->one(Role::headingMarker, "#")->isHidden);
    EXPECT_FALSE(two->one(Role::headingMarker, "#", 6)->isHidden);
    EXPECT_TRUE(two->one(Role::headingMarker, "#", 12)->isHidden);
    // A caret past the end clamps to the last line.
    EXPECT_EQ(MarkdownASTStyler::activeLineRanges(MarkdownSourceEditorState::caret(999), text).back(),
              (MarkdownSourceRange{12, 7}));
}

TEST(MarkdownASTStyler, StyledTextCoversTheSourceExactly)
{
    const QString text = QStringLiteral("# Head\n\n- a **b** `c`\n\n> [!TIP]\n> x\n\n| a | b |\n|---|---|\n| 1 | 2 |\n");
    const auto s = style(text, caretWithLine(text, 0));
    const MarkdownStyledText styled = s->result.attributedString.resolved();
    const auto& runs = styled.runs();
    int at = 0;
    for (const auto& run : runs) {
        EXPECT_EQ(run.range.location, at);
        EXPECT_GT(run.range.length, 0);
        at = run.range.upperBound();
    }
    EXPECT_EQ(at, text.size());
    // Heading font wins over the paragraph; the hidden bold markers are marked in the text.
    const auto* head = styled.runAt(2);
    EXPECT_TRUE(head->attributes.font.isBold());
    EXPECT_GT(head->attributes.font.pointSize, 20.f);
    const auto* marker = styled.runAt(int(text.indexOf("**")));
    EXPECT_TRUE(marker->attributes.hidden);
    EXPECT_EQ(marker->attributes.role, Role::emphasisMarker);
    // Inline looks inside a list item survive the item's own fragment.
    EXPECT_TRUE(styled.runAt(int(text.indexOf("b**")))->attributes.font.isBold());
    EXPECT_FALSE(styled.runAt(int(text.indexOf("c`")))->attributes.font.family()
                 == styled.runAt(int(text.indexOf("a **")))->attributes.font.family());
}

TEST(MarkdownASTStyler, ListGuttersShareTheWidestMarker)
{
    QString text;
    for (int i = 1; i <= 10; ++i)
        text += QString::number(i) + QStringLiteral(". item\n");
    const auto s = style(text);
    const MarkdownFontDescriptor body = s->config.bodyFont();
    MarkdownASTStyler::Request request;
    request.document = &s->document;
    request.config = &s->config;
    const auto gutters = MarkdownASTStyler::listGutters(request, text, body);
    ASSERT_EQ(gutters.size(), 10);
    const double widest = MarkdownFont::tabularDigits(body).width("10. ");
    for (const MarkdownBlock& block : s->document.blocks)
        EXPECT_DOUBLE_EQ(gutters.value(block.range.location), widest);

    // A bullet after numbers at the same indent, or a change of quote depth, starts a new group.
    const QString mixed = QStringLiteral("1. a\n10. b\n- c\n> - d\n");
    const auto m = style(mixed);
    request.document = &m->document;
    const auto g = MarkdownASTStyler::listGutters(request, mixed, body);
    EXPECT_EQ(g.value(0), g.value(5));
    EXPECT_NE(g.value(int(mixed.indexOf("- c"))), g.value(0));
    EXPECT_DOUBLE_EQ(g.value(int(mixed.indexOf("> - d"))), body.width("- "));

    // Hidden markers leave the first line at the text's indent and draw the bullet.
    const auto off = style(mixed, caretWithLine(mixed, int(mixed.size())));
    const auto* bullet = off->one(Role::bullet, "10.");
    ASSERT_TRUE(bullet);
    EXPECT_EQ(bullet->attributes.listMarker(), "10.");
    const auto* item = off->one(Role::listItem, "10.");
    EXPECT_FLOAT_EQ(item->attributes.paragraph().firstLineHeadIndent, item->attributes.paragraph().headIndent);
    EXPECT_EQ(off->one(Role::bullet, "- c")->attributes.listMarker(), "•");
    // A shown marker hangs in the gutter.
    const auto on = style(mixed, caretWithLine(mixed, 5));
    const auto* shown = on->one(Role::listItem, "10.");
    EXPECT_LT(shown->attributes.paragraph().firstLineHeadIndent, shown->attributes.paragraph().headIndent);
}

TEST(MarkdownASTStyler, TaskBoxes)
{
    const QString text = QStringLiteral("- [x] done\n- [ ] open\n\nend");
    const auto off = style(text, caretWithLine(text, int(text.size())));
    const auto boxes = off->at(Role::taskCheckbox, "[x]"); // the drawn box (28), the hidden text (31)
    ASSERT_EQ(boxes.size(), 2u);
    EXPECT_TRUE(boxes[1]->isHidden);
    EXPECT_TRUE(boxes[0]->attributes.taskCheckbox);
    EXPECT_FALSE(off->one(Role::taskCheckbox, "[ ]")->attributes.taskCheckbox);
    auto hit = MarkdownASTStyler::taskCheckboxRange(off->document.blocks[1], text);
    ASSERT_TRUE(hit);
    EXPECT_EQ(hit->range, (MarkdownSourceRange{int(text.indexOf("[ ]")), 3}));

    // With task boxes off in the parse, "[ ]" is text and no box is drawn.
    MarkdownParseOptions options;
    options.taskCheckboxes = false;
    const MarkdownDocument plain = MarkdownDocument::parse(text, options);
    MarkdownEditorConfiguration config;
    MarkdownASTStyler::Request request;
    request.document = &plain;
    request.config = &config;
    request.selection = caretWithLine(text, int(text.size()));
    const auto result = MarkdownASTStyler::style(request);
    EXPECT_TRUE(result.fragments.fragments(Role::taskCheckbox).empty());
    EXPECT_FALSE(result.fragments.isHidden(int(text.indexOf("[ ]")) + 1));
}

TEST(MarkdownASTStyler, CalloutsAndQuotedBlocks)
{
    const QString text = QStringLiteral("> [!WARNING]\n> careful\n\n> ```\n> code\n> ```\n\nend");
    const auto s = style(text, caretWithLine(text, int(text.size())));
    const auto callout = s->at(Role::blockquote, ">");
    ASSERT_GE(callout.size(), 2u);
    const auto* box = callout.back();
    EXPECT_EQ(box->priority, 50);
    EXPECT_EQ(box->attributes.callout(), "WARNING");
    const auto* quote = callout.front();
    EXPECT_EQ(quote->attributes.foreground, s->config.theme.color(MarkdownCallout::warning).rgba());
    EXPECT_TRUE(s->one(Role::blockquoteMarker, "[!WARNING]")->isHidden);

    // A fence in a quote takes the quote's indent, not the code block's.
    const auto* fence = s->one(Role::blockquote, "> ```");
    ASSERT_TRUE(fence);
    EXPECT_FLOAT_EQ(fence->attributes.paragraph().firstLineHeadIndent, float(s->config.blockquote.calloutPadding));
    const auto code = std::find_if(s->result.fragments.fragments().begin(), s->result.fragments.fragments().end(),
                                   [](const auto& f) { return f.role == Role::fence && f.priority == 5; });
    ASSERT_NE(code, s->result.fragments.fragments().end());
    EXPECT_FLOAT_EQ(code->attributes.paragraph().headIndent, float(s->config.blockquote.calloutPadding));
}

// A stretch is worked out from the fragments that reach into it: every character must come
// out as in the whole note, whatever overlaps the stretch's edges.
TEST(MarkdownASTStyler, StretchesMatchTheWholeNote)
{
    const QString text = QStringLiteral(
        "---\ntags: [a]\n---\n# Head *it*\n\n- a **b `c` d**\n  - [x] done #tag\n\n> [!NOTE]\n> quoted "
        "[link](https://x.org) and $x^2$\n\n```cpp\nint x;\n\nint y;\n```\n\n| a | bb |\n|---|---|\n| 111 | 2 "
        "|\n\ntext <span style=\"color: red\">red</span> ~~s~~\n\n");
    const auto s = style(text, caretWithLine(text, int(text.indexOf("quoted"))));
    const MarkdownStyledText whole = s->result.attributedString.resolved();
    std::vector<int> lineStarts{0};
    for (int i = 0; i < text.size(); ++i) {
        if (text.at(i) == u'\n')
            lineStarts.push_back(i + 1);
    }
    for (size_t a = 0; a < lineStarts.size(); ++a) {
        for (size_t b = a; b < std::min(lineStarts.size(), a + 3); ++b) {
            const auto range = MarkdownSourceRange::fromBounds(lineStarts[a], b + 1 < lineStarts.size() ? lineStarts[b + 1] : int(text.size()));
            const auto stretch = s->result.attributedString.stretch(range);
            ASSERT_LE(stretch.offset, range.location);
            ASSERT_GE(stretch.offset + stretch.styled.length(), range.upperBound());
            for (int at = stretch.offset; at < stretch.offset + stretch.styled.length(); ++at) {
                ASSERT_TRUE(stretch.styled.runAt(at - stretch.offset)->attributes == whole.runAt(at)->attributes)
                    << "line " << a << " to " << b << ", character " << at;
            }
        }
    }
}

TEST(MarkdownASTStyler, Tables)
{
    const QString good = QStringLiteral("| a | b |\n|:--|--:|\n| 1 | 22 |\n|| x |\n\nend");
    const auto s = style(good, caretWithLine(good, int(good.size())));
    const auto* table = s->at(Role::table, "| a").front(); // the block, before its first pipe
    ASSERT_TRUE(table);
    EXPECT_TRUE(table->attributes.has(MarkdownTextAttributes::TableGrid));
    EXPECT_EQ(s->one(Role::table, "|", 1)->attributes.foreground, clearColor.rgba()); // a pipe
    EXPECT_TRUE(s->one(Role::tableCell, "a")->attributes.font.isBold());
    EXPECT_EQ(s->one(Role::tableCell, "22")->attributes.depth, 1);
    EXPECT_FLOAT_EQ(s->at(Role::tableRule, "|:--").front()->attributes.paragraph().maximumLineHeight, 1.0f);
    // Columns line up: the narrower column's last character before its pipe is kerned, and an
    // empty one kerns its opening pipe, so that it keeps its place.
    const MarkdownStyledText styled = s->result.attributedString.resolved();
    for (const int kerned : {int(good.indexOf("| 1")) + 3, int(good.indexOf("||"))}) {
        const auto* run = styled.runAt(kerned);
        EXPECT_TRUE(run->attributes.has(MarkdownTextAttributes::Kern)) << kerned;
        EXPECT_GT(run->attributes.kern, 0.f) << kerned;
    }

    // A row without a leading pipe: no grid, pipes keep their ink.
    const QString bad = QStringLiteral("| a | b |\n|---|---|\n1 | 2 |\n\nend");
    const auto b = style(bad, caretWithLine(bad, int(bad.size())));
    ASSERT_EQ(b->at(Role::table, "| a").size(), 1u);
    EXPECT_FALSE(b->one(Role::table, "| a")->attributes.has(MarkdownTextAttributes::TableGrid));
    // On the separator's line it shows as small muted text.
    const auto on = style(good, caretWithLine(good, int(good.indexOf("|:--"))));
    EXPECT_EQ(on->one(Role::tableAlignment, "|:--")->attributes.foreground, on->config.theme.mutedText.rgba());
}

TEST(MarkdownASTStyler, FormulasAndDiagramsRevealOnlyWithASelectionInside)
{
    const QString text = QStringLiteral("$$\nx^2\n$$\n\n```mermaid\ngraph TD\n```\n\n```mermaid\n  \n```\n");
    const int formula = 0;
    auto picture = [&](int caret) { return style(text, caretWithLine(text, caret), {}, true); };
    // The caret at the formula's first position leaves it rendered; one further reveals it.
    EXPECT_TRUE(picture(formula)->one(Role::latex, "$$")->attributes.has(MarkdownTextAttributes::Attachment) ||
                picture(formula)->at(Role::latex, "$$").front()->attributes.has(MarkdownTextAttributes::Attachment));
    const auto inside = picture(formula + 1);
    for (const auto* f : inside->at(Role::latex, "$$"))
        EXPECT_FALSE(f->attributes.has(MarkdownTextAttributes::Attachment));
    EXPECT_EQ(MarkdownASTStyler::formulaUnderSelection(MarkdownSourceEditorState::caret(1), inside->result.fragments),
              (MarkdownSourceRange{0, int(text.indexOf("\n\n")) + 1}));
    EXPECT_FALSE(MarkdownASTStyler::formulaUnderSelection(MarkdownSourceEditorState::caret(0), inside->result.fragments));

    const auto away = picture(int(text.size()));
    EXPECT_TRUE(away->one(Role::imageEmbed, "```mermaid\ngraph"));
    // A diagram whose source trims to nothing stays code.
    EXPECT_FALSE(away->one(Role::imageEmbed, "```mermaid\n  "));
    // With no renderer the formula is source in the formula ink.
    const auto none = style(text, caretWithLine(text, int(text.size())));
    EXPECT_EQ(none->one(Role::latex, "$$")->attributes.foreground, none->config.theme.latexInk().rgba());
    EXPECT_EQ(none->one(Role::latex, "$$")->attributes.paragraph().alignment, MarkdownParagraphMetrics::Alignment::center);
}

TEST(MarkdownASTStyler, DirectivesWithTheBuiltIns)
{
    const QString text = QStringLiteral(":::font size=20pt weight=bold\nbig\n:::\n\n:::color value=red\nred\n:::\n\n:::unknown\nx\n:::\n\nend");
    const auto s = style(text, caretWithLine(text, int(text.size())));
    const auto font = s->at(Role::directiveBody, "big");
    ASSERT_FALSE(font.empty()) << s->dump().toStdString();
    EXPECT_FLOAT_EQ(font.back()->attributes.font.pointSize, 20.f);
    EXPECT_TRUE(font.back()->attributes.font.isBold());
    const auto color = s->at(Role::directiveBody, "red\n:::");
    ASSERT_FALSE(color.empty()) << s->dump().toStdString();
    EXPECT_TRUE(color.front()->attributes.has(MarkdownTextAttributes::Foreground));
    EXPECT_TRUE(s->at(Role::directiveBody, "x\n:::").empty());
    EXPECT_TRUE(s->one(Role::directiveMarker, ":::font")->isHidden);
}

TEST(MarkdownASTStyler, FencesTakeColouringAndTags)
{
    const QString text = QStringLiteral("```c\nint x; #notag\n```\n\nA #tag here\n");
    const auto document = MarkdownDocument::parse(text);
    MarkdownEditorConfiguration config;
    QHash<QString, MarkdownStyledText> code;
    const QString key = MarkdownASTStyler::codeKey(document.blocks[0]);
    EXPECT_TRUE(key.startsWith(QStringLiteral("c\x01")));
    MarkdownTextAttributes red;
    red.setForeground(Qt::red);
    MarkdownStyledText colored(text.mid(document.blocks[0].contentRange.location, document.blocks[0].contentRange.length), {});
    colored.add({0, 3}, red);
    code.insert(key, colored);
    MarkdownASTStyler::Request request;
    request.document = &document;
    request.config = &config;
    request.highlightedCode = &code;
    const auto result = MarkdownASTStyler::style(request);
    const MarkdownStyledText styled = result.attributedString.resolved();
    const auto* run = styled.runAt(int(text.indexOf("int")));
    EXPECT_EQ(run->attributes.foreground, QColor(Qt::red).rgba());
    EXPECT_EQ(run->attributes.font.family(), MarkdownFont::systemMonospaced());
    const auto tags = result.fragments.fragments(Role::tag);
    ASSERT_EQ(tags.size(), 1u);
    EXPECT_EQ(tags[0]->range.location, text.indexOf("#tag"));
    const auto* info = result.fragments.fragment(3, Role::fenceInfo);
    ASSERT_TRUE(info);
    EXPECT_EQ(info->range, (MarkdownSourceRange{3, 1}));
}

TEST(MarkdownASTStyler, SelectionFragmentsMatchTheFullPass)
{
    const QString text = QStringLiteral("# A\n\n1. x\n2. y\n\ntext **b** #t\n\n> q\n");
    const int caret = int(text.indexOf("2."));
    const auto full = style(text, caretWithLine(text, caret));
    MarkdownASTStyler::Request request;
    request.document = &full->document;
    request.config = &full->config;
    request.selection = caretWithLine(text, caret);
    for (const auto& line : {request.selection.selectedLineRanges.front(), MarkdownSourceRange{int(text.indexOf("text")), 14}}) {
        const auto partial = MarkdownASTStyler::selectionFragments(request, {line});
        ASSERT_FALSE(partial.fragments.empty());
        for (const auto& f : partial.fragments) {
            const auto same = full->result.fragments.fragments(f.range);
            EXPECT_TRUE(std::any_of(same.begin(), same.end(), [&](auto* g) { return *g == f; }))
                << MarkdownFragmentDump::fragmentLine(f, text).toStdString();
        }
        ASSERT_EQ(partial.ranges.size(), 1u);
        EXPECT_TRUE(partial.ranges[0].location <= line.location && partial.ranges[0].upperBound() >= line.upperBound());
    }
}

TEST(MarkdownASTStyler, ParagraphMetrics)
{
    MarkdownEditorConfiguration config;
    const auto document = MarkdownDocument::parse(QStringLiteral("# H\n\n- a\n  - b\n"));
    const MarkdownFontDescriptor body = config.bodyFont();
    const auto heading = MarkdownASTStyler::paragraphStyle(document.blocks[0], config, body);
    EXPECT_FLOAT_EQ(heading.paragraphSpacingBefore, float(1.3 * 15));
    EXPECT_FLOAT_EQ(heading.paragraphSpacing, float(0.25 * 15 * 0.5));
    EXPECT_FLOAT_EQ(heading.minimumLineHeight, float(4 + 15 * 1.9 * 1.35));
    const auto nested = MarkdownASTStyler::paragraphStyle(document.blocks.back(), config, body);
    EXPECT_FLOAT_EQ(nested.firstLineHeadIndent, 24.f);
    EXPECT_FLOAT_EQ(nested.headIndent, float(24 + 24 * 0.6));
    config.paragraph.lineHeightFactor.reset();
    EXPECT_FLOAT_EQ(MarkdownASTStyler::baseParagraphStyle(config, 15).lineSpacing, 4.f);
    EXPECT_FLOAT_EQ(MarkdownASTStyler::baseParagraphStyle(config, 15).paragraphSpacing, float(15 * 0.55));
}

TEST(MarkdownASTStyler, BlockKindsTakeTheirRolesAndLooks)
{
    struct Case {
        const char16_t* text;
        Role role;
        int priority;
        double sizeFactor; // of the body size; 0: no font of its own
        bool muted;        // in mutedText
    };
    const Case cases[] = {
        {u"---\ntitle: x\n---\n", Role::frontMatter, 0, 0.9, true},
        {u"[^a]: the note", Role::footnote, 4, 0.95, true},
        {u"<div>\nx\n</div>", Role::html, 0, 0.92, false},
        {u"plain words", Role::paragraph, 0, 1.0, false},
        {u"```\ncode\n```", Role::fence, 5, 0.92, false},
        {u"### Three", Role::heading, 5, 1.3, false},
    };
    for (const Case& c : cases) {
        const QString text = QString::fromUtf16(c.text);
        SCOPED_TRACE(text.toStdString());
        MarkdownParseOptions options;
        options.blockHtml = true;
        Styled s;
        s.text = text;
        s.document = MarkdownDocument::parse(text, options);
        MarkdownASTStyler::Request request;
        request.document = &s.document;
        request.config = &s.config;
        s.result = MarkdownASTStyler::style(request);
        const auto found = s.result.fragments.fragments(c.role);
        const auto it = std::find_if(found.begin(), found.end(), [&](auto* f) { return f->priority == c.priority; });
        ASSERT_NE(it, found.end()) << s.dump().toStdString();
        EXPECT_FLOAT_EQ((*it)->attributes.font.pointSize, float(15 * c.sizeFactor));
        EXPECT_EQ((*it)->attributes.foreground == s.config.theme.mutedText.rgba(), c.muted);
    }
}

TEST(MarkdownASTStyler, HostileInputStaysLinear)
{
    // Thousands of list items at shifting indents, quote depths and a long table: a single
    // pass must stay well inside a generous bound and keep every range inside the text.
    QString text;
    for (int i = 0; i < 3000; ++i)
        text += QString(i % 7, u' ') + QString(i % 3, u'>') + QStringLiteral("- [ ] item **b** `c`\n");
    text += QStringLiteral("| a | b |\n|---|---|\n");
    for (int i = 0; i < 3000; ++i)
        text += QStringLiteral("| x | y |\n");
    QElapsedTimer timer;
    timer.start();
    const auto s = style(text, caretWithLine(text, int(text.size() / 2)));
    EXPECT_LT(timer.elapsed(), 20000);
    for (const auto& f : s->result.fragments.fragments())
        ASSERT_LE(f.range.upperBound(), text.size());
    EXPECT_EQ(s->result.attributedString.resolved().runs().back().range.upperBound(), text.size());
}

TEST(MarkdownASTStyler, TagsWhereverTheyFallInABlock)
{
    // The tag scan starts at the line of a block's first "#": what comes before that "#" on
    // its line, and on the lines after, must read as it does in the whole block.
    struct Case {
        const char16_t* text;
        std::vector<const char16_t*> tags; // each found at its first occurrence
    };
    const Case cases[] = {
        {u"plain line\nsecond #one and #two\n", {u"#one", u"#two"}},
        {u"word#no\n#yes", {u"#yes"}},
        {u"abc\n#t and &#35; then ##x", {u"#t"}},
        {u"a\nb `#code` #real\n", {u"#real"}},
        {u"# Heading #h\n\ntext\nmore #last", {u"#h", u"#last"}},
        {u"- item\n- item #li\n\n> quote\n> #q", {u"#li", u"#q"}},
    };
    for (const Case& c : cases) {
        const QString text = QString::fromUtf16(c.text);
        SCOPED_TRACE(text.toStdString());
        const auto s = style(text);
        std::vector<MarkdownSourceRange> expected;
        for (const char16_t* tag : c.tags)
            expected.push_back({int(text.indexOf(QString::fromUtf16(tag))), int(std::char_traits<char16_t>::length(tag))});
        std::vector<MarkdownSourceRange> found;
        for (const MarkdownEditorFragment* f : s->result.fragments.fragments(Role::tag))
            found.push_back(f->range);
        EXPECT_EQ(found, expected) << s->dump().toStdString();
    }
}

TEST(MarkdownASTStyler, DeepNestingStillStylesTileByTile)
{
    // Each level's markers follow its whole subtree in the walk: the deeper the nesting, the
    // further they are out of order, past where sorting by insertion gives way.
    QString text;
    for (int i = 0; i < 150; ++i)
        text += QStringLiteral("*a **b ");
    text += u'x';
    for (int i = 0; i < 150; ++i)
        text += QStringLiteral(" b** a*");
    text += QStringLiteral("\n\n[link *with* **many** `kids` ") + QStringLiteral("*e* ").repeated(200) + QStringLiteral("](u)\n");
    const auto s = style(text);
    const auto& fragments = s->result.fragments.fragments();
    EXPECT_FALSE(s->result.fragments.tileEnds().empty());
    EXPECT_TRUE(std::is_sorted(fragments.begin(), fragments.end(), [](const auto& a, const auto& b) {
        return a.range.location != b.range.location ? a.range.location < b.range.location : a.priority < b.priority;
    }));
}
