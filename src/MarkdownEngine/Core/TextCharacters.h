#pragma once

#include <QString>
#include <QStringView>

// The character classes the engine's rules are written in, on Unicode general categories.
// Every parser, scanner and counter asks here, so "whitespace" means one thing everywhere.
namespace velmo::markdown::chars {

// Tab and the space separators (Zs).
[[nodiscard]] bool isWhitespace(char32_t c);
// isWhitespace, LF, VT, FF, CR, NEL, and the line and paragraph separators.
[[nodiscard]] bool isWhitespaceOrNewline(char32_t c);
// LF, VT, FF, CR, NEL, U+2028, U+2029.
[[nodiscard]] bool isNewline(char32_t c);
// Letters, marks and numbers (L*, M*, N*).
[[nodiscard]] bool isAlphanumeric(char32_t c);
// P*.
[[nodiscard]] bool isPunctuation(char32_t c);
// S*.
[[nodiscard]] bool isSymbol(char32_t c);
// Nd.
[[nodiscard]] bool isDecimalDigit(char32_t c);

// The scalar at i, with a lone surrogate standing for itself; `length` receives 1 or 2.
[[nodiscard]] char32_t scalarAt(QStringView text, qsizetype i, int* length = nullptr);

// Trims whitespace and newlines at both ends.
[[nodiscard]] QStringView trimmed(QStringView text);
// Trims tabs and Zs at both ends (no newlines).
[[nodiscard]] QStringView trimmedHorizontal(QStringView text);

// Line boundaries with the platform's rule: LF, CR, CRLF (one terminator), U+2028, U+2029,
// and NEL end a line.
struct LineBounds {
    qsizetype start = 0;
    qsizetype contentsEnd = 0; // before the terminator
    qsizetype end = 0;         // after the terminator
};
// The line holding offset i (i may equal the length).
[[nodiscard]] LineBounds lineAt(QStringView text, qsizetype i);
// The length of the terminator at i, 0 when none stands there.
[[nodiscard]] int terminatorLength(QStringView text, qsizetype i);

// Where two texts differ: they share [0, start) and their tails from beforeEnd and
// afterEnd on. Compares in blocks, as a keystroke in a large note asks this every time.
struct Difference {
    qsizetype start = 0;
    qsizetype beforeEnd = 0;
    qsizetype afterEnd = 0;
};
[[nodiscard]] Difference difference(QStringView before, QStringView after);

}
