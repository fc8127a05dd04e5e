#include "MarkdownEngine/Core/MarkdownOutline.h"

#include "MarkdownEngine/Core/TextCharacters.h"

#include <QRegularExpression>
#include <QTextBoundaryFinder>

namespace velmo::markdown {

std::optional<int> MarkdownOutline::headingLevel(QStringView trimmed)
{
    qsizetype run = 0;
    while (run < trimmed.size() && trimmed[run] == u'#')
        ++run;
    if (run < 1 || run > 6)
        return std::nullopt;
    if (run < trimmed.size() && trimmed[run] != u' ' && trimmed[run] != u'\t')
        return std::nullopt;
    return int(run);
}

namespace {

// LF, CR, NEL, U+2028 and U+2029: what ends a line (chars::terminatorLength).
bool isTerminator(char16_t c)
{
    return c <= 0x0D ? c == u'\n' || c == u'\r' : c == 0x85 || (c | 1) == 0x2029;
}

// What chars::trimmed strips from a line's start: whitespace and the newlines that end no line.
bool isLeadingSpace(char16_t c)
{
    if (c == u' ' || c == u'\t' || c == 0x0B || c == 0x0C)
        return true;
    return c >= 0x80 && chars::isWhitespace(c);
}

}

std::vector<OutlineEntry> MarkdownOutline::entries(QStringView text)
{
    static const QRegularExpression spanTag(QStringLiteral("</?span\\b[^>]*>"),
                                            QRegularExpression::CaseInsensitiveOption);
    std::vector<OutlineEntry> result;
    bool inFence = false;
    qsizetype start = 0;
    const char16_t* units = text.utf16();
    const qsizetype size = text.size();
    while (start < size) {
        // Only a line whose first unit past the leading space is `#`, a backtick or `~` can
        // be a heading or a fence: every other line is passed over in one tight loop, which
        // is what keeps a large note's outline cheap.
        qsizetype i = start;
        while (i < size && isLeadingSpace(units[i]))
            ++i;
        if (i >= size)
            break;
        if (units[i] != u'#' && units[i] != u'`' && units[i] != u'~') {
            while (i < size && !isTerminator(units[i]))
                ++i;
            start = i + chars::terminatorLength(text, i);
            continue;
        }
        const chars::LineBounds line = chars::lineAt(text, start);
        const QStringView content = text.mid(line.start, line.contentsEnd - line.start);
        start = line.end;
        const QStringView trimmed = chars::trimmed(content);
        // Either kind of fence line toggles: the walk does not pair openers with closers.
        if (trimmed.startsWith(u"```") || trimmed.startsWith(u"~~~")) {
            inFence = !inFence;
            continue;
        }
        if (inFence)
            continue;
        const std::optional<int> level = headingLevel(trimmed);
        if (!level)
            continue;
        OutlineEntry entry;
        entry.level = *level;
        entry.lineStart = int(line.start);
        entry.contentStart = int(line.start + content.indexOf(u'#'));
        // Drop the `#` run and the one character after it, which may carry combining marks.
        QStringView rest = trimmed.mid(*level);
        if (!rest.isEmpty()) {
            QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, rest.data(), rest.size());
            const qsizetype next = finder.toNextBoundary();
            rest = rest.mid(next < 0 ? rest.size() : next);
        }
        QString title = rest.toString();
        if (title.contains(u'<'))
            title.remove(spanTag);
        title = chars::trimmed(title).toString();
        entry.title = title.isEmpty() ? QStringLiteral("Untitled") : title;
        result.push_back(std::move(entry));
    }
    return result;
}

std::optional<OutlineEntry> MarkdownOutline::entry(QStringView matching, QStringView text)
{
    const QStringView query = chars::trimmed(matching);
    if (query.isEmpty())
        return std::nullopt;
    const std::vector<OutlineEntry> all = entries(text);
    for (const OutlineEntry& entry : all) {
        if (QStringView(entry.title).compare(query, Qt::CaseInsensitive) == 0)
            return entry;
    }
    for (const OutlineEntry& entry : all) {
        if (QStringView(entry.title).contains(query, Qt::CaseInsensitive))
            return entry;
    }
    return std::nullopt;
}

MarkdownSourceRange MarkdownOutline::range(const OutlineEntry& of, QStringView text)
{
    const int size = int(text.size());
    const int start = std::clamp(of.lineStart, 0, size);
    const int end = std::clamp(of.contentStart + int(of.title.size()), start, size);
    return MarkdownSourceRange::fromBounds(start, end);
}

}
