#pragma once

#include "MarkdownEngine/Core/MarkdownBlock.h"
#include "MarkdownEngine/Core/MarkdownOutlineItem.h"
#include "MarkdownEngine/Core/MarkdownParseOptions.h"
#include "MarkdownEngine/Core/MarkdownTextStatistics.h"
#include "MarkdownEngine/Parser/InlineParser.h"

#include <QHash>
#include <QString>
#include <QStringList>
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

    struct WikiLinkReference {
        QString target;
        QString display;
        MarkdownSourceRange range;
    };

    [[nodiscard]] static MarkdownDocument parse(const QString& text, const MarkdownParseOptions& options = {});

    template<typename Visit>
    void forEachBlock(Visit&& visit) const
    {
        for (const MarkdownBlock& block : blocks)
            block.forEach(visit);
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

    // The text without markup, as titles and image alt texts show it; LF becomes a space.
    [[nodiscard]] static QString plainText(const QString& text);
};

}
