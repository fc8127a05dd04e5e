#pragma once

#include "MarkdownEngine/Core/MarkdownDocument.h"
#include "MarkdownEngine/Core/MarkdownDocumentChange.h"

#include <QString>

namespace velmo::markdown {

// The parse after an edit, done again only where the edit can reach.
//
// Block parsing is a walk over lines whose only state is the line it stands on: from a line
// where a walk stood, the blocks that follow depend on the lines from there on and nothing
// before. So the walk restarts at the last place the old walk stood whose blocks looked at
// no edited line, and stops once it stands at a line past the edit where the old walk also
// stood: from there on the blocks are the old ones, moved. Three things reach further and
// are checked: a formula opener whose closer was looked for to the end of the note, and
// link and footnote definitions, which change inlines everywhere; a full parse handles them.
class BlockReparser {
public:
    BlockReparser() = delete;

    [[nodiscard]] static MarkdownDocument reparse(MarkdownDocument&& old, const QString& text,
                                                  MarkdownDocumentChange& change);
};

}
