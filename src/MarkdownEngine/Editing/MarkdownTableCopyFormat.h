#pragma once

namespace velmo::markdown {

// What a copied table becomes on the clipboard besides its Markdown.
enum class MarkdownTableCopyFormat : unsigned char { csv, html };

}
