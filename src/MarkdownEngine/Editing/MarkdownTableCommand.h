#pragma once

#include "MarkdownEngine/Core/MarkdownTableAlignment.h"

#include <QString>
#include <QStringView>
#include <optional>
#include <vector>

namespace velmo::markdown {

// A structural edit of the pipe table under the caret.
struct MarkdownTableCommand {
    enum class Kind : unsigned char {
        alignColumn,
        insertRowAbove,
        insertRowBelow,
        deleteRow,
        insertColumnBefore,
        insertColumnAfter,
        deleteColumn,
        moveRowUp,
        moveRowDown,
        moveColumnLeft,
        moveColumnRight,
    };

    Kind kind = Kind::insertRowBelow;
    MarkdownTableAlignment alignment = MarkdownTableAlignment::none; // alignColumn only

    static MarkdownTableCommand alignColumn(MarkdownTableAlignment a) { return {Kind::alignColumn, a}; }

    // Every command, alignColumn once for each alignment first.
    [[nodiscard]] static std::vector<MarkdownTableCommand> all();
    // "insertRowBelow", "alignColumn:center", ...
    [[nodiscard]] QString name() const;
    [[nodiscard]] static std::optional<MarkdownTableCommand> fromName(QStringView name);

    bool operator==(const MarkdownTableCommand&) const = default;
};

}
