#pragma once

#include "VelmoMath/TeXToken.h"

#include <QStringView>
#include <vector>

namespace velmo::math {

// Cuts a formula's source into tokens. Never fails: every unit lands in some token, except a
// backslash at the very end, which is dropped.
class TeXLexer {
public:
    // The tokens view `units`: keep the source alive while they are used.
    [[nodiscard]] static std::vector<TeXToken> run(QStringView units);

private:
    explicit TeXLexer(QStringView units) : units(units) {}
    void scan();
    void scanBackslash(qsizetype start);

    QStringView units;
    qsizetype index = 0;
    std::vector<TeXToken> tokens;
};

}
