#include "VelmoMath/TeXLexer.h"

// The lexer, in one pass over the UTF-16 units:
//  1. runs of tab, LF, CR and space become one whitespace token;
//  2. the eight special characters & [ ] ^ _ { } get their own kinds;
//  3. a backslash starts a command: a run of ASCII letters (eating one space behind it),
//     a second backslash (row break), or any single other unit ("\\," "\\{");
//  4. anything else is a one-character token; a valid surrogate pair stays one character,
//     a lone surrogate reads as U+FFFD.

namespace velmo::math {

namespace {

const QChar replacementCharacter(0xFFFD);

bool isLexWhitespace(QChar c)
{
    return c == u' ' || c == u'\t' || c == u'\n' || c == u'\r';
}

bool isAsciiLetter(QChar c)
{
    const char16_t u = c.unicode();
    return (u >= u'a' && u <= u'z') || (u >= u'A' && u <= u'Z');
}

}

std::vector<TeXToken> TeXLexer::run(QStringView units)
{
    TeXLexer lexer(units);
    lexer.tokens.reserve(size_t(units.size()));
    lexer.scan();
    return std::move(lexer.tokens);
}

void TeXLexer::scan()
{
    using Kind = TeXToken::Kind;
    const qsizetype n = units.size();
    while (index < n) {
        const qsizetype start = index;
        const QChar c = units[index];
        if (isLexWhitespace(c)) {
            while (index < n && isLexWhitespace(units[index]))
                ++index;
            tokens.push_back({Kind::whitespace, units.sliced(start, index - start), start});
            continue;
        }
        Kind kind = Kind::character;
        switch (c.unicode()) {
        case u'&': kind = Kind::alignment; break;
        case u'[': kind = Kind::openBracket; break;
        case u']': kind = Kind::closeBracket; break;
        case u'^': kind = Kind::supMark; break;
        case u'_': kind = Kind::subMark; break;
        case u'{': kind = Kind::openBrace; break;
        case u'}': kind = Kind::closeBrace; break;
        case u'\\':
            ++index;
            scanBackslash(start);
            continue;
        default: break;
        }
        if (kind != Kind::character) {
            ++index;
            tokens.push_back({kind, units.sliced(start, 1), start});
            continue;
        }
        if (c.isHighSurrogate() && index + 1 < n && units[index + 1].isLowSurrogate()) {
            index += 2;
            tokens.push_back({Kind::character, units.sliced(start, 2), start});
            continue;
        }
        ++index;
        const QStringView text = c.isSurrogate() ? QStringView(&replacementCharacter, 1) : units.sliced(start, 1);
        tokens.push_back({Kind::character, text, start});
    }
}

void TeXLexer::scanBackslash(qsizetype start)
{
    using Kind = TeXToken::Kind;
    const qsizetype n = units.size();
    if (index >= n)
        return;
    const QChar c = units[index];
    if (c == u'\\') {
        ++index;
        tokens.push_back({Kind::rowBreak, units.sliced(start, 2), start});
        return;
    }
    if (isAsciiLetter(c)) {
        const qsizetype nameStart = index;
        while (index < n && isAsciiLetter(units[index]))
            ++index;
        const QStringView name = units.sliced(nameStart, index - nameStart);
        if (index < n && units[index] == u' ')
            ++index;
        tokens.push_back({Kind::command, name, start});
        return;
    }
    // A single-unit command: "\\,", "\\{", "\\ ". A lone surrogate is repaired as for characters.
    ++index;
    const QStringView name = c.isSurrogate() ? QStringView(&replacementCharacter, 1) : units.sliced(index - 1, 1);
    tokens.push_back({Kind::command, name, start});
}

}
