#include "Editor/Model/NoteTitle.h"

#include "MarkdownEngine/Core/TextCharacters.h"

#include <QTextBoundaryFinder>

namespace velmo::editor::NoteTitle {

namespace chars = markdown::chars;
using markdown::MarkdownSourceRange;

// Horizontal whitespace; a surrogate is never whitespace, and stops every scan over it.
static bool isSpace(QChar c)
{
    return !c.isSurrogate() && chars::isWhitespace(c.unicode());
}

FirstLine firstLine(const QString& text)
{
    const int length = int(text.size());
    const int bom = length > 0 && text[0] == QChar(0xFEFF) ? 1 : 0;
    int lineEnd = bom;
    while (lineEnd < length && !chars::isNewline(text[lineEnd].unicode()))
        ++lineEnd;

    FirstLine line;
    line.remainder = text.mid(lineEnd);
    line.isEmptyDocument = length == bom;

    int start = bom;
    while (start < lineEnd && text[start] == u' ')
        ++start;
    int hashEnd = start;
    while (hashEnd < lineEnd && text[hashEnd] == u'#')
        ++hashEnd;
    const int hashes = hashEnd - start;
    const bool heading = start - bom <= 3 && hashes >= 1 && hashes <= 6
        && (hashEnd == lineEnd || text[hashEnd] == u' ' || text[hashEnd] == u'\t');

    if (heading) {
        int nameStart = hashEnd;
        while (nameStart < lineEnd && isSpace(text[nameStart]))
            ++nameStart;
        int nameEnd = lineEnd;
        while (nameEnd > nameStart && isSpace(text[nameEnd - 1]))
            --nameEnd;
        // A closing run of "#" belongs to the marker only when whitespace stands before it.
        int runStart = nameEnd;
        while (runStart > nameStart && text[runStart - 1] == u'#')
            --runStart;
        if (runStart < nameEnd) {
            if (runStart == nameStart) {
                if (nameStart > hashEnd)
                    nameEnd = nameStart;
            } else if (text[runStart - 1] == u' ' || text[runStart - 1] == u'\t') {
                nameEnd = runStart;
                while (nameEnd > nameStart && isSpace(text[nameEnd - 1]))
                    --nameEnd;
            }
        }
        const QString name = text.mid(nameStart, nameEnd - nameStart);
        if (!name.isEmpty())
            line.name = name;
        line.nameRange = MarkdownSourceRange::fromBounds(nameStart, nameEnd);
        line.prefix = text.left(nameStart);
        line.suffix = text.mid(nameEnd, lineEnd - nameEnd);
        line.isHeading = true;
        return line;
    }

    line.nameRange = MarkdownSourceRange::fromBounds(bom, lineEnd);
    const QStringView title = chars::trimmedHorizontal(QStringView(text).mid(bom, lineEnd - bom));
    if (!title.isEmpty())
        line.name = title.toString();
    line.prefix = text.left(bom);
    return line;
}

std::optional<QString> name(const QString& text)
{
    return firstLine(text).name;
}

Replacement replacement(const QString& text, const QString& name)
{
    const FirstLine line = firstLine(text);
    QString prefix = line.prefix;
    QString suffix = line.suffix;
    QString remainder = line.remainder;
    if (line.isHeading) {
        if (prefix.endsWith(u'#'))
            prefix += u' ';
        if (suffix.startsWith(u'#'))
            suffix.prepend(u' ');
    } else if (line.name) {
        suffix.clear();
    } else {
        // A note without a title receives a heading.
        prefix += QStringLiteral("# ");
        suffix.clear();
        if (line.isEmptyDocument)
            remainder = QStringLiteral("\n\n");
    }
    Replacement result;
    result.text = prefix + name + suffix + remainder;
    result.oldNameRange = line.nameRange;
    result.newNameRange = {int(prefix.size()), int(name.size())};
    return result;
}

QString replacingName(const QString& text, const QString& name)
{
    return replacement(text, name).text;
}

int caretAfterReplacingName(const QString& text, const QString& name, int caret)
{
    const Replacement r = replacement(text, name);
    int c = std::clamp(caret, 0, int(text.size()));
    if (c >= r.oldNameRange.location) {
        if (c <= r.oldNameRange.upperBound())
            c = r.newNameRange.location + std::min(r.newNameRange.length, c - r.oldNameRange.location);
        else
            c += r.newNameRange.upperBound() - r.oldNameRange.upperBound();
    }
    c = std::clamp(c, 0, int(r.text.size()));
    if (c > 0 && c < r.text.size()) {
        QTextBoundaryFinder graphemes(QTextBoundaryFinder::Grapheme, r.text);
        graphemes.setPosition(c);
        if (!graphemes.isAtBoundary())
            c = int(graphemes.toNextBoundary());
    }
    return c;
}

static bool hasControlOrNewline(const QString& text)
{
    for (QChar c : text) {
        if (c.category() == QChar::Other_Control || chars::isNewline(c.unicode()))
            return true;
    }
    return false;
}

bool isValidFilename(const QString& name, const QString& extension)
{
    const QString trimmed = chars::trimmed(name).toString();
    if (trimmed.isEmpty() || trimmed.startsWith(u'.'))
        return false;
    if (name.contains(u'/') || name.contains(u':') || hasControlOrNewline(name))
        return false;
    if (extension.contains(u'/') || extension.contains(u':') || hasControlOrNewline(extension))
        return false;
    const QString full = extension.isEmpty() ? name : name + u'.' + extension;
    return full.toUtf8().size() < 256;
}

}
