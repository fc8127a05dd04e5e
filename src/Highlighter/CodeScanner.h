#pragma once

#include "Highlighter/SyntaxLanguage.h"
#include "Highlighter/SyntaxToken.h"

#include <QStringView>
#include <array>
#include <cstdint>
#include <optional>
#include <vector>

namespace velmo::highlighter {

// One pass over UTF-16 code, no regular expressions, cost linear in the text.
//
// 1. The dialect picks the loop: `code` (most languages), `html`, `css`, `diff`, `latex`.
// 2. The code loop tries, at each unit: comments, strings, numbers, attributes, words,
//    operators; a word is a keyword, a type, a constant, a function (when "(" follows) or
//    plain.
// 3. Unclosed strings and comments end with the text (single-line strings with the line).
//
// Tokens come out in order, inside the text, never overlapping. A scanner lives for one scan;
// the language must outlive it.
class CodeScanner {
public:
    CodeScanner(QStringView code, const SyntaxLanguage& language);

    [[nodiscard]] std::vector<SyntaxToken> scan() &&;
    [[nodiscard]] static std::vector<SyntaxToken> scanned(QStringView code,
                                                         const SyntaxLanguage& language);

    // A word with a letter and no lower-case letter reads as a constant: MAX_SIZE, EOF.
    [[nodiscard]] static bool isConstantLike(QStringView word);

private:
    enum Class : std::uint8_t {
        quote = 1,
        attributePrefix = 2,
        commentStart = 4,
        operatorUnit = 8,
        identifierStart = 16,
        identifierPart = 32,
        digit = 64,
        point = 128,
    };

    [[nodiscard]] static constexpr std::array<std::uint8_t, 128> baseClasses();
    [[nodiscard]] char16_t at(qsizetype position) const
    {
        return position < end && position >= 0 ? units[position].unicode() : u'\0';
    }
    [[nodiscard]] std::uint8_t classOf(char16_t unit) const { return unit < 128 ? classes[unit] : 0; }
    void add(qsizetype start, qsizetype stop, SyntaxTokenKind kind);

    [[nodiscard]] bool matches(QStringView marker, qsizetype position) const;
    // Position of `marker` in [from, limit), or -1.
    [[nodiscard]] qsizetype find(QStringView marker, qsizetype from, qsizetype limit) const;
    [[nodiscard]] qsizetype lineEnd(qsizetype from) const;
    // Units taken by the identifier character at `position`: 0, 1, or 2 for a surrogate pair.
    [[nodiscard]] int identifierWidth(qsizetype position, bool start) const;

    void scanCode();
    void scanHtml();
    void scanCss();
    void scanDiff();
    void scanLatex();

    bool scanBlockComment();
    bool scanLineComment();
    [[nodiscard]] bool lineCommentAllowed(QStringView marker) const;
    bool scanString();
    // The string opened by `quote` at `index`; its token starts at `start` when a prefix
    // precedes the quote.
    void scanStringBody(char16_t quote, bool keyValuePairs, qsizetype start = -1);
    void scanNumber(bool dollarJoins = true);
    [[nodiscard]] bool isAttributeStart() const;
    void scanAttribute();
    void scanWord();
    void scanOperator();
    [[nodiscard]] std::optional<SyntaxTokenKind> classifyDiffLine(qsizetype start,
                                                                  qsizetype stop) const;
    void scanTag();
    void scanEmbedded(const SyntaxLanguage& embedded, qsizetype stop);
    void scanLatexCommand();

    QStringView units;
    qsizetype end = 0;
    const SyntaxLanguage& language;
    WordSet keywords;
    WordSet builtins;
    qsizetype longestWord = 0;
    qsizetype index = 0;
    std::vector<SyntaxToken> tokens;
    std::array<std::uint8_t, 128> classes{};
};

}
