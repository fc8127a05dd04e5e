#pragma once

#include "MarkdownEngine/Core/MarkdownBlock.h"
#include "MarkdownEngine/Core/MarkdownDocument.h"
#include "MarkdownEngine/Core/MarkdownListMarker.h"
#include "MarkdownEngine/Core/MarkdownParseOptions.h"
#include "MarkdownEngine/Core/MarkdownTableAlignment.h"
#include "MarkdownEngine/Directives/DirectiveArguments.h"
#include "MarkdownEngine/Directives/DirectiveSyntax.h"

#include <QString>
#include <QStringView>
#include <QVarLengthArray>
#include <functional>
#include <limits>
#include <optional>
#include <vector>

namespace velmo::markdown {

// Turns a note into the flat list of blocks of a document.
//
// 1. `split` cuts the text into lines at LF only, reading each line's quote prefix.
// 2. `parseBlocks` offers the line under the cursor to the block parsers in a fixed order; the
//    first that accepts takes its lines. Link definitions add no block.
// 3. `attachQuoteMarkers` gives each block the quote markers of its lines.
// 4. `attachInlines` runs the inline parser over each block's content, once every definition
//    of the note is known.
class BlockTokenizer {
public:
    // One line; compact, as a note of short lines has one of these per few bytes. The quote
    // markers are not stored: `quoteMarkers` reads them back from the text.
    struct SourceLine {
        MarkdownSourceRange fullRange;    // with the terminator
        MarkdownSourceRange contentRange; // after the quote prefix, without the terminator
        int quoteDepth = 0;
        int indent = 0;   // leading blanks of `text`: tab 4, space 1
        QStringView text; // the characters of contentRange, a view into the note
        QStringView trimmed; // `text` trimmed of tabs and Zs; every block parser asks for it
        bool isBlank = true;
    };
    using QuoteMarkers = QVarLengthArray<MarkdownSourceRange, 4>;

    struct FootnoteMatch {
        QString label;
        int contentOffset = 0; // grapheme clusters up to the colon, and one space after it
    };

    struct DirectiveOpener {
        QString name;
        DirectiveSyntax::Form form = DirectiveSyntax::Form::leaf;
        DirectiveArguments arguments;
        MarkdownSourceRange markerRange;  // relative to the trimmed line
        MarkdownSourceRange contentRange; // relative to the trimmed line
    };

    struct FenceMatch {
        char16_t character = u'`';
        int length = 3;
        QStringView info; // the rest of the line, untrimmed
    };

    BlockTokenizer(const QString& text, const MarkdownParseOptions& options);
    // Only the lines of text[from, to), `to` being a line's end or the text's; ranges stay the
    // whole text's. Front matter is looked for only when `from` is 0.
    BlockTokenizer(const QString& text, const MarkdownParseOptions& options, qsizetype from, qsizetype to);

    // The whole parse.
    [[nodiscard]] static MarkdownDocument document(const QString& text, const MarkdownParseOptions& options);

    [[nodiscard]] static std::vector<SourceLine> split(QStringView text);
    [[nodiscard]] static std::vector<SourceLine> split(QStringView text, qsizetype from, qsizetype to);
    [[nodiscard]] std::vector<MarkdownBlock> parseBlocks();
    // Stops before the first block whose first line `stop` accepts, and says where.
    using StopPredicate = std::function<bool(int line)>;
    [[nodiscard]] std::vector<MarkdownBlock> parseBlocks(const StopPredicate& stop);
    // The line parseBlocks stopped at; the line count when it ran to the end.
    int stoppedAt() const { return m_cursor; }
    // Each covers a `>` and the one space after it, if any.
    [[nodiscard]] static QuoteMarkers quoteMarkers(const SourceLine& line, QStringView text);
    static void attachQuoteMarkers(std::vector<MarkdownBlock>& blocks, const std::vector<SourceLine>& lines,
                                   QStringView text);
    static void attachInlines(std::vector<MarkdownBlock>& blocks, const InlineParser::Context& context);
    // With the text, definitions and options of `definitions`; its own blocks are not read.
    static void attachInlines(std::vector<MarkdownBlock>& blocks, const MarkdownDocument& definitions);

    // Shared with the editing commands. `trimmed` means trimmed of tabs and Zs.
    [[nodiscard]] static std::optional<FenceMatch> fenceMarker(QStringView trimmed);
    [[nodiscard]] static std::optional<int> setextLevel(QStringView trimmed);
    // On a line's text after its quote prefix; ranges relative to that text.
    [[nodiscard]] static std::optional<MarkdownListMarker> listMarker(QStringView line);
    [[nodiscard]] static std::optional<char16_t> thematicBreakCharacter(QStringView text);
    [[nodiscard]] static std::optional<std::vector<MarkdownTableAlignment>> tableAlignments(QStringView text,
                                                                                            int limit);
    [[nodiscard]] static std::optional<FootnoteMatch> footnoteDefinition(QStringView text);
    [[nodiscard]] static std::optional<DirectiveOpener> directiveOpener(QStringView text);

    const QString& text() const { return m_text; }
    const std::vector<SourceLine>& lines() const { return m_lines; }
    const MarkdownFootnoteDefinitions& footnoteDefinitions() const { return m_footnoteDefinitions; }
    const MarkdownLinkDefinitions& linkDefinitions() const { return m_linkDefinitions; }
    // Where the first opener whose closer was looked for to the end and not found stands: a
    // closer written anywhere after it changes what it is.
    int unclosedOpenerAt() const { return m_unclosedOpenerAt; }
    // Whether a link definition was read: they add no block.
    bool readLinkDefinition() const { return m_readLinkDefinition; }

private:
    // Remembers the last search for lines that close a construct, so that a text full of
    // unclosed openers is searched once and not once per opener.
    struct CloserMemo {
        bool valid = false;
        int searchedAfter = 0; // the lines after this one up to `foundAt` hold no closer
        int foundAt = -1;      // -1: none to the end of the text
    };

    std::optional<MarkdownBlock> parseFrontMatter();
    std::optional<MarkdownBlock> parseDirective();
    std::optional<MarkdownBlock> parseFence();
    std::optional<MarkdownBlock> parseLatexBlock();
    std::optional<MarkdownBlock> parseFootnoteDefinition();
    std::optional<MarkdownBlock> parseHeading();
    std::optional<MarkdownBlock> parseTable();
    std::optional<MarkdownBlock> parseThematicBreak();
    bool parseLinkDefinition();
    std::optional<MarkdownBlock> parseHTMLBlock();
    std::optional<MarkdownBlock> parseListItem();
    void parseParagraph(std::vector<MarkdownBlock>& into);

    bool startsNewBlock(int index) const;
    std::vector<MarkdownTableCell> tableCells(const SourceLine& line, int row,
                                              const std::vector<MarkdownTableAlignment>& alignments) const;
    template<typename IsCloser>
    int findCloser(int after, CloserMemo& memo, IsCloser&& isCloser) const;
    MarkdownBlock makeBlock(MarkdownBlockKind kind, int firstLine, int lastLine,
                            std::optional<MarkdownSourceRange> contentRange, MarkdownMarkerRanges markers) const;

    QString m_text;
    QStringView m_ns;
    MarkdownParseOptions m_options;
    MarkdownFootnoteDefinitions m_footnoteDefinitions;
    MarkdownLinkDefinitions m_linkDefinitions;
    std::vector<SourceLine> m_lines;
    int m_cursor = 0;
    int m_unclosedOpenerAt = std::numeric_limits<int>::max();
    bool m_readLinkDefinition = false;

    CloserMemo m_dollarCloser;
    CloserMemo m_bracketCloser;
    CloserMemo m_containerCloser;
    CloserMemo m_htmlClosers[7];
};

}
