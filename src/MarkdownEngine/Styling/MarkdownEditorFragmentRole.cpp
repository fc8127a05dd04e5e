#include "MarkdownEngine/Styling/MarkdownEditorFragmentRole.h"

namespace velmo::markdown {

namespace {

const char* const names[] = {
    "body", "paragraph", "heading", "headingMarker", "blockquote", "blockquoteMarker", "listItem", "listMarker",
    "bullet", "taskCheckbox", "fence", "fenceMarker", "fenceInfo", "inlineCode", "codeMarker", "table",
    "tableCell", "tableRule", "tableAlignment", "latex", "imageEmbed", "imageAlt", "link", "linkMarker",
    "linkDestination", "wikiLink", "tag", "footnote", "footnoteMarker", "frontMatter", "thematicBreak",
    "directive", "directiveMarker", "directiveBody", "emphasisMarker", "escapeMarker", "html",
};
static_assert(std::size(names) == markdownEditorFragmentRoleCount);

}

const char* roleName(MarkdownEditorFragmentRole role) { return names[int(role)]; }

QString rawValue(MarkdownEditorFragmentRole role) { return QString::fromLatin1(names[int(role)]); }

}
