#pragma once

#include "VelmoMath/TeXNode.h"

#include <QHash>
#include <QStringView>
#include <variant>

namespace velmo::math {

// The named symbols of TeX math: command name (without its backslash) to what it stands for.
// Built once on first use, read-only afterwards, so any thread may read it.
class TeXSymbolTable {
public:
    using Entry = std::variant<TeXNode::Atom, TeXNode::LargeOperator>;

    // Keys view static text, so a lookup with a view into a formula allocates nothing.
    [[nodiscard]] static const QHash<QStringView, Entry>& symbols();
    [[nodiscard]] static const Entry* lookup(QStringView name);

    // Delimiter texts that close (used to class \bigr and friends).
    [[nodiscard]] static bool isClosingDelimiter(QStringView text);
    // Command names that stand for themselves after \left, \right and \big: "\\{" is "{".
    [[nodiscard]] static bool isLiteralDelimiter(QStringView name);
    // The glyph drawn over the body for an accent.
    [[nodiscard]] static QString accentText(TeXAccent accent);

    // What a typed character looks like in math: "-" is a minus, "'" a prime.
    [[nodiscard]] static QString mathGlyph(QStringView character);
    // The class of a typed character: "+" binary, "=" relation, "(" opening, ...
    [[nodiscard]] static TeXAtomClass atomClass(QStringView character);
};

}
