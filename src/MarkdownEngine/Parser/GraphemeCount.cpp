#include "MarkdownEngine/Parser/GraphemeCount.h"

#include <QTextBoundaryFinder>

namespace velmo::markdown {

namespace {

// CR LF is one cluster; every other pair of units below U+0300 is two.
bool isSimple(QStringView text)
{
    for (QChar c : text) {
        if (c.unicode() >= 0x300 || c == u'\r')
            return false;
    }
    return true;
}

}

int graphemeCount(QStringView text)
{
    if (isSimple(text))
        return int(text.size());
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, text.data(), text.size());
    int count = 0;
    while (finder.toNextBoundary() > 0)
        ++count;
    return count;
}

qsizetype graphemeAdvance(QStringView text, int n)
{
    if (n <= 0)
        return 0;
    if (isSimple(text))
        return std::min<qsizetype>(n, text.size());
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, text.data(), text.size());
    qsizetype position = 0;
    for (int i = 0; i < n; ++i) {
        const qsizetype next = finder.toNextBoundary();
        if (next < 0)
            return text.size();
        position = next;
    }
    return position;
}

}
