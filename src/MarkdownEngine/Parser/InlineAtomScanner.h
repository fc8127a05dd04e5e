#pragma once

#include "MarkdownEngine/Core/MarkdownInline.h"
#include "MarkdownEngine/Parser/InlineCloserIndex.h"
#include "MarkdownEngine/Parser/InlineParser.h"

#include <optional>

namespace velmo::markdown {

// The recognisers of the atoms: constructs that start at a definite unit and have their own
// closer. Each looks at position p of a range ending at `end` and either returns the whole
// construct or nothing; none reads beyond `end`.
class InlineAtomScanner {
public:
    struct Atom {
        MarkdownInline node;
        bool parsesContent = false; // children still to come from parsing `contentRange`
        bool textChild = false;     // one text child over `contentRange`
    };
    struct Destination {
        QStringView destination;
        std::optional<QStringView> title;
    };

    // Payload texts that are no slice of the note go into `builder`.
    InlineAtomScanner(const InlineParser::Context& context, InlineCloserIndex& index,
                      MarkdownInlineList::Builder& builder);

    // The atom starting at p, if any: the dispatch on the unit at p.
    [[nodiscard]] std::optional<Atom> atomAt(int p, int end);

    [[nodiscard]] std::optional<Atom> escape(int p, int end) const;
    [[nodiscard]] std::optional<Atom> codeSpan(int p, int end);
    [[nodiscard]] std::optional<Atom> latex(int p, int end);
    [[nodiscard]] std::optional<Atom> bracketConstruct(int p, int end);
    [[nodiscard]] std::optional<Atom> image(int p, int end);
    [[nodiscard]] std::optional<Atom> wikiLink(int p, int end);
    [[nodiscard]] std::optional<Atom> footnoteReference(int p, int end);
    [[nodiscard]] std::optional<Atom> angleConstruct(int p, int end) const;
    [[nodiscard]] std::optional<Atom> pair(int p, int end);

    [[nodiscard]] static Destination splitDestination(QStringView text);

private:
    QStringView slice(int from, int to) const { return m_text.mid(from, to - from); }
    // A view into the note as a payload text. Empty ones all read the same, wherever they are.
    MarkdownInlineText textOf(QStringView view) const
    {
        return view.isEmpty() ? MarkdownInlineText() : MarkdownInlineText{int(view.data() - m_text.data()), int(view.size())};
    }
    std::optional<QString> referenceDestination(QStringView label) const;

    const InlineParser::Context& m_context;
    QStringView m_text;
    InlineCloserIndex& m_index;
    MarkdownInlineList::Builder& m_builder;
};

}
