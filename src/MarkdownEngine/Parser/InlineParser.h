#pragma once

#include "MarkdownEngine/Core/MarkdownInlineList.h"
#include "MarkdownEngine/Core/MarkdownInlineNode.h"
#include "MarkdownEngine/Core/MarkdownParseOptions.h"
#include "MarkdownEngine/Core/MarkdownSourceRange.h"

#include <QHash>
#include <QSet>
#include <QString>
#include <QStringView>
#include <vector>

namespace velmo::markdown {

// Lower-cased label to destination, as the block pass collects them.
using MarkdownLinkDefinitions = QHash<QString, QString>;

// Turns a range of a note's text into inlines that partition it. Pure: every call is
// independent, and all ranges are offsets into the context's text.
//
// 1. Atoms: a walk finds the constructs that start at a definite unit and have their own
//    closer (code, escapes, math, links, images, wiki links, footnotes, autolinks and HTML,
//    strikethrough, highlight); each success claims its range.
// 2. Emphasis: the `*` and `_` runs outside the claimed ranges are collected with their
//    flanking, then paired on a stack.
// 3. Merge: atoms and emphasis sorted by location, gaps filled with text.
// The inner text of links, strikethrough and highlight is parsed again by the same steps;
// the inner text of emphasis needs no new walk, as its atoms and pairs are exactly those the
// enclosing walk found inside it. Nesting is followed with explicit stacks, never recursion,
// so no depth of input exhausts the stack.
class InlineParser {
public:
    // What a parse needs besides the range. Holds views and pointers only: the text and the
    // tables must outlive every parse made with it.
    struct Context {
        QStringView ns;
        const MarkdownLinkDefinitions* linkDefinitions = nullptr;
        const QSet<QString>* footnoteLabels = nullptr; // carried along; decides nothing here
        MarkdownParseOptions options;
        int longestLinkLabel = 0; // in UTF-16 units, over linkDefinitions

        Context(QStringView text, const MarkdownLinkDefinitions& linkDefinitions,
                const QSet<QString>& footnoteLabels, const MarkdownParseOptions& options);
        // No definitions at all.
        explicit Context(QStringView text, const MarkdownParseOptions& options = {});
    };

    // An emphasis delimiter run.
    struct Delimiter {
        char16_t character = 0;
        int location = 0;
        int count = 0;
        bool canOpen = false;
        bool canClose = false;
    };

    // Buffers that successive parses reuse, so that a note parsed block by block allocates
    // little beyond the trees it keeps. Belongs to one thread at a time.
    class Scratch {
    public:
        struct Frame;
        struct EmphasisSpan;
        struct Level;

        Scratch();
        ~Scratch();
        Scratch(const Scratch&) = delete;
        Scratch& operator=(const Scratch&) = delete;

    private:
        friend class InlineParser;
        std::vector<Frame> m_frames;           // one per nesting depth ever reached
        std::vector<EmphasisSpan> m_spans;
        std::vector<qsizetype> m_openers;
        std::vector<Level> m_levels;
        std::vector<MarkdownInline> m_gathered; // children of the open emphasis levels, in order
        std::vector<MarkdownInline> m_inner;    // the top level of an inner range, before adoption
        MarkdownInlineList::Builder m_builder;
    };

    // The range is clipped to the text; an empty result gives no inlines.
    [[nodiscard]] static MarkdownInlineList parse(MarkdownSourceRange range, const Context& context);
    [[nodiscard]] static MarkdownInlineList parse(MarkdownSourceRange range, const Context& context,
                                                  Scratch& scratch);
    // The same, appended to the builder's top level: a table's cells go into one list.
    static void parse(MarkdownSourceRange range, const Context& context, Scratch& scratch,
                      MarkdownInlineList::Builder& builder);
    // The same, in the range-free form, text taken from the source.
    [[nodiscard]] static std::vector<MarkdownInlineNode> nodes(MarkdownSourceRange range, const Context& context);
    // The flanking rules of a run, given the units before and after it (LF at the edges).
    [[nodiscard]] static Delimiter flanking(char16_t character, int location, int count, char16_t before,
                                            char16_t after);
};

}
