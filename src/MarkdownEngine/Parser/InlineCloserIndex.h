#pragma once

#include "MarkdownEngine/Core/MarkdownSourceRange.h"

#include <QStringView>
#include <optional>
#include <utility>
#include <vector>

namespace velmo::markdown {

// Where the closers of inline constructs stand in one range, each table found in one pass
// when first asked for. The scans as written restart at every opener, which is quadratic on
// hostile input (100,000 unclosed brackets, backtick runs without partners); a lookup here
// gives exactly what such a scan would, in logarithmic time.
//
// Built for a top-level range, it answers for any subrange of it too: each query takes the
// subrange's end, and a closer at or beyond it counts as none, which is what a scan confined
// to the subrange finds. That holds because a subrange never splits a run that the tables
// treat as one unit (subranges start and end next to `[`, `]`, `*`, `_`, `~` or `=`).
class InlineCloserIndex {
public:
    InlineCloserIndex(QStringView text, MarkdownSourceRange range);

    // The `]` partnering the `[` at p: `[` adds 1, `]` takes 1 off, a backslash skips the unit
    // after it, and LF at depth 1 fails.
    [[nodiscard]] std::optional<int> matchingBracket(int p, int end);
    // The `)` partnering the `(` at p, with the same skips; any LF fails.
    [[nodiscard]] std::optional<int> matchingParen(int p, int end);
    // The first maximal backtick run of exactly `length` units starting at or after `from`
    // that ends by `end`.
    [[nodiscard]] std::optional<int> backtickRun(int from, int length, int end);
    // The first `$` at or after `from`, before `end`.
    [[nodiscard]] std::optional<int> dollar(int from, int end);
    // The first position at or after `from` holding two units `unit` that both lie before
    // `end`: for `$$`, `~~` and `==`.
    [[nodiscard]] std::optional<int> doubled(char16_t unit, int from, int end);
    // The first LF at or after `from`, before `end`.
    [[nodiscard]] std::optional<int> lineFeed(int from, int end);

private:
    // An opener's position and its partner's, -1 for none.
    using Partners = std::vector<std::pair<int, int>>;
    struct Run {
        int length;
        int start;
        friend bool operator<(Run a, Run b) { return a.length != b.length ? a.length < b.length : a.start < b.start; }
    };

    void buildPartners(Partners& partners, char16_t open, char16_t close, bool lineEndFailsEveryDepth) const;
    // Queries mostly come in increasing order: `hint` remembers the last answer's slot.
    static std::optional<int> partnerOf(const Partners& partners, size_t& hint, int p, int end);
    std::optional<int> firstPosition(char16_t unit, bool doubledUnit, int from);

    QStringView m_text;
    MarkdownSourceRange m_range;
    std::optional<Partners> m_brackets;
    std::optional<Partners> m_parens;
    size_t m_bracketHint = 0;
    size_t m_parenHint = 0;
    std::optional<std::vector<Run>> m_runsByStart;  // every maximal run, by start
    std::vector<Run> m_runsByLength;                // the same, by length then start
    // Positions of `$`, LF, `$$`, `~~`, `==`, built on demand.
    std::optional<std::vector<int>> m_positions[5];
    size_t m_positionHints[5] = {};
};

}
