#include "MarkdownEngine/Parser/MarkdownTagScanner.h"

#include "MarkdownEngine/Core/MarkdownDocument.h"
#include "MarkdownEngine/Core/TextCharacters.h"

#include <QChar>
#include <QSet>
#include <algorithm>
#include <memory>
#include <unicode/regex.h>

namespace velmo::markdown {

namespace {

std::unique_ptr<icu::RegexPattern> compiled(const char16_t* pattern)
{
    UErrorCode status = U_ZERO_ERROR;
    std::unique_ptr<icu::RegexPattern> result(icu::RegexPattern::compile(icu::UnicodeString(pattern), 0, status));
    Q_ASSERT(U_SUCCESS(status));
    return result;
}

// Compiled once, on first use; matchers are made per call, as they carry state.
const icu::RegexPattern& keyLinePattern()
{
    static const std::unique_ptr<icu::RegexPattern> pattern = compiled(u"^[ \\t]*tags[ \\t]*:[ \\t]*(.*)$");
    return *pattern;
}

const icu::RegexPattern& itemLinePattern()
{
    static const std::unique_ptr<icu::RegexPattern> pattern = compiled(u"^[ \\t]*[-][ \\t]*(.+?)[ \\t]*$");
    return *pattern;
}

// Group 1 of the pattern's first match in the line, as a document range.
std::optional<MarkdownSourceRange> firstGroup(const icu::RegexPattern& pattern, QStringView text,
                                              MarkdownSourceRange line)
{
    const icu::UnicodeString input(false, reinterpret_cast<const char16_t*>(text.utf16()) + line.location,
                                   line.length);
    UErrorCode status = U_ZERO_ERROR;
    std::unique_ptr<icu::RegexMatcher> matcher(pattern.matcher(input, status));
    if (U_FAILURE(status) || !matcher->find(status) || U_FAILURE(status))
        return std::nullopt;
    const int start = matcher->start(1, status);
    const int end = matcher->end(1, status);
    if (U_FAILURE(status) || start < 0)
        return std::nullopt;
    return MarkdownSourceRange::fromBounds(line.location + start, line.location + end);
}

// Letters, numbers and `/`, `_`, `-`; a combining mark counts with the letter it extends.
bool isNameCharacters(QStringView name)
{
    for (qsizetype i = 0; i < name.size();) {
        int length = 1;
        const char32_t scalar = chars::scalarAt(name, i, &length);
        i += length;
        if (scalar == u'/' || scalar == u'_' || scalar == u'-')
            continue;
        if (QChar::isLetter(scalar) || QChar::isNumber(scalar) || QChar::isMark(scalar))
            continue;
        return false;
    }
    return true;
}

QStringView trimmedOf(QStringView text, QStringView units, qsizetype* removedAtStart = nullptr)
{
    qsizetype start = 0;
    qsizetype end = text.size();
    while (start < end && units.contains(text[start]))
        ++start;
    while (end > start && units.contains(text[end - 1]))
        --end;
    if (removedAtStart)
        *removedAtStart = start;
    return text.mid(start, end - start);
}

// One front matter entry, from the piece of text at `at`.
std::optional<MarkdownTag> makeTag(QStringView text, MarkdownSourceRange at)
{
    qsizetype offset = 0;
    const QStringView piece = trimmedOf(text.mid(at.location, at.length), u" \t\"'", &offset);
    if (piece.isEmpty())
        return std::nullopt;
    QStringView name = piece;
    if (name.startsWith(u'#'))
        name = name.mid(1);
    while (name.endsWith(u'/'))
        name.chop(1);
    if (name.isEmpty() || name.startsWith(u'/') || !isNameCharacters(name))
        return std::nullopt;
    return MarkdownTag{name.toString(), {at.location + int(offset), int(piece.size())},
                       MarkdownTag::Source::frontMatter};
}

// The pieces of an inline list such as `[a, "b, c"]`: commas inside quotes do not split.
void inlineItems(QStringView text, MarkdownSourceRange value, std::vector<MarkdownTag>& into)
{
    qsizetype offset = 0;
    QStringView items = trimmedOf(text.mid(value.location, value.length), u" \t", &offset);
    int start = value.location + int(offset);
    if (items.size() >= 2 && items.startsWith(u'[') && items.endsWith(u']')) {
        items = items.mid(1, items.size() - 2);
        ++start;
    }
    const auto addPiece = [&](int from, int to) {
        if (auto tag = makeTag(text, MarkdownSourceRange::fromBounds(start + from, start + to)))
            into.push_back(std::move(*tag));
    };
    char16_t quote = 0;
    int pieceStart = 0;
    for (int i = 0; i < int(items.size()); ++i) {
        const char16_t unit = items[i].unicode();
        if (quote) {
            if (unit == quote)
                quote = 0;
        } else if (unit == u'"' || unit == u'\'') {
            quote = unit;
        } else if (unit == u',') {
            addPiece(pieceStart, i);
            pieceStart = i + 1;
        }
    }
    addPiece(pieceStart, int(items.size()));
}

}

bool MarkdownTagScanner::isTagCharacter(char16_t unit)
{
    if (QChar::isSurrogate(unit))
        return false;
    if (unit == u'-' || unit == u'/' || unit == u'_')
        return true;
    if (unit < 0x80)
        return (unit >= u'0' && unit <= u'9') || (unit >= u'a' && unit <= u'z') || (unit >= u'A' && unit <= u'Z');
    return chars::isAlphanumeric(unit);
}

bool MarkdownTagScanner::canOpenTag(qsizetype at, QStringView text)
{
    if (at <= 0)
        return true;
    const char16_t before = text[at - 1].unicode();
    return before != u'#' && before != u'&' && !isTagCharacter(before);
}

bool MarkdownTagScanner::isBodyTagName(QStringView name)
{
    if (name.isEmpty() || name.startsWith(u'/') || name.endsWith(u'/') || name.contains(u"//"))
        return false;
    bool numeric = true;
    for (qsizetype i = 0; i < name.size() && numeric;) {
        int length = 1;
        numeric = QChar::isNumber(chars::scalarAt(name, i, &length));
        i += length;
    }
    if (numeric)
        return false;
    const auto isHexDigit = [](QChar unit) {
        const char16_t u = unit.unicode();
        return (u >= u'0' && u <= u'9') || (u >= u'a' && u <= u'f') || (u >= u'A' && u <= u'F');
    };
    const qsizetype length = name.size();
    if ((length == 3 || length == 4 || length == 6 || length == 8) && std::all_of(name.begin(), name.end(), isHexDigit))
        return false; // a colour such as #fff or #c0ffee; #decade goes the same way
    return isNameCharacters(name);
}

std::vector<MarkdownTag> MarkdownTagScanner::bodyTags(QStringView text, const std::vector<MarkdownSourceRange>& excluding)
{
    std::vector<MarkdownSourceRange> merged = excluding;
    std::vector<MarkdownSourceRange> ranges;
    bodyTagRanges(text, merged, ranges);
    std::vector<MarkdownTag> tags;
    tags.reserve(ranges.size());
    for (const MarkdownSourceRange range : ranges)
        tags.push_back({text.mid(range.location + 1, range.length - 1).toString(), range, MarkdownTag::Source::body});
    return tags;
}

void MarkdownTagScanner::bodyTagRanges(QStringView text, std::vector<MarkdownSourceRange>& excluding,
                                       std::vector<MarkdownSourceRange>& into)
{
    const int length = int(text.size());
    // Sorted and merged, the excluded stretches are passed in one walk beside the scan.
    for (MarkdownSourceRange& range : excluding)
        range = range.intersection({0, length});
    excluding.erase(std::remove_if(excluding.begin(), excluding.end(),
                                   [](MarkdownSourceRange r) { return r.length <= 0; }),
                    excluding.end());
    std::sort(excluding.begin(), excluding.end(),
              [](MarkdownSourceRange a, MarkdownSourceRange b) { return a.location < b.location; });
    size_t merged = 0;
    for (const MarkdownSourceRange range : excluding) {
        if (merged > 0 && range.location <= excluding[merged - 1].upperBound())
            excluding[merged - 1] = excluding[merged - 1].united(range);
        else
            excluding[merged++] = range;
    }
    excluding.resize(merged);

    size_t next = 0; // the first excluded stretch that does not end before the scan
    for (qsizetype at = text.indexOf(u'#'); at >= 0; at = text.indexOf(u'#', at)) {
        const int hash = int(at);
        while (next < excluding.size() && excluding[next].upperBound() <= hash)
            ++next;
        if (next < excluding.size() && excluding[next].location <= hash) {
            at = excluding[next].upperBound();
            continue;
        }
        // A name stops where the next excluded stretch starts.
        const int limit = next < excluding.size() ? excluding[next].location : length;
        int end = hash + 1;
        while (end < limit && isTagCharacter(text[end].unicode()))
            ++end;
        while (end > hash + 1 && (text[end - 1] == u'-' || text[end - 1] == u'/' || text[end - 1] == u'_'))
            --end;
        at = std::max(end, hash + 1);
        if (canOpenTag(hash, text) && isBodyTagName(text.mid(hash + 1, end - hash - 1)))
            into.push_back(MarkdownSourceRange::fromBounds(hash, end));
    }
}

std::vector<MarkdownSourceRange> MarkdownTagScanner::exclusionRanges(const MarkdownDocument& document)
{
    std::vector<MarkdownSourceRange> ranges;
    document.forEachBlock([&](const MarkdownBlock& block) {
        if (block.is<block_kind::Fence>() || block.is<block_kind::LatexBlock>() || block.is<block_kind::HtmlBlock>())
            ranges.push_back(block.range);
    });
    for (const MarkdownInline* node : document.inlines()) {
        if (node->is<inline_kind::Code>())
            ranges.push_back(node->range);
    }
    std::stable_sort(ranges.begin(), ranges.end(),
                     [](MarkdownSourceRange a, MarkdownSourceRange b) { return a.location < b.location; });
    return ranges;
}

std::vector<MarkdownTag> MarkdownTagScanner::bodyTags(const QString& text, const MarkdownParseOptions& options)
{
    return bodyTags(text, exclusionRanges(MarkdownDocument::parse(text, options)));
}

std::vector<MarkdownTag> MarkdownTagScanner::frontMatterTags(const MarkdownDocument& document)
{
    const auto block = std::find_if(document.blocks.begin(), document.blocks.end(),
                                    [](const MarkdownBlock& b) { return b.is<block_kind::FrontMatter>(); });
    if (block == document.blocks.end())
        return {};
    const QStringView text = document.text;
    const MarkdownSourceRange range = block->range.intersection({0, int(text.size())});
    std::vector<MarkdownSourceRange> lines;
    for (int start = range.location; start < range.upperBound();) {
        const chars::LineBounds line = chars::lineAt(text, start);
        lines.push_back(MarkdownSourceRange::fromBounds(
            int(line.start), std::min(int(line.contentsEnd), range.upperBound())));
        start = std::max(int(line.end), start + 1);
    }
    if (lines.size() < 2)
        return {};
    lines.erase(lines.begin());
    lines.pop_back();

    std::vector<MarkdownTag> tags;
    for (size_t i = 0; i < lines.size(); ++i) {
        const std::optional<MarkdownSourceRange> value = firstGroup(keyLinePattern(), text, lines[i]);
        if (!value)
            continue;
        if (!chars::trimmed(text.mid(value->location, value->length)).isEmpty()) {
            inlineItems(text, *value, tags);
            continue;
        }
        for (; i + 1 < lines.size(); ++i) {
            const std::optional<MarkdownSourceRange> item = firstGroup(itemLinePattern(), text, lines[i + 1]);
            if (!item)
                break;
            if (auto tag = makeTag(text, *item))
                tags.push_back(std::move(*tag));
        }
    }
    return tags;
}

std::vector<MarkdownTag> MarkdownTagScanner::frontMatterTags(const QString& text, const MarkdownParseOptions& options)
{
    return frontMatterTags(MarkdownDocument::parse(text, options));
}

std::vector<MarkdownTag> MarkdownTagScanner::tags(const MarkdownDocument& document)
{
    std::vector<MarkdownTag> result = bodyTags(document.text, exclusionRanges(document));
    std::vector<MarkdownTag> front = frontMatterTags(document);
    std::move(front.begin(), front.end(), std::back_inserter(result));
    return result;
}

std::vector<MarkdownTag> MarkdownTagScanner::tags(const QString& text, const MarkdownParseOptions& options)
{
    return tags(MarkdownDocument::parse(text, options));
}

QStringList MarkdownTagScanner::names(const QString& text, const MarkdownParseOptions& options)
{
    QStringList names;
    QSet<QString> seen;
    for (const MarkdownTag& tag : tags(text, options)) {
        if (!seen.contains(tag.name)) {
            seen.insert(tag.name);
            names.append(tag.name);
        }
    }
    return names;
}

}
