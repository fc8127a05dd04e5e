#pragma once

#include "MarkdownEngine/Core/MarkdownSourceRange.h"
#include "MarkdownEngine/Core/MarkdownTableAlignment.h"
#include "MarkdownEngine/Core/MarkdownTableCell.h"

#include <span>
#include <vector>

namespace velmo::markdown {

struct MarkdownTable {
    MarkdownSourceRange range;
    std::vector<MarkdownTableAlignment> alignments;
    MarkdownSourceRange separatorRange; // the delimiter line's content
    std::vector<std::vector<MarkdownTableCell>> rows; // every row has one cell per alignment
    // One per source line, the delimiter line included: one more than `rows`.
    std::vector<MarkdownSourceRange> rowRanges;

    [[nodiscard]] std::span<const std::vector<MarkdownTableCell>> bodyRows() const
    {
        return rows.empty() ? std::span<const std::vector<MarkdownTableCell>>{}
                            : std::span(rows).subspan(1);
    }

    bool operator==(const MarkdownTable&) const = default;
};

}
