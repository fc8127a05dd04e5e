#pragma once

#include "MarkdownEngine/Core/MarkdownInline.h"
#include "MarkdownEngine/Core/MarkdownParseOptions.h"
#include "MarkdownEngine/Core/MarkdownSourceRange.h"

#include <QHash>
#include <QSet>
#include <QString>
#include <QStringView>
#include <vector>

namespace velmo::markdown {

// Lower-cased label to destination, as the block pass collects them.
using MarkdownLinkDefinitions = QHash<QString, QString>;

// Turns a range of a note's text into inlines that partition it. Pure: every call is
// independent, and all ranges are offsets into the context's text.
class InlineParser {
public:
    // What a parse needs besides the range. Holds views and pointers only: the text and the
    // tables must outlive every parse made with it.
    struct Context {
        QStringView ns;
        const MarkdownLinkDefinitions* linkDefinitions = nullptr;
        const QSet<QString>* footnoteLabels = nullptr; // carried along; decides nothing here
        MarkdownParseOptions options;

        Context(QStringView text, const MarkdownLinkDefinitions& linkDefinitions,
                const QSet<QString>& footnoteLabels, const MarkdownParseOptions& options);
        // No definitions at all.
        explicit Context(QStringView text, const MarkdownParseOptions& options = {});
    };

    // The range is clipped to the text; an empty result gives no inlines.
    [[nodiscard]] static std::vector<MarkdownInline> parse(MarkdownSourceRange range, const Context& context);
};

}
