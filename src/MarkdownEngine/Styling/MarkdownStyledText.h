#pragma once

#include "MarkdownEngine/Core/MarkdownSourceRange.h"
#include "MarkdownEngine/Styling/MarkdownTextAttributes.h"

#include <QString>
#include <span>
#include <vector>

namespace velmo::markdown {

// Text with attributes over it: the editor's styled note, or a code block's colouring.
// Runs are in order, cover the whole text without gaps and never have length 0; the text is
// never changed, only described.
class MarkdownStyledText {
public:
    struct Run {
        MarkdownSourceRange range;
        MarkdownTextAttributes attributes;
    };

    // One attribute set laid over a range; `also` (may be null) goes on after it.
    struct Addition {
        MarkdownSourceRange range;
        const MarkdownTextAttributes* attributes = nullptr;
        const MarkdownTextAttributes* also = nullptr;
    };

    MarkdownStyledText() = default;
    MarkdownStyledText(QString text, const MarkdownTextAttributes& attributes);

    const QString& text() const { return m_text; }
    int length() const { return int(m_text.size()); }
    const std::vector<Run>& runs() const { return m_runs; }

    // The run holding i; null outside the text.
    [[nodiscard]] const Run* runAt(int i) const;

    // Every addition in turn, each replacing the keys it names over its range, the others kept.
    // Ranges are clipped to the text. Linear in the text and the runs touched.
    void add(std::span<const Addition> additions);
    void add(MarkdownSourceRange range, const MarkdownTextAttributes& attributes);
    // Replaces all attributes with `attributes`.
    void setAttributes(const MarkdownTextAttributes& attributes);

private:
    QString m_text;
    std::vector<Run> m_runs;
};

}
