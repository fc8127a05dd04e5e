#include "MarkdownEngine/Core/MarkdownTextStatistics.h"

#include "MarkdownEngine/Core/TextCharacters.h"

#include <QChar>
#include <algorithm>
#include <cmath>

namespace velmo::markdown {

namespace {

enum class Class : unsigned char { other, word, wide, joiner };

// ASCII classes in a table: notes are mostly ASCII, and this loop is the whole cost.
constexpr auto asciiClasses = [] {
    std::array<Class, 128> table{};
    for (int c = 0; c < 128; ++c) {
        if ((c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'))
            table[c] = Class::word;
        else if (c == '\'' || c == '-')
            table[c] = Class::joiner;
    }
    return table;
}();

Class classify(char32_t c)
{
    if (c < 128)
        return asciiClasses[c];
    if (MarkdownTextStatistics::isWide(c)) {
        if (chars::isWhitespaceOrNewline(c) || chars::isPunctuation(c) || chars::isSymbol(c))
            return Class::other;
        return Class::wide;
    }
    if (c == 0x2019)
        return Class::joiner;
    return chars::isAlphanumeric(c) ? Class::word : Class::other;
}

}

bool MarkdownTextStatistics::isWide(char32_t c)
{
    return (c >= 0x1100 && c <= 0x11FF) || (c >= 0x2E80 && c <= 0x318F) || (c >= 0x31F0 && c <= 0x4DBF)
        || (c >= 0x4E00 && c <= 0x9FFF) || (c >= 0xA960 && c <= 0xA97F) || (c >= 0xAC00 && c <= 0xD7AF)
        || (c >= 0xF900 && c <= 0xFAFF) || (c >= 0xFF00 && c <= 0xFFEF) || (c >= 0x20000 && c <= 0x2FA1F);
}

MarkdownTextStatistics MarkdownTextStatistics::measure(QStringView text, MarkdownSourceRange range, bool isSelection)
{
    MarkdownTextStatistics result;
    result.isSelection = isSelection;
    const MarkdownSourceRange clipped = range.intersection({0, int(text.size())});
    if (clipped.length <= 0)
        return result;
    const QStringView slice = text.mid(clipped.location, clipped.length);
    const char16_t* units = reinterpret_cast<const char16_t*>(slice.data());
    const qsizetype size = slice.size();

    bool inWord = false;
    bool previousWasWord = false;
    // A joiner (apostrophe, hyphen) keeps a word open only when a word scalar follows; it is
    // decided when that next scalar is seen.
    bool pendingJoiner = false;
    qsizetype i = 0;
    while (i < size) {
        char32_t c = units[i];
        int length = 1;
        if (QChar::isHighSurrogate(c) && i + 1 < size && QChar::isLowSurrogate(units[i + 1])) {
            c = QChar::surrogateToUcs4(char16_t(c), units[i + 1]);
            length = 2;
        }
        i += length;
        ++result.characters;
        switch (classify(c)) {
        case Class::wide:
            ++result.cjkCharacters;
            inWord = previousWasWord = pendingJoiner = false;
            break;
        case Class::word:
            if (!inWord && !pendingJoiner)
                ++result.words;
            inWord = previousWasWord = true;
            pendingJoiner = false;
            break;
        case Class::joiner:
            pendingJoiner = previousWasWord && !pendingJoiner;
            inWord = inWord && pendingJoiner;
            previousWasWord = false;
            break;
        case Class::other:
            inWord = previousWasWord = pendingJoiner = false;
            break;
        }
    }
    return result;
}

MarkdownTextStatistics MarkdownTextStatistics::remeasured(const MarkdownTextStatistics& previous, QStringView before,
                                                          QStringView after, MarkdownSourceRange changed)
{
    const qsizetype delta = before.size() - after.size();
    const qsizetype prefix = std::clamp<qsizetype>(changed.location, 0, after.size());
    const qsizetype changedEnd = std::clamp<qsizetype>(changed.upperBound(), prefix, after.size());
    // From the start of the line of the change to the end of the line of its end, terminator
    // included, in both texts: a LF classes as neither word nor joiner, so it ends any word.
    const qsizetype start = prefix == 0 ? 0 : after.lastIndexOf(u'\n', prefix - 1) + 1;
    const qsizetype lineBreak = after.indexOf(u'\n', changedEnd);
    const qsizetype afterEnd = lineBreak < 0 ? after.size() : lineBreak + 1;
    const qsizetype beforeEnd = afterEnd + delta;
    if (beforeEnd < start || beforeEnd > before.size())
        return measure(after, {0, int(after.size())}, false);
    const MarkdownTextStatistics gone = measure(before, MarkdownSourceRange::fromBounds(int(start), int(beforeEnd)));
    const MarkdownTextStatistics come = measure(after, MarkdownSourceRange::fromBounds(int(start), int(afterEnd)));
    MarkdownTextStatistics result;
    result.words = previous.words - gone.words + come.words;
    result.characters = previous.characters - gone.characters + come.characters;
    result.cjkCharacters = previous.cjkCharacters - gone.cjkCharacters + come.cjkCharacters;
    return result;
}

int MarkdownTextStatistics::readingMinutes() const
{
    if (words == 0 && cjkCharacters == 0)
        return 0;
    const double minutes = std::ceil(words / 200.0 + cjkCharacters / 400.0);
    return std::max(1, int(minutes));
}

}
