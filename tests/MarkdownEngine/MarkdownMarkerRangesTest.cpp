#include "MarkdownEngine/Core/MarkdownMarkerRanges.h"

#include <gtest/gtest.h>

#include <vector>

using namespace velmo::markdown;

namespace {

std::vector<MarkdownSourceRange> contents(const MarkdownMarkerRanges& ranges)
{
    return {ranges.begin(), ranges.end()};
}

std::vector<MarkdownSourceRange> sequence(int count, int from = 0)
{
    std::vector<MarkdownSourceRange> ranges;
    for (int i = 0; i < count; ++i)
        ranges.push_back({from + 10 * i, i + 1});
    return ranges;
}

}

// The lists cross from inline storage to the heap at four: each way of filling one, and what
// a copy or a move leaves behind, around that boundary.
TEST(MarkdownMarkerRanges, keepsEveryRangeAcrossTheInlineBoundary)
{
    for (int count : {0, 1, 3, 4, 5, 9, 40}) {
        SCOPED_TRACE(count);
        const std::vector<MarkdownSourceRange> expected = sequence(count);

        MarkdownMarkerRanges oneByOne;
        for (const MarkdownSourceRange& range : expected)
            oneByOne.append(range);
        EXPECT_EQ(contents(oneByOne), expected);

        // Appended in bulk after two singles, as a table's row ranges follow its own markers.
        MarkdownMarkerRanges bulk{{-2, 1}, {-1, 1}};
        bulk.append(expected.data(), qsizetype(expected.size()));
        std::vector<MarkdownSourceRange> withPrefix{{-2, 1}, {-1, 1}};
        withPrefix.insert(withPrefix.end(), expected.begin(), expected.end());
        EXPECT_EQ(contents(bulk), withPrefix);

        MarkdownMarkerRanges copy = oneByOne;
        copy.append({999, 1});
        EXPECT_EQ(contents(oneByOne), expected) << "a copy shares no storage";
        EXPECT_EQ(copy.size(), count + 1);

        MarkdownMarkerRanges moved = std::move(copy);
        EXPECT_EQ(moved.size(), count + 1);
        EXPECT_EQ(moved.last(), (MarkdownSourceRange{999, 1}));
        EXPECT_TRUE(copy.isEmpty()); // NOLINT(bugprone-use-after-move): a moved-from list is empty
        copy.append({1, 1});
        EXPECT_EQ(contents(copy), (std::vector<MarkdownSourceRange>{{1, 1}}));

        MarkdownMarkerRanges assigned{{5, 5}, {6, 6}, {7, 7}, {8, 8}, {9, 9}};
        assigned = oneByOne;
        EXPECT_EQ(assigned, oneByOne);
        assigned = std::move(moved);
        EXPECT_EQ(assigned.size(), count + 1);
    }
}
