#pragma once

#include <QString>

namespace velmo::markdown {

// A block opened by a fence line, such as ":::" or "---".
struct BlockSyntax {
    QString fence;
    bool documentStartOnly = false;

    bool operator==(const BlockSyntax&) const = default;
};

}
