#include "MarkdownEngine/Layout/MarkdownTextStorage.h"

#include <QGuiApplication>
#include <QScreen>
#include <QTextBlock>
#include <QTextCursor>
#include <algorithm>
#include <utility>

namespace velmo::markdown {

namespace {

struct BlockData final : QTextBlockUserData {
    MarkdownBlockStyle style;
};

// Qt points per design point: the styler's point is a device-independent pixel, as on the
// platform the design was drawn for, so a 15 point body is 15 pixels high.
double pointScale()
{
    static const double scale = [] {
        const QScreen* screen = QGuiApplication::primaryScreen();
        const double dpi = screen ? screen->logicalDotsPerInchY() : 96.0;
        return 72.0 / (dpi > 0 ? dpi : 96.0);
    }();
    return scale;
}

// Hidden text keeps its place in the text but takes next to no width and no ink.
constexpr double hiddenPointSize = 0.1;

}

MarkdownTextStorage::MarkdownTextStorage()
    : m_document(std::make_unique<QTextDocument>())
{
    m_document->setUndoRedoEnabled(true);
    m_document->setDocumentMargin(0);
    QObject::connect(m_document.get(), &QTextDocument::contentsChange, m_document.get(),
                     [this](int position, int removed, int added) {
                         // Attribute writes mark lines dirty too, and leave the text as it is.
                         if (!m_writingAttributes && m_textValid) {
                             patchText(position, removed, added);
                             m_patched = true;
                         }
                     });
    // The document reports where it changed only while it has a layout: a change heard
    // without it leaves the text to be rebuilt.
    QObject::connect(m_document.get(), &QTextDocument::contentsChanged, m_document.get(), [this] {
        if (!std::exchange(m_patched, false) && !m_writingAttributes)
            m_textValid = false;
    });
}

MarkdownTextStorage::~MarkdownTextStorage() = default;

const QString& MarkdownTextStorage::text() const
{
    if (!m_textValid) {
        m_text = m_document->toRawText();
        // Blocks are separated by U+2029 inside the document; the note has LF there.
        m_text.replace(QChar::ParagraphSeparator, u'\n');
        m_textValid = true;
    }
    return m_text;
}

void MarkdownTextStorage::patchText(int position, int removed, int added)
{
    // A keystroke patches the cached text: rebuilding it reads the whole note. A large change,
    // or one Qt reports past the end of the text (as it does for the last block's separator),
    // rebuilds it on the next read.
    constexpr int largestPatch = 4096;
    const int size = m_document->characterCount() - 1;
    if (position < 0 || removed < 0 || added < 0 || added > largestPatch || position + removed > m_text.size()
        || position + added > size || m_text.size() - removed + added != size) {
        m_textValid = false;
        return;
    }
    QString inserted(added, Qt::Uninitialized);
    for (int i = 0; i < added; ++i) {
        const QChar c = m_document->characterAt(position + i);
        inserted[i] = c == QChar::ParagraphSeparator ? QChar(u'\n') : c;
    }
    m_text.replace(position, removed, inserted);
}

void MarkdownTextStorage::noteTextChanged()
{
    // The text itself was brought up to date as the document reported the change.
    ++m_textRevision;
}

void MarkdownTextStorage::resetText(const QString& text)
{
    m_document->setPlainText(text);
    m_document->clearUndoRedoStacks();
    m_document->setModified(false);
    noteTextChanged();
}

void MarkdownTextStorage::replace(MarkdownSourceRange range, const QString& replacement)
{
    const int size = length();
    const int start = std::clamp(range.location, 0, size);
    const int end = std::clamp(range.upperBound(), start, size);
    QTextCursor cursor(m_document.get());
    cursor.beginEditBlock();
    cursor.setPosition(start);
    cursor.setPosition(end, QTextCursor::KeepAnchor);
    cursor.insertText(replacement);
    cursor.endEditBlock();
    noteTextChanged();
}

const MarkdownBlockStyle* MarkdownTextStorage::blockStyle(const QTextBlock& block) const
{
    const auto* data = static_cast<const BlockData*>(block.userData());
    return data ? &data->style : nullptr;
}

QFont MarkdownTextStorage::font(const MarkdownFontDescriptor& descriptor)
{
    QFont font(descriptor.family());
    font.setPointSizeF(std::max(0.05, descriptor.pointSize * pointScale()));
    font.setWeight(QFont::Weight(descriptor.weight));
    font.setItalic(descriptor.italic);
    return font;
}

QTextCharFormat MarkdownTextStorage::charFormat(const MarkdownTextAttributes& a)
{
    QTextCharFormat format;
    if (a.has(MarkdownTextAttributes::Font)) {
        format.setFontFamilies({a.font.family()});
        format.setFontPointSize(std::max(0.05, a.font.pointSize * pointScale()));
        format.setFontWeight(a.font.weight);
        format.setFontItalic(a.font.italic);
    }
    if (a.has(MarkdownTextAttributes::Foreground))
        format.setForeground(QColor::fromRgba(a.foreground));
    if (a.has(MarkdownTextAttributes::Background))
        format.setBackground(QColor::fromRgba(a.background));
    if (a.has(MarkdownTextAttributes::Underline)) {
        format.setUnderlineStyle(QTextCharFormat::SingleUnderline);
        if (a.has(MarkdownTextAttributes::UnderlineColor))
            format.setUnderlineColor(QColor::fromRgba(a.underlineColor));
    }
    if (a.has(MarkdownTextAttributes::Strikethrough))
        format.setFontStrikeOut(true);
    if (a.has(MarkdownTextAttributes::BaselineOffset) && a.has(MarkdownTextAttributes::Font) && a.font.pointSize > 0)
        format.setBaselineOffset(100.0 * a.baselineOffset / a.font.pointSize);
    if (a.has(MarkdownTextAttributes::Kern) && a.kern != 0) {
        format.setFontLetterSpacingType(QFont::AbsoluteSpacing);
        // The styler measures with Qt points; the surface draws a design point as a pixel.
        format.setFontLetterSpacing(a.kern * pointScale());
    }
    if (a.has(MarkdownTextAttributes::Link)) {
        format.setAnchor(true);
        format.setAnchorHref(a.link());
    }
    if (a.has(MarkdownTextAttributes::Hidden) && a.hidden) {
        format.setFontPointSize(hiddenPointSize * pointScale());
        format.setForeground(QColor(0, 0, 0, 0));
        format.setBackground(Qt::NoBrush);
        format.setUnderlineStyle(QTextCharFormat::NoUnderline);
        format.setFontLetterSpacingType(QFont::PercentageSpacing);
        format.setFontLetterSpacing(100);
    }
    return format;
}

MarkdownTextStorage::FormatKey::FormatKey(const MarkdownTextAttributes& a)
{
    using K = MarkdownTextAttributes;
    keys = a.keys
        & (K::Font | K::Foreground | K::Background | K::Underline | K::UnderlineColor | K::Strikethrough
           | K::BaselineOffset | K::Kern | K::Link | K::Hidden);
    if (a.has(K::Font))
        font = a.font;
    foreground = a.has(K::Foreground) ? a.foreground : 0;
    background = a.has(K::Background) ? a.background : 0;
    underlineColor = a.has(K::UnderlineColor) ? a.underlineColor : 0;
    baselineOffset = a.has(K::BaselineOffset) ? a.baselineOffset : 0;
    kern = a.has(K::Kern) ? a.kern : 0;
    if (a.has(K::Link))
        link = a.link();
    hidden = a.has(K::Hidden) && a.hidden;
}

bool MarkdownTextStorage::FormatKey::operator==(const FormatKey& o) const
{
    return keys == o.keys && font.pointSize == o.font.pointSize && font.weight == o.font.weight
        && font.italic == o.font.italic && foreground == o.foreground && background == o.background
        && underlineColor == o.underlineColor && baselineOffset == o.baselineOffset && kern == o.kern
        && hidden == o.hidden && font.familyKey() == o.font.familyKey() && link == o.link;
}

size_t MarkdownTextStorage::FormatKey::hash(size_t seed) const
{
    // The link is left to the comparison: links rarely share everything else.
    return qHashMulti(seed, keys, font.familyKey(), font.pointSize, font.weight, font.italic, foreground, background,
                      underlineColor, baselineOffset, kern, link.size(), hidden);
}

const QTextCharFormat& MarkdownTextStorage::formatFor(const MarkdownTextAttributes& attributes)
{
    // Kerned table cells can make many sets; past a bound the cache starts over.
    constexpr qsizetype bound = 4096;
    FormatKey key(attributes);
    if (const auto it = m_formats.constFind(key); it != m_formats.constEnd())
        return *it;
    if (m_formats.size() >= bound)
        m_formats.clear();
    return *m_formats.insert(std::move(key), charFormat(attributes));
}

void MarkdownTextStorage::writeBlock(QTextBlock block, const MarkdownStyledText& styled, int offset)
{
    auto* data = static_cast<BlockData*>(block.userData());
    if (!data) {
        data = new BlockData;
        block.setUserData(data); // the block owns it
    }
    MarkdownBlockStyle& style = data->style;
    style.formats.clear();
    style.runs.clear();
    style.hasParagraph = false;
    const int start = block.position() - offset;
    const int end = start + block.length() - 1; // without the separator
    const auto& runs = styled.runs();
    auto it = std::upper_bound(runs.begin(), runs.end(), start,
                               [](int location, const MarkdownStyledText::Run& run) {
                                   return location < run.range.location;
                               });
    if (it != runs.begin())
        --it;
    // The paragraph of a line is that of its first character, or of its break when empty.
    for (; it != runs.end() && it->range.location <= std::max(start, end); ++it) {
        const MarkdownSourceRange clipped = it->range.intersection(MarkdownSourceRange::fromBounds(start, end));
        if (!style.hasParagraph && it->range.containsInclusive(start)
            && it->attributes.has(MarkdownTextAttributes::Paragraph)) {
            style.paragraph = it->attributes.paragraph();
            style.hasParagraph = true;
        }
        if (clipped.length <= 0)
            continue;
        QTextLayout::FormatRange range;
        range.start = clipped.location - start;
        range.length = clipped.length;
        range.format = formatFor(it->attributes);
        style.formats.push_back(std::move(range));
        style.runs.push_back({{clipped.location - start, clipped.length}, it->attributes});
    }
}

MarkdownSourceRange MarkdownTextStorage::copyAttributes(const MarkdownStyledText& styled, MarkdownSourceRange range,
                                                        int offset)
{
    const int size = length();
    if (offset < 0 || offset + styled.length() > size || (offset == 0 && styled.length() != size && range.location == 0
                                                            && range.length >= size))
        return {};
    range = range.intersection({offset, styled.length()});
    const int from = std::clamp(range.location, 0, size);
    const int to = std::clamp(range.upperBound(), from, size);
    QTextBlock block = m_document->findBlock(from);
    // The range's end is exclusive: a range ending at a line's start leaves that line alone,
    // except at the end of the text, where the last (empty) line belongs to it.
    const QTextBlock last = to >= offset + styled.length() && to == size ? m_document->lastBlock()
                                                                         : m_document->findBlock(std::max(from, to - 1));
    if (!block.isValid())
        return {};
    const int first = block.position();
    int end = first;
    while (block.isValid()) {
        writeBlock(block, styled, offset);
        end = block.position() + block.length() - 1;
        if (block == last)
            break;
        block = block.next();
    }
    // Lines to lay out again; the text is untouched, so the cached text stays.
    m_writingAttributes = true;
    m_document->markContentsDirty(first, std::max(1, end - first + 1));
    m_writingAttributes = false;
    return MarkdownSourceRange::fromBounds(first, end);
}

void MarkdownTextStorage::addAttributes(MarkdownSourceRange range, const MarkdownTextAttributes& attributes)
{
    // Rebuild the lines' runs with the addition laid over, then rewrite them.
    const int size = length();
    const MarkdownSourceRange clipped = range.intersection({0, size});
    if (clipped.length <= 0)
        return;
    QTextBlock block = m_document->findBlock(clipped.location);
    const QTextBlock last = m_document->findBlock(std::max(clipped.location, clipped.upperBound() - 1));
    while (block.isValid()) {
        const int start = block.position();
        const int length = block.length() - 1;
        MarkdownStyledText line(block.text(), {});
        if (const MarkdownBlockStyle* style = blockStyle(block)) {
            for (const MarkdownStyledText::Run& run : style->runs)
                line.add(run.range, run.attributes);
        }
        const MarkdownSourceRange local = clipped.intersection({start, length});
        line.add({local.location - start, local.length}, attributes);
        auto* data = static_cast<BlockData*>(block.userData());
        if (!data) {
            data = new BlockData;
            block.setUserData(data);
        }
        data->style.formats.clear();
        data->style.runs.clear();
        for (const MarkdownStyledText::Run& run : line.runs()) {
            if (run.attributes.has(MarkdownTextAttributes::Paragraph) && run.range.location == 0) {
                data->style.paragraph = run.attributes.paragraph();
                data->style.hasParagraph = true;
            }
            if (run.range.length <= 0)
                continue;
            data->style.formats.push_back({run.range.location, run.range.length, charFormat(run.attributes)});
            data->style.runs.push_back(run);
        }
        if (block == last)
            break;
        block = block.next();
    }
    m_writingAttributes = true;
    m_document->markContentsDirty(clipped.location, std::max(1, clipped.length));
    m_writingAttributes = false;
}

std::vector<MarkdownStyledText::Run> MarkdownTextStorage::runs() const
{
    std::vector<MarkdownStyledText::Run> result;
    for (QTextBlock block = m_document->begin(); block.isValid(); block = block.next()) {
        const MarkdownBlockStyle* style = blockStyle(block);
        if (!style)
            continue;
        for (const MarkdownStyledText::Run& run : style->runs)
            result.push_back({{run.range.location + block.position(), run.range.length}, run.attributes});
    }
    return result;
}

}
