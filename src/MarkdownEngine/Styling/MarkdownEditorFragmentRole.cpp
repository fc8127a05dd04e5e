#include "MarkdownEngine/Styling/MarkdownEditorFragmentRole.h"

namespace velmo::markdown {

namespace {

using R = MarkdownEditorFragmentRole;

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

bool isDecoration(MarkdownEditorFragmentRole role)
{
    switch (role) {
    case R::blockquote: case R::blockquoteMarker: case R::listMarker: case R::bullet: case R::taskCheckbox:
    case R::fence: case R::fenceMarker: case R::table: case R::tableCell: case R::tableRule: case R::latex:
    case R::imageEmbed: case R::frontMatter: case R::thematicBreak: case R::directive:
        return true;
    default:
        return false;
    }
}

bool isHitTarget(MarkdownEditorFragmentRole role)
{
    switch (role) {
    case R::blockquote: case R::taskCheckbox: case R::fence: case R::table: case R::imageEmbed: case R::link:
    case R::wikiLink: case R::tag: case R::footnote:
        return true;
    default:
        return false;
    }
}

}
