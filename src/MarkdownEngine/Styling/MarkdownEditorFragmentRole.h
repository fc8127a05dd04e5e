#pragma once

#include <QString>

namespace velmo::markdown {

// What a fragment styles. Raw values are the case names.
enum class MarkdownEditorFragmentRole : unsigned char {
    body, paragraph, heading, headingMarker, blockquote, blockquoteMarker, listItem, listMarker, bullet,
    taskCheckbox, fence, fenceMarker, fenceInfo, inlineCode, codeMarker, table, tableCell, tableRule,
    tableAlignment, latex, imageEmbed, imageAlt, link, linkMarker, linkDestination, wikiLink, tag, footnote,
    footnoteMarker, frontMatter, thematicBreak, directive, directiveMarker, directiveBody, emphasisMarker,
    escapeMarker, html,
};

inline constexpr int markdownEditorFragmentRoleCount = int(MarkdownEditorFragmentRole::html) + 1;

[[nodiscard]] QString rawValue(MarkdownEditorFragmentRole role);
[[nodiscard]] const char* roleName(MarkdownEditorFragmentRole role);
// Roles the text view draws something for (bars, boxes, bullets, grids).
[[nodiscard]] bool isDecoration(MarkdownEditorFragmentRole role);
// Roles that answer a click.
[[nodiscard]] bool isHitTarget(MarkdownEditorFragmentRole role);

}
