#pragma once

#include "MarkdownEngine/Configuration/MarkdownEditorConfiguration.h"
#include "MarkdownEngine/Core/MarkdownInlineList.h"
#include "MarkdownEngine/Extensions/MarkdownExtensionRegistry.h"
#include "MarkdownEngine/Styling/MarkdownEditorAttachmentFactory.h"
#include "MarkdownEngine/Styling/MarkdownEditorFragment.h"

#include <QTextCharFormat>
#include <deque>
#include <functional>
#include <vector>

namespace velmo::markdown {

// Turns the inline nodes of one block into fragments, hiding markers by the same rules as the
// block styler. Pure but for the attachment factory's cache.
class MarkdownInlineStyler {
public:
    MarkdownInlineStyler() = delete;

    using RangePredicate = std::function<bool(MarkdownSourceRange)>;

    struct Environment {
        const MarkdownEditorConfiguration* config = nullptr;
        const MarkdownExtensionRegistry* registry = nullptr;
        MarkdownFontDescriptor baseFont;
        MarkdownTextAttributes baseAttributes;
        RangePredicate showsMarkers;
        RangePredicate revealsFormula;
        MarkdownEditorAttachmentFactory* attachments = nullptr; // may be null: no pictures
        double maximumEmbedWidth = 0;
        QStringView note;
        // The list of the block being walked, for its nodes' payload texts.
        mutable const MarkdownInlineList* list = nullptr;
        [[nodiscard]] QStringView payload(MarkdownInlineText text) const { return list->text(note, text); }

        // What an extension gave for a font, kept for the pass: asking it means making a QFont
        // and reading a format, for every span of a note that has many of the same few.
        struct ExtensionLook {
            const MarkdownExtension* extension;
            MarkdownFontDescriptor font;
            MarkdownTextAttributes attributes;
        };
        mutable std::vector<ExtensionLook> extensionLooks;

        // Scratch of the walks, kept from block to block rather than allocated for each.
        struct WalkFrame {
            const MarkdownInline* node;
            const MarkdownTextAttributes* attributes;
            const MarkdownFontDescriptor* font;
        };
        mutable std::vector<WalkFrame> walk;
        // The attribute sets of the levels being walked. A deque keeps each set in place while
        // sets are added above it, and keeps its storage when emptied.
        mutable std::deque<MarkdownTextAttributes> levels;
        mutable std::vector<std::span<const MarkdownInline>> siblingLists;
        [[nodiscard]] const MarkdownTextAttributes& extensionAttributes(const MarkdownExtension& extension,
                                                                        const MarkdownFontDescriptor& font) const;
    };

    [[nodiscard]] static std::vector<MarkdownEditorFragment> fragments(const MarkdownInlineList& inlines,
                                                                       const Environment& environment);
    // One node of `environment.list` and everything under it. Walks with its own stack: nesting
    // depth is the input's.
    static void visit(const MarkdownInline& node, const MarkdownTextAttributes& attributes,
                      const MarkdownFontDescriptor& font, const Environment& environment,
                      std::vector<MarkdownEditorFragment>& into);
    // Coloured `<span style="color: …">` … `</span>` pairs among siblings, at every level.
    static void applyTextColors(const MarkdownInlineList& inlines, const Environment& environment,
                                std::vector<MarkdownEditorFragment>& into);

    // Character attributes an extension gives, in the styler's terms.
    [[nodiscard]] static MarkdownTextAttributes attributes(const QTextCharFormat& format, const MarkdownFontDescriptor& font);
    // A link destination as a URL where it reads as one: a scheme, "www.", or a mail address.
    [[nodiscard]] static std::optional<QString> webURL(QStringView destination);
};

}
