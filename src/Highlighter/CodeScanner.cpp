#include "Highlighter/CodeScanner.h"

#include "Highlighter/SyntaxLanguageCatalog.h"

#include <QChar>

namespace velmo::highlighter {

namespace {

constexpr bool isAsciiLetter(char16_t unit)
{
    return (unit >= u'a' && unit <= u'z') || (unit >= u'A' && unit <= u'Z');
}

constexpr bool isAsciiDigit(char16_t unit) { return unit >= u'0' && unit <= u'9'; }

constexpr bool isHexDigit(char16_t unit)
{
    return isAsciiDigit(unit) || (unit >= u'a' && unit <= u'f') || (unit >= u'A' && unit <= u'F');
}

constexpr bool isLineBreak(char16_t unit)
{
    return unit == u'\n' || unit == u'\r' || unit == 0x2028 || unit == 0x2029;
}

constexpr bool isBlank(char16_t unit) { return unit == u' ' || unit == u'\t'; }

constexpr char16_t asciiLower(char16_t unit)
{
    return unit >= u'A' && unit <= u'Z' ? char16_t(unit + 32) : unit;
}

// The longest run of letters taken as a string's prefix: "rb", "u8".
constexpr qsizetype maxStringPrefix = 2;

// Words longer than this are never looked up: no list holds one, and the lower-casing buffer
// stays on the stack.
constexpr qsizetype longestListedWord = 64;

// Header lines of unified and git diffs; other lines without a marker get no token.
constexpr QLatin1StringView diffHeaders[] = {
    QLatin1StringView("diff "),          QLatin1StringView("index "),
    QLatin1StringView("Index: "),        QLatin1StringView("====="),
    QLatin1StringView("new file mode"),  QLatin1StringView("deleted file mode"),
    QLatin1StringView("old mode"),       QLatin1StringView("new mode"),
    QLatin1StringView("similarity index"), QLatin1StringView("dissimilarity index"),
    QLatin1StringView("rename from"),    QLatin1StringView("rename to"),
    QLatin1StringView("copy from"),      QLatin1StringView("copy to"),
    QLatin1StringView("Binary files"),   QLatin1StringView("Only in "),
    QLatin1StringView("commit "),        QLatin1StringView("Author:"),
    QLatin1StringView("Date:"),          QLatin1StringView("From "),
    QLatin1StringView("***"),
};

}

// The classes every language shares; the language's own marks are added per scan.
constexpr std::array<std::uint8_t, 128> CodeScanner::baseClasses()
{
    std::array<std::uint8_t, 128> table{};
    for (char16_t unit = 0; unit < 128; ++unit) {
        std::uint8_t flags = 0;
        if (isAsciiLetter(unit) || unit == u'_')
            flags |= identifierStart | identifierPart;
        if (isAsciiDigit(unit))
            flags |= digit | identifierPart;
        for (char16_t sign : u"+-*/%=<>!&|^~?") {
            if (sign != 0 && sign == unit)
                flags |= operatorUnit;
        }
        if (unit == u'.')
            flags |= point;
        table[unit] = flags;
    }
    return table;
}

CodeScanner::CodeScanner(QStringView code, const SyntaxLanguage& language)
    : units(code)
    , end(code.size())
    , language(language)
    , keywords(language.caseSensitive ? language.keywords : language.keywords.lowercased())
    , builtins(language.caseSensitive ? language.builtins : language.builtins.lowercased())
{
    longestWord = std::max(keywords.maxLength(), builtins.maxLength());
    classes = baseClasses();
    for (char16_t unit : language.quotes) {
        if (unit < 128)
            classes[unit] |= quote;
    }
    for (char16_t unit : language.attributePrefixes) {
        if (unit < 128)
            classes[unit] |= attributePrefix;
    }
    for (const QString& marker : language.lineComments) {
        if (!marker.isEmpty() && marker[0].unicode() < 128)
            classes[marker[0].unicode()] |= commentStart;
    }
    for (const SyntaxLanguage::BlockComment& marker : language.blockComments) {
        if (!marker.open.isEmpty() && marker.open[0].unicode() < 128)
            classes[marker.open[0].unicode()] |= commentStart;
    }
}

std::vector<SyntaxToken> CodeScanner::scanned(QStringView code, const SyntaxLanguage& language)
{
    return CodeScanner(code, language).scan();
}

std::vector<SyntaxToken> CodeScanner::scan() &&
{
    tokens.reserve(std::size_t(end / 8));
    switch (language.dialect) {
    case SyntaxLanguage::Dialect::code:
        // A language with no rules at all is plain text: nothing in it is coloured.
        if (language.keywords.isEmpty() && language.builtins.isEmpty()
            && language.lineComments.empty() && language.blockComments.empty()
            && language.quotes.empty() && language.attributePrefixes.empty())
            break;
        scanCode();
        break;
    case SyntaxLanguage::Dialect::html:
        scanHtml();
        break;
    case SyntaxLanguage::Dialect::css:
        scanCss();
        break;
    case SyntaxLanguage::Dialect::diff:
        scanDiff();
        break;
    case SyntaxLanguage::Dialect::latex:
        scanLatex();
        break;
    }
    return std::move(tokens);
}

bool CodeScanner::isConstantLike(QStringView word)
{
    bool letter = false;
    for (QChar unit : word) {
        if (unit.isLower())
            return false;
        letter = letter || unit.isLetter();
    }
    return letter;
}

void CodeScanner::add(qsizetype start, qsizetype stop, SyntaxTokenKind kind)
{
    if (stop > start)
        tokens.push_back({{start, stop - start}, kind});
}

bool CodeScanner::matches(QStringView marker, qsizetype position) const
{
    return !marker.isEmpty() && position + marker.size() <= end
        && units.sliced(position, marker.size()) == marker;
}

qsizetype CodeScanner::find(QStringView marker, qsizetype from, qsizetype limit) const
{
    if (marker.isEmpty() || from >= limit)
        return -1;
    const qsizetype found = units.sliced(from, limit - from).indexOf(marker);
    return found < 0 ? -1 : from + found;
}

qsizetype CodeScanner::lineEnd(qsizetype from) const
{
    while (from < end && !isLineBreak(units[from].unicode()))
        ++from;
    return from;
}

int CodeScanner::identifierWidth(qsizetype position, bool start) const
{
    const char16_t unit = at(position);
    if (unit < 128) {
        if (unit == 0 && position >= end)
            return 0;
        return (classes[unit] & (start ? identifierStart : identifierPart)) ? 1 : 0;
    }
    char32_t scalar = unit;
    int width = 1;
    if (QChar::isHighSurrogate(unit) && QChar::isLowSurrogate(at(position + 1))) {
        scalar = QChar::surrogateToUcs4(unit, at(position + 1));
        width = 2;
    } else if (QChar::isSurrogate(unit)) {
        return 0;
    }
    if (QChar::isLetter(scalar))
        return width;
    if (!start && (QChar::isNumber(scalar) || QChar::isMark(scalar)))
        return width;
    return 0;
}

// The code dialect: most languages.

void CodeScanner::scanCode()
{
    while (index < end) {
        const char16_t unit = units[index].unicode();
        if (unit >= 128) {
            if (identifierWidth(index, true) > 0)
                scanWord();
            else
                ++index;
            continue;
        }
        const std::uint8_t flags = classes[unit];
        if (flags == 0) {
            ++index;
            continue;
        }
        if ((flags & commentStart) && (scanBlockComment() || scanLineComment()))
            continue;
        if ((flags & quote) && scanString())
            continue;
        if ((flags & digit)
            || ((flags & point) && isAsciiDigit(at(index + 1)) && at(index - 1) != u'.'
                && !(classOf(at(index - 1)) & identifierPart))) {
            scanNumber();
            continue;
        }
        if ((flags & attributePrefix) && isAttributeStart()) {
            scanAttribute();
            continue;
        }
        if (flags & identifierStart) {
            scanWord();
            continue;
        }
        if (flags & operatorUnit) {
            scanOperator();
            continue;
        }
        ++index;
    }
}

bool CodeScanner::scanBlockComment()
{
    for (const SyntaxLanguage::BlockComment& marker : language.blockComments) {
        if (!matches(marker.open, index))
            continue;
        const qsizetype start = index;
        const qsizetype close = find(marker.close, index + marker.open.size(), end);
        index = close < 0 ? end : close + marker.close.size();
        add(start, index, SyntaxTokenKind::comment);
        return true;
    }
    return false;
}

bool CodeScanner::scanLineComment()
{
    for (const QString& marker : language.lineComments) {
        if (!matches(marker, index) || !lineCommentAllowed(marker))
            continue;
        const qsizetype start = index;
        index = lineEnd(index + marker.size());
        add(start, index, SyntaxTokenKind::comment);
        return true;
    }
    return false;
}

bool CodeScanner::lineCommentAllowed(QStringView marker) const
{
    // "$#" is the shell's argument count, not a comment.
    if (marker == u"#" && at(index - 1) == u'$')
        return false;
    // A marker that also opens strings (Vim's ") is a comment only first on its line.
    if (marker.size() == 1 && (classOf(marker[0].unicode()) & quote)) {
        for (qsizetype before = index - 1; before >= 0; --before) {
            const char16_t unit = units[before].unicode();
            if (isLineBreak(unit))
                return true;
            if (!isBlank(unit))
                return false;
        }
    }
    return true;
}

bool CodeScanner::scanString()
{
    const char16_t quoteUnit = units[index].unicode();
    // A quote that also prefixes attributes marks a lifetime or type variable ('a, 'static)
    // when no closing quote follows the word.
    if (classes[quoteUnit] & attributePrefix) {
        // After a word it is a prime (foldl', x') rather than a quote.
        if (classOf(at(index - 1)) & identifierPart)
            return false;
        qsizetype after = index + 1;
        int width = identifierWidth(after, true);
        if (width > 0) {
            while (width > 0) {
                after += width;
                width = identifierWidth(after, false);
            }
            if (at(after) != quoteUnit)
                return false;
        }
    }
    scanStringBody(quoteUnit, language.keyValuePairs);
    return true;
}

void CodeScanner::scanStringBody(char16_t quoteUnit, bool keyValuePairs, qsizetype start)
{
    if (start < 0)
        start = index;
    const bool triple = at(index + 1) == quoteUnit && at(index + 2) == quoteUnit;
    const bool spansLines = triple || quoteUnit == u'`';
    index += triple ? 3 : 1;
    while (index < end) {
        const char16_t unit = units[index].unicode();
        if (unit == u'\\' && language.escapes && index + 1 < end) {
            index += 2;
            continue;
        }
        if (unit == quoteUnit) {
            if (!triple) {
                ++index;
                break;
            }
            if (at(index + 1) == quoteUnit && at(index + 2) == quoteUnit) {
                index += 3;
                break;
            }
        } else if (!spansLines && isLineBreak(unit)) {
            break;
        }
        ++index;
    }
    SyntaxTokenKind kind = SyntaxTokenKind::string;
    if (keyValuePairs) {
        qsizetype after = index;
        while (isBlank(at(after)))
            ++after;
        if (at(after) == u':')
            kind = SyntaxTokenKind::attribute;
    }
    add(start, index, kind);
}

void CodeScanner::scanNumber(bool dollarJoins)
{
    const qsizetype start = index;
    const char16_t next = at(index + 1);
    if (units[index] == u'0'
        && (next == u'x' || next == u'X' || next == u'b' || next == u'B' || next == u'o'
            || next == u'O')) {
        index += 2;
        while (isHexDigit(at(index)) || at(index) == u'_')
            ++index;
    } else {
        while (isAsciiDigit(at(index)) || at(index) == u'_')
            ++index;
        if (at(index) == u'.' && isAsciiDigit(at(index + 1))) {
            ++index;
            while (isAsciiDigit(at(index)) || at(index) == u'_')
                ++index;
        }
        if (at(index) == u'e' || at(index) == u'E') {
            qsizetype exponent = index + 1;
            if (at(exponent) == u'+' || at(exponent) == u'-')
                ++exponent;
            if (isAsciiDigit(at(exponent))) {
                index = exponent;
                while (isAsciiDigit(at(index)))
                    ++index;
            }
        }
    }
    // Suffixes join the number: 10px, 1u, 2.5f32.
    while (isAsciiLetter(at(index)) || isAsciiDigit(at(index)) || at(index) == u'_'
           || (dollarJoins && at(index) == u'$'))
        ++index;
    add(start, index, SyntaxTokenKind::number);
}

bool CodeScanner::isAttributeStart() const
{
    const char16_t unit = units[index].unicode();
    const char16_t previous = at(index - 1);
    // After the same unit ("Foo::Bar", "$$") or inside a word ("a:b", "x@y") it is not an
    // attribute; class and id marks chain onto a word ("%div.note#main" in Haml).
    if (index > 0 && previous == unit)
        return false;
    if ((classOf(previous) & identifierPart) && unit != u'.' && unit != u'#')
        return false;
    const char16_t next = at(index + 1);
    return next == u'_' || isAsciiLetter(next) || (next >= 128 && identifierWidth(index + 1, true) > 0);
}

void CodeScanner::scanAttribute()
{
    const qsizetype start = index++;
    for (int width = identifierWidth(index, false); width > 0; width = identifierWidth(index, false))
        index += width;
    add(start, index, SyntaxTokenKind::attribute);
}

void CodeScanner::scanWord()
{
    const qsizetype start = index;
    const bool folding = !language.caseSensitive;
    std::uint32_t hash = WordSet::seed;
    std::array<char16_t, longestListedWord> lowered;
    bool listable = true;
    for (int width = identifierWidth(index, true); width > 0;
         width = identifierWidth(index, false)) {
        for (int k = 0; k < width; ++k) {
            const char16_t unit = folding ? asciiLower(units[index + k].unicode())
                                          : units[index + k].unicode();
            const qsizetype offset = index + k - start;
            if (offset < longestWord && offset < longestListedWord) {
                hash = WordSet::step(hash, unit);
                lowered[std::size_t(offset)] = unit;
            } else {
                listable = false;
            }
        }
        index += width;
        // Keys in YAML and friends run over dashes: "max-age: 3".
        if (language.keyValuePairs && at(index) == u'-' && identifierWidth(index + 1, false) > 0) {
            listable = false;
            ++index;
        }
    }
    const QStringView word = units.sliced(start, index - start);
    // After a member dot a word names a member: "promise.catch(", "map.get(", "x.type".
    // Rust's postfix ".await" is the one keyword that stands there.
    const bool member = at(start - 1) == u'.' && at(start - 2) != u'.' && word != u"await";
    if (listable && !member) {
        const QStringView key = folding ? QStringView(lowered.data(), word.size()) : word;
        if (keywords.contains(key, hash)) {
            add(start, index, SyntaxTokenKind::keyword);
            return;
        }
        if (builtins.contains(key, hash)) {
            add(start, index, SyntaxTokenKind::type);
            return;
        }
    }
    const char16_t next = at(index);
    // A short prefix right before a quote belongs to the string: f"…", b'…', L"…", N'…'.
    if (word.size() <= maxStringPrefix && (classOf(next) & quote) && !(classes[next] & attributePrefix)) {
        bool plainAscii = true;
        for (QChar unit : word)
            plainAscii = plainAscii && unit.unicode() < 128;
        if (plainAscii) {
            scanStringBody(next, language.keyValuePairs, start);
            return;
        }
    }
    if (isConstantLike(word)) {
        add(start, index, SyntaxTokenKind::constant);
        return;
    }
    if (next == u'(') {
        add(start, index, SyntaxTokenKind::function);
        return;
    }
    // "name!(" is a macro call in Rust; the mark belongs to the name.
    if (next == u'!' && (at(index + 1) == u'(' || at(index + 1) == u'[')) {
        add(start, ++index, SyntaxTokenKind::function);
        return;
    }
    if (language.keyValuePairs) {
        qsizetype after = index;
        while (isBlank(at(after)))
            ++after;
        const char16_t behind = at(after + 1);
        if (at(after) == u':' && (after + 1 >= end || isBlank(behind) || isLineBreak(behind)))
            add(start, index, SyntaxTokenKind::attribute);
    }
}

void CodeScanner::scanOperator()
{
    const qsizetype start = index++;
    while (index < end) {
        const std::uint8_t flags = classOf(units[index].unicode());
        if (!(flags & operatorUnit))
            break;
        if (flags & commentStart) {
            // Stop where a comment begins: "x=/*c*/".
            const qsizetype here = index;
            bool comment = false;
            for (const auto& marker : language.blockComments)
                comment = comment || matches(marker.open, here);
            for (const auto& marker : language.lineComments)
                comment = comment || matches(marker, here);
            if (comment)
                break;
        }
        ++index;
    }
    add(start, index, SyntaxTokenKind::operatorSign);
}

// The diff dialect: one token per marked line.

std::optional<SyntaxTokenKind> CodeScanner::classifyDiffLine(qsizetype start, qsizetype stop) const
{
    if (stop <= start)
        return std::nullopt;
    switch (units[start].unicode()) {
    case u'@':
        return SyntaxTokenKind::attribute;
    case u'-':
        return SyntaxTokenKind::deletion;
    case u'+':
        return SyntaxTokenKind::insertion;
    default:
        break;
    }
    const QStringView line = units.sliced(start, stop - start);
    for (QLatin1StringView header : diffHeaders) {
        if (line.startsWith(header))
            return SyntaxTokenKind::keyword;
    }
    return std::nullopt;
}

void CodeScanner::scanDiff()
{
    while (index < end) {
        const qsizetype start = index;
        const qsizetype stop = lineEnd(index);
        if (const auto kind = classifyDiffLine(start, stop))
            add(start, stop, *kind);
        index = stop;
        if (at(index) == u'\r' && at(index + 1) == u'\n')
            ++index;
        if (index < end)
            ++index;
    }
}

// The html dialect: tags, attributes, references; script and style bodies in their own languages.

void CodeScanner::scanHtml()
{
    while (index < end) {
        const char16_t unit = units[index].unicode();
        if (unit == u'<') {
            const char16_t next = at(index + 1);
            if (scanBlockComment())
                continue;
            if (next == u'!' || next == u'?') {
                // <!DOCTYPE html>, <?xml …?>
                const qsizetype start = index;
                const qsizetype close = find(u">", index, end);
                index = close < 0 ? end : close + 1;
                add(start, index, SyntaxTokenKind::keyword);
                continue;
            }
            if (isAsciiLetter(next) || (next == u'/' && isAsciiLetter(at(index + 2)))) {
                scanTag();
                continue;
            }
        } else if (unit == u'&') {
            // Character references: &amp; &#160; &#x1F600;
            qsizetype stop = index + 1;
            if (at(stop) == u'#')
                ++stop;
            while (isAsciiLetter(at(stop)) || isAsciiDigit(at(stop)))
                ++stop;
            if (stop > index + 1 && at(stop) == u';') {
                add(index, stop + 1, SyntaxTokenKind::constant);
                index = stop + 1;
                continue;
            }
        }
        ++index;
    }
}

void CodeScanner::scanTag()
{
    const qsizetype start = index++;
    const bool closing = at(index) == u'/';
    if (closing)
        ++index;
    const qsizetype nameStart = index;
    while (isAsciiLetter(at(index)) || isAsciiDigit(at(index)) || at(index) == u'-'
           || at(index) == u':' || at(index) == u'_' || at(index) == u'.')
        ++index;
    const QStringView name = units.sliced(nameStart, index - nameStart);
    add(start, index, SyntaxTokenKind::tag);

    bool opened = false; // ended with ">" rather than "/>" or the text's end
    bool afterEquals = false;
    while (index < end) {
        const char16_t unit = units[index].unicode();
        if (unit == u'>') {
            add(index, index + 1, SyntaxTokenKind::tag);
            ++index;
            opened = true;
            break;
        }
        if (unit == u'/' && at(index + 1) == u'>') {
            add(index, index + 2, SyntaxTokenKind::tag);
            index += 2;
            break;
        }
        if (unit == u'<')
            break; // an unclosed tag: let the next one start
        if (unit == u' ' || unit == u'\t' || isLineBreak(unit) || unit == u'/') {
            ++index;
            continue;
        }
        if (unit == u'=') {
            afterEquals = true;
            ++index;
            continue;
        }
        const qsizetype wordStart = index;
        if (classOf(unit) & quote) {
            scanStringBody(unit, false);
        } else {
            while (index < end) {
                const char16_t c = units[index].unicode();
                if (c == u' ' || c == u'\t' || isLineBreak(c) || c == u'>' || c == u'<'
                    || (c == u'/' && at(index + 1) == u'>') || (!afterEquals && c == u'=')
                    || (!afterEquals && (classOf(c) & quote)))
                    break;
                ++index;
            }
            add(wordStart, index,
                afterEquals ? SyntaxTokenKind::string : SyntaxTokenKind::attribute);
        }
        afterEquals = false;
    }

    if (!opened || closing)
        return;
    const bool script = name.compare(u"script", Qt::CaseInsensitive) == 0;
    if (!script && name.compare(u"style", Qt::CaseInsensitive) != 0)
        return;
    // The element's text runs to its end tag, or to the end of the text.
    qsizetype stop = end;
    for (qsizetype from = index; from < end;) {
        const qsizetype found = find(u"</", from, end);
        if (found < 0)
            break;
        if (found + 2 + name.size() <= end
            && units.sliced(found + 2, name.size()).compare(name, Qt::CaseInsensitive) == 0) {
            stop = found;
            break;
        }
        from = found + 2;
    }
    scanEmbedded(script ? SyntaxLanguageCatalog::javascript() : SyntaxLanguageCatalog::css(), stop);
}

void CodeScanner::scanEmbedded(const SyntaxLanguage& embedded, qsizetype stop)
{
    // The embedded language is never html, so this nests one level at most.
    CodeScanner inner(units.first(stop), embedded);
    inner.index = index;
    inner.tokens = std::move(tokens);
    tokens = std::move(inner).scan();
    index = stop;
}

// The css dialect: selectors, at-rules, declarations.

void CodeScanner::scanCss()
{
    int depth = 0;
    bool inValue = false; // after a property's ":" up to ";" or a brace
    bool inAtRule = false; // an at-rule's prelude, up to "{" or ";"
    // Inside a block, "a:hover {" is a nested selector and "color: red;" a declaration: the
    // first of "{", ";" or "}" ahead tells. Remembered per stretch so each unit is read twice
    // at most.
    qsizetype stretchEnd = -1;
    bool stretchIsSelector = false;
    auto selectorAhead = [&] {
        if (depth == 0)
            return true;
        if (index >= stretchEnd) {
            stretchEnd = index;
            while (stretchEnd < end && units[stretchEnd] != u'{' && units[stretchEnd] != u';'
                   && units[stretchEnd] != u'}')
                ++stretchEnd;
            stretchIsSelector = at(stretchEnd) == u'{';
        }
        return stretchIsSelector;
    };
    auto isNameUnit = [this](qsizetype position) {
        const char16_t unit = at(position);
        return unit == u'-' || identifierWidth(position, false) > 0;
    };
    auto isNameStart = [this](qsizetype position) {
        const char16_t unit = at(position);
        if (unit == u'-') {
            const char16_t next = at(position + 1);
            return next == u'-' || next == u'_' || identifierWidth(position + 1, true) > 0;
        }
        return identifierWidth(position, true) > 0;
    };
    auto skipName = [&] {
        while (index < end && isNameUnit(index))
            index += std::max(1, identifierWidth(index, false));
    };

    while (index < end) {
        const char16_t unit = units[index].unicode();
        if ((classOf(unit) & commentStart) && (scanBlockComment() || scanLineComment()))
            continue;
        if (classOf(unit) & quote) {
            scanStringBody(unit, false);
            continue;
        }
        switch (unit) {
        case u'{':
            ++depth;
            inValue = inAtRule = false;
            ++index;
            continue;
        case u'}':
            depth = std::max(0, depth - 1);
            inValue = inAtRule = false;
            ++index;
            continue;
        case u';':
            inValue = inAtRule = false;
            ++index;
            continue;
        case u'@':
            if (isNameStart(index + 1)) {
                const qsizetype start = index++;
                skipName();
                add(start, index, SyntaxTokenKind::keyword);
                inAtRule = true;
                continue;
            }
            break;
        case u'#':
            if (isNameUnit(index + 1)) {
                const qsizetype start = index++;
                skipName();
                // A colour in a value, an id in a selector.
                add(start, index, inValue ? SyntaxTokenKind::number : SyntaxTokenKind::attribute);
                continue;
            }
            break;
        case u'.':
            if (isAsciiDigit(at(index + 1)))
                break;
            if (!inValue && isNameStart(index + 1)) {
                const qsizetype start = index++;
                skipName();
                add(start, index, SyntaxTokenKind::attribute);
                continue;
            }
            break;
        case u':': {
            if (inValue || inAtRule)
                break;
            if (!selectorAhead()) {
                inValue = true;
                ++index;
                continue;
            }
            // Pseudo-classes and elements in a selector.
            const qsizetype start = index;
            index += at(index + 1) == u':' ? 2 : 1;
            if (isNameStart(index)) {
                skipName();
                add(start, index, SyntaxTokenKind::keyword);
            }
            continue;
        }
        case u'!':
            if (matches(u"!important", index)) {
                add(index, index + 10, SyntaxTokenKind::keyword);
                index += 10;
                continue;
            }
            break;
        default:
            break;
        }
        if (isAsciiDigit(unit) || (unit == u'.' && isAsciiDigit(at(index + 1)))) {
            const qsizetype start = index;
            scanNumber();
            if (at(index) == u'%') {
                tokens.pop_back();
                add(start, ++index, SyntaxTokenKind::number);
            }
            continue;
        }
        if (isNameStart(index)) {
            const qsizetype start = index;
            skipName();
            const QStringView name = units.sliced(start, index - start);
            qsizetype after = index;
            while (isBlank(at(after)))
                ++after;
            const bool colonFollows = at(after) == u':';
            std::optional<SyntaxTokenKind> kind;
            if (at(index) == u'(')
                kind = SyntaxTokenKind::function;
            else if (name.startsWith(u"--"))
                kind = SyntaxTokenKind::attribute;
            else if (inValue || inAtRule) {
                if (inAtRule && colonFollows)
                    kind = SyntaxTokenKind::attribute;
                else if (keywords.contains(name))
                    kind = SyntaxTokenKind::keyword;
                else if (builtins.contains(name))
                    kind = SyntaxTokenKind::type;
            } else if (colonFollows && !selectorAhead()) {
                kind = SyntaxTokenKind::attribute;
            } else {
                kind = SyntaxTokenKind::tag;
            }
            if (kind)
                add(start, index, *kind);
            continue;
        }
        ++index;
    }
}

// The latex dialect: commands, comments, math marks.

void CodeScanner::scanLatex()
{
    while (index < end) {
        const char16_t unit = units[index].unicode();
        if ((classOf(unit) & commentStart) && (scanBlockComment() || scanLineComment()))
            continue;
        switch (unit) {
        case u'\\':
            scanLatexCommand();
            continue;
        case u'$': {
            const qsizetype start = index;
            index += at(index + 1) == u'$' ? 2 : 1;
            add(start, index, SyntaxTokenKind::operatorSign);
            continue;
        }
        case u'&':
        case u'^':
        case u'_':
        case u'~':
            add(index, index + 1, SyntaxTokenKind::operatorSign);
            ++index;
            continue;
        default:
            break;
        }
        if (isAsciiDigit(unit)) {
            scanNumber(false); // "2$" closes math
            continue;
        }
        ++index;
    }
}

void CodeScanner::scanLatexCommand()
{
    const qsizetype start = index++;
    if (!isAsciiLetter(at(index))) {
        // A control symbol: \\ \{ \% …
        if (index < end)
            index += QChar::isHighSurrogate(at(index)) && QChar::isLowSurrogate(at(index + 1)) ? 2 : 1;
        add(start, index, SyntaxTokenKind::keyword);
        return;
    }
    while (isAsciiLetter(at(index)) || at(index) == u'@')
        ++index;
    if (at(index) == u'*')
        ++index;
    const QStringView name = units.sliced(start, index - start);
    add(start, index, SyntaxTokenKind::keyword);
    // The environment's name in \begin{…} and \end{…} reads as a type.
    if ((name == u"\\begin" || name == u"\\end") && at(index) == u'{') {
        // Only name characters are read ahead, so "\begin{\begin{…" stays linear.
        qsizetype close = index + 1;
        while (isAsciiLetter(at(close)) || isAsciiDigit(at(close)) || at(close) == u'*'
               || at(close) == u'-' || at(close) == u' ')
            ++close;
        if (close > index + 1 && at(close) == u'}') {
            add(index + 1, close, SyntaxTokenKind::type);
            index = close + 1;
        }
    }
}

}
