#pragma once

#include "MarkdownEngine/Core/MarkdownBlock.h"
#include "MarkdownEngine/Core/MarkdownDocumentChange.h"
#include "MarkdownEngine/Core/MarkdownOutlineItem.h"
#include "MarkdownEngine/Core/MarkdownParseOptions.h"
#include "MarkdownEngine/Core/MarkdownTextStatistics.h"
#include "MarkdownEngine/Parser/InlineParser.h"

#include <QHash>
#include <QString>
#include <QStringList>
#include <limits>
#include <vector>

namespace velmo::markdown {

// Lower-cased label to body text.
using MarkdownFootnoteDefinitions = QHash<QString, QString>;

// A parsed note. Every range in it is a UTF-16 offset into `text`; blocks are flat and in
// source order. Immutable once `parse` returns.
struct MarkdownDocument {
    QString text;
    std::vector<MarkdownBlock> blocks;
    MarkdownFootnoteDefinitions footnoteDefinitions;
    MarkdownLinkDefinitions linkDefinitions;
    MarkdownParseOptions options;
    // Where the first opener whose closer was looked for to the end of the note and not found
    // stands (the int's maximum when none): an edit after it may change it.
    int unclosedOpenerAt = std::numeric_limits<int>::max();

    struct WikiLinkReference {
        QString target;
        QString display;
        MarkdownSourceRange range;
    };

    [[nodiscard]] static MarkdownDocument parse(const QString& text, const MarkdownParseOptions& options = {});
    // The parse of `text`, an edit of old's text, equal to parse(text, old.options): the
    // blocks the edit cannot reach are taken over from `old` (moved by the length the edit
    // added) instead of parsed again. `change` says which.
    [[nodiscard]] static MarkdownDocument reparse(MarkdownDocument&& old, const QString& text,
                                                  MarkdownDocumentChange& change);

    template<typename Visit>
    void forEachBlock(Visit&& visit) const
    {
        for (const MarkdownBlock& block : blocks)
            block.forEach(visit);
    }

    // Every inline of every block with the list that holds it, in document order: a parent
    // before its children.
    template<typename Visit>
    void forEachInline(Visit&& visit) const
    {
        forEachBlock([&visit](const MarkdownBlock& block) {
            for (const MarkdownInline& top : block.inlines)
                top.forEach([&](const MarkdownInline& node) { visit(block.inlines, node); });
        });
    }

    // Every inline of every block, nested ones included, by location; a parent stands before
    // its first child. Pointers into this document.
    [[nodiscard]] std::vector<const MarkdownInline*> inlines() const;
    // The first block whose range holds i, an empty range counting as one unit.
    [[nodiscard]] const MarkdownBlock* block(int at) const;
    // The smallest inline whose range holds i, the earliest among equals.
    [[nodiscard]] const MarkdownInline* token(int at) const;
    [[nodiscard]] std::vector<MarkdownOutlineItem> outline() const;
    [[nodiscard]] MarkdownTextStatistics statistics(MarkdownSourceRange range, bool isSelection) const;
    [[nodiscard]] std::vector<WikiLinkReference> wikiLinks() const;
    [[nodiscard]] QStringList footnoteReferences() const; // repeats kept

    // The same text, blocks, inlines and definitions, block ids aside.
    [[nodiscard]] bool hasSameTree(const MarkdownDocument& other) const;

    // The text without markup, as titles and image alt texts show it; LF becomes a space.
    [[nodiscard]] static QString plainText(const QString& text);
};

}
