#pragma once

#include <QStringView>

namespace velmo::markdown {

enum class MarkdownTableAlignment : unsigned char { none, left, center, right };

// The alignment a delimiter cell such as ":--:" asks for.
[[nodiscard]] MarkdownTableAlignment tableAlignmentOfDelimiter(QStringView cell);

}
