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
// Inline: the store asks both of every fragment it lists.
// Roles the text view draws something for (bars, boxes, bullets, grids).
[[nodiscard]] constexpr bool isDecoration(MarkdownEditorFragmentRole role)
{
    using R = MarkdownEditorFragmentRole;
    switch (role) {
    case R::blockquote: case R::blockquoteMarker: case R::listMarker: case R::bullet: case R::taskCheckbox:
    case R::fence: case R::fenceMarker: case R::table: case R::tableCell: case R::tableRule: case R::latex:
    case R::imageEmbed: case R::frontMatter: case R::thematicBreak: case R::directive:
        return true;
    default:
        return false;
    }
}

// Roles that answer a click.
[[nodiscard]] constexpr bool isHitTarget(MarkdownEditorFragmentRole role)
{
    using R = MarkdownEditorFragmentRole;
    switch (role) {
    case R::blockquote: case R::taskCheckbox: case R::fence: case R::table: case R::imageEmbed: case R::link:
    case R::wikiLink: case R::tag: case R::footnote:
        return true;
    default:
        return false;
    }
}

}
