#pragma once

#include "MarkdownEngine/Core/MarkdownParseOptions.h"
#include "MarkdownEngine/Core/MarkdownSourceRange.h"
#include "MarkdownEngine/Parser/MarkdownTag.h"

#include <QString>
#include <QStringList>
#include <QStringView>
#include <vector>

namespace velmo::markdown {

struct MarkdownDocument;

// Finds the tags of a note. Tags are not inline nodes: a scan of the raw text finds them,
// and the parse only says where a `#` cannot start one (code, fences, math and HTML blocks).
// Pure; safe on any thread.
class MarkdownTagScanner {
public:
    MarkdownTagScanner() = delete;

    // Body tags, then front matter tags.
    [[nodiscard]] static std::vector<MarkdownTag> tags(const QString& text, const MarkdownParseOptions& options = {});
    [[nodiscard]] static std::vector<MarkdownTag> tags(const MarkdownDocument& document);
    [[nodiscard]] static std::vector<MarkdownTag> bodyTags(const QString& text, const MarkdownParseOptions& options = {});
    // The scan itself, skipping `excluding` (ranges may overlap and come in any order).
    [[nodiscard]] static std::vector<MarkdownTag> bodyTags(QStringView text,
                                                           const std::vector<MarkdownSourceRange>& excluding);
    // The same scan giving only where the tags are, `#` included, appended to `into`: the styler
    // runs it over every block and needs no names. `excluding` is sorted and merged in place.
    static void bodyTagRanges(QStringView text, std::vector<MarkdownSourceRange>& excluding,
                              std::vector<MarkdownSourceRange>& into);
    [[nodiscard]] static std::vector<MarkdownTag> frontMatterTags(const QString& text,
                                                                  const MarkdownParseOptions& options = {});
    [[nodiscard]] static std::vector<MarkdownTag> frontMatterTags(const MarkdownDocument& document);
    // The names of `tags`, each once, in order of first appearance.
    [[nodiscard]] static QStringList names(const QString& text, const MarkdownParseOptions& options = {});
    // Where `#` is not a tag: fences, math and HTML blocks, code spans; sorted.
    [[nodiscard]] static std::vector<MarkdownSourceRange> exclusionRanges(const MarkdownDocument& document);

    [[nodiscard]] static bool isTagCharacter(char16_t unit);
    [[nodiscard]] static bool isBodyTagName(QStringView name);
    // Whether a `#` at `at` may start a tag, judging by the unit before it.
    [[nodiscard]] static bool canOpenTag(qsizetype at, QStringView text);
};

}
