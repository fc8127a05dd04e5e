#pragma once

#include "MarkdownEngine/Core/MarkdownSourceRange.h"

#include <QString>
#include <QStringView>

namespace velmo::markdown {

// Word and character counts for the status bar. Wide (CJK) characters count one each instead of
// forming words.
struct MarkdownTextStatistics {
    int words = 0;
    int characters = 0; // Unicode scalars, whitespace included
    int cjkCharacters = 0;
    bool isSelection = false;

    [[nodiscard]] static MarkdownTextStatistics empty() { return {}; }
    [[nodiscard]] static MarkdownTextStatistics measure(QStringView text, MarkdownSourceRange range,
                                                        bool isSelection = false);
    // The counts of the whole of `after`, from `previous`, those of the whole of `before`, and
    // the stretch of `after` that differs from it (`changed`, between the common start and
    // end). Only the lines around the change are read: counting starts afresh after a line
    // break, so the rest counts the same in both.
    [[nodiscard]] static MarkdownTextStatistics remeasured(const MarkdownTextStatistics& previous, QStringView before,
                                                           QStringView after, MarkdownSourceRange changed);
    [[nodiscard]] static bool isWide(char32_t c);

    [[nodiscard]] int totalWords() const { return words + cjkCharacters; }
    // 200 words or 400 wide characters a minute, rounded up; 0 only for no text at all.
    [[nodiscard]] int readingMinutes() const;

    bool operator==(const MarkdownTextStatistics&) const = default;
};

}
