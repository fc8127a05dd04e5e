#pragma once

#include "MarkdownEngine/Core/MarkdownSourceRange.h"

#include <QString>
#include <QStringList>
#include <optional>

namespace velmo::markdown {

// A tag of a note: `#name` in the body, or an entry of the front matter's `tags`.
struct MarkdownTag {
    enum class Source : unsigned char { body, frontMatter };

    QString name;              // without `#`; nested names are `parent/child`
    MarkdownSourceRange range; // the whole written tag, `#` included for body tags
    Source source = Source::body;

    // The name split at `/`, empty pieces dropped.
    [[nodiscard]] QStringList components() const { return name.split(u'/', Qt::SkipEmptyParts); }
    // What precedes the last `/`; absent for a top-level tag.
    [[nodiscard]] std::optional<QString> parentName() const
    {
        const qsizetype slash = name.lastIndexOf(u'/');
        if (slash < 0)
            return std::nullopt;
        return name.left(slash);
    }

    bool operator==(const MarkdownTag&) const = default;
};

}
