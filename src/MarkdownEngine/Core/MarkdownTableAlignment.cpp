#include "MarkdownEngine/Core/MarkdownTableAlignment.h"

#include "MarkdownEngine/Core/TextCharacters.h"

namespace velmo::markdown {

MarkdownTableAlignment tableAlignmentOfDelimiter(QStringView cell)
{
    const QStringView t = chars::trimmedHorizontal(cell);
    const bool leading = t.startsWith(u':');
    const bool trailing = t.size() > 1 && t.endsWith(u':');
    if (leading && trailing)
        return MarkdownTableAlignment::center;
    if (leading)
        return MarkdownTableAlignment::left;
    if (trailing)
        return MarkdownTableAlignment::right;
    return MarkdownTableAlignment::none;
}

}
