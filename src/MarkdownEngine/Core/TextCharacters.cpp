#include "MarkdownEngine/Core/TextCharacters.h"

#include <QChar>
#include <cstring>

namespace velmo::markdown::chars {

bool isNewline(char32_t c)
{
    return (c >= 0x0A && c <= 0x0D) || c == 0x85 || c == 0x2028 || c == 0x2029;
}

bool isWhitespace(char32_t c)
{
    if (c == '\t' || c == ' ')
        return true;
    if (c < 0x80)
        return false;
    return QChar::category(c) == QChar::Separator_Space;
}

bool isWhitespaceOrNewline(char32_t c)
{
    return isWhitespace(c) || isNewline(c);
}

bool isAlphanumeric(char32_t c)
{
    if (c < 0x80)
        return (c >= '0' && c <= '9') || ((c | 0x20) >= 'a' && (c | 0x20) <= 'z');
    switch (QChar::category(c)) {
    case QChar::Mark_NonSpacing:
    case QChar::Mark_SpacingCombining:
    case QChar::Mark_Enclosing:
    case QChar::Number_DecimalDigit:
    case QChar::Number_Letter:
    case QChar::Number_Other:
    case QChar::Letter_Uppercase:
    case QChar::Letter_Lowercase:
    case QChar::Letter_Titlecase:
    case QChar::Letter_Modifier:
    case QChar::Letter_Other:
        return true;
    default:
        return false;
    }
}

bool isPunctuation(char32_t c)
{
    switch (QChar::category(c)) {
    case QChar::Punctuation_Connector:
    case QChar::Punctuation_Dash:
    case QChar::Punctuation_Open:
    case QChar::Punctuation_Close:
    case QChar::Punctuation_InitialQuote:
    case QChar::Punctuation_FinalQuote:
    case QChar::Punctuation_Other:
        return true;
    default:
        return false;
    }
}

bool isSymbol(char32_t c)
{
    switch (QChar::category(c)) {
    case QChar::Symbol_Math:
    case QChar::Symbol_Currency:
    case QChar::Symbol_Modifier:
    case QChar::Symbol_Other:
        return true;
    default:
        return false;
    }
}

bool isDecimalDigit(char32_t c)
{
    if (c < 0x80)
        return c >= '0' && c <= '9';
    return QChar::category(c) == QChar::Number_DecimalDigit;
}

char32_t scalarAt(QStringView text, qsizetype i, int* length)
{
    const char16_t unit = text[i].unicode();
    if (QChar::isHighSurrogate(unit) && i + 1 < text.size() && QChar::isLowSurrogate(text[i + 1].unicode())) {
        if (length)
            *length = 2;
        return QChar::surrogateToUcs4(unit, text[i + 1].unicode());
    }
    if (length)
        *length = 1;
    return unit;
}

template<typename Predicate>
static QStringView trimmedBy(QStringView text, Predicate isSpace)
{
    qsizetype start = 0;
    qsizetype end = text.size();
    // Spaces and newlines are all in the BMP, so unit tests suffice. Printable ASCII is never
    // one of them: most ends are settled without the category lookup.
    const auto isSpaceUnit = [&isSpace](char16_t unit) { return (unit <= 0x20 || unit >= 0x7F) && isSpace(unit); };
    while (start < end && isSpaceUnit(text[start].unicode()))
        ++start;
    while (end > start && isSpaceUnit(text[end - 1].unicode()))
        --end;
    return text.mid(start, end - start);
}

QStringView trimmed(QStringView text)
{
    return trimmedBy(text, isWhitespaceOrNewline);
}

QStringView trimmedHorizontal(QStringView text)
{
    return trimmedBy(text, isWhitespace);
}

int terminatorLength(QStringView text, qsizetype i)
{
    if (i >= text.size())
        return 0;
    switch (text[i].unicode()) {
    case '\r':
        return i + 1 < text.size() && text[i + 1] == u'\n' ? 2 : 1;
    case '\n':
    case 0x85:
    case 0x2028:
    case 0x2029:
        return 1;
    default:
        return 0;
    }
}

LineBounds lineAt(QStringView text, qsizetype i)
{
    LineBounds bounds;
    qsizetype start = std::min(i, text.size());
    // A CR directly before i, when i is the LF of a CRLF, belongs to this line's terminator.
    if (start > 0 && start < text.size() && text[start] == u'\n' && text[start - 1] == u'\r')
        --start;
    while (start > 0 && terminatorLength(text, start - 1) == 0)
        --start;
    bounds.start = start;
    qsizetype end = start;
    while (end < text.size() && terminatorLength(text, end) == 0)
        ++end;
    bounds.contentsEnd = end;
    bounds.end = end + terminatorLength(text, end);
    return bounds;
}

Difference difference(QStringView before, QStringView after)
{
    constexpr qsizetype block = 256;
    const QChar* a = before.data();
    const QChar* b = after.data();
    const qsizetype limit = std::min(before.size(), after.size());
    qsizetype prefix = 0;
    while (prefix + block <= limit && std::memcmp(a + prefix, b + prefix, block * sizeof(QChar)) == 0)
        prefix += block;
    while (prefix < limit && a[prefix] == b[prefix])
        ++prefix;
    const QChar* aEnd = a + before.size();
    const QChar* bEnd = b + after.size();
    qsizetype suffix = 0;
    while (suffix + block <= limit - prefix
           && std::memcmp(aEnd - suffix - block, bEnd - suffix - block, block * sizeof(QChar)) == 0)
        suffix += block;
    while (suffix < limit - prefix && aEnd[-1 - suffix] == bEnd[-1 - suffix])
        ++suffix;
    return {prefix, before.size() - suffix, after.size() - suffix};
}

}
