#pragma once

#include <QStringView>

namespace velmo::markdown {

// Grapheme clusters ("characters" to a user). Text below U+0300 has one cluster per unit
// inside a line, which keeps the common case free of a boundary finder.
[[nodiscard]] int graphemeCount(QStringView text);
// UTF-16 units taken by the first n clusters of text (all of it when it has fewer).
[[nodiscard]] qsizetype graphemeAdvance(QStringView text, int n);

}
