#pragma once

namespace velmo::markdown {

// The paragraph style of a line, in points. Lines always wrap at words.
struct MarkdownParagraphMetrics {
    enum class Alignment : unsigned char { natural, left, center, right, justified };

    float lineSpacing = 0;
    float minimumLineHeight = 0;
    float maximumLineHeight = 0; // 0: no limit
    float paragraphSpacing = 0;
    float paragraphSpacingBefore = 0;
    float firstLineHeadIndent = 0;
    float headIndent = 0;
    float tailIndent = 0; // negative: from the trailing edge
    Alignment alignment = Alignment::natural;

    friend bool operator==(const MarkdownParagraphMetrics&, const MarkdownParagraphMetrics&) = default;
};

}
