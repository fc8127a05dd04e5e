#pragma once

#include "MarkdownEngine/Configuration/MarkdownEditorConfiguration.h"
#include "MarkdownEngine/Core/MarkdownDocument.h"
#include "MarkdownEngine/Core/MarkdownDocumentChange.h"
#include "MarkdownEngine/Core/MarkdownSourceEditorState.h"
#include "MarkdownEngine/Directives/DirectiveRegistry.h"
#include "MarkdownEngine/Extensions/MarkdownExtensionRegistry.h"
#include "MarkdownEngine/Styling/MarkdownEditorAttachmentFactory.h"
#include "MarkdownEngine/Styling/MarkdownEditorFragmentStore.h"
#include "MarkdownEngine/Styling/MarkdownInlineStyler.h"
#include "MarkdownEngine/Styling/MarkdownStyledNote.h"
#include "MarkdownEngine/Styling/MarkdownStyledText.h"

#include <QHash>
#include <functional>
#include <optional>
#include <span>
#include <vector>

namespace velmo::markdown {

// The block styler: a parsed note, the selection and the configuration in; fragments over the
// unchanged source and the styled text out. Markers are never removed: off the active line
// they are hidden, on it they show. Pure but for the attachment factory's cache.
class MarkdownASTStyler {
public:
    MarkdownASTStyler() = delete;

    using RangePredicate = std::function<bool(MarkdownSourceRange)>;

    struct Request {
        const MarkdownDocument* document = nullptr;
        MarkdownSourceEditorState selection;
        const MarkdownEditorConfiguration* config = nullptr;
        MarkdownEditorAttachmentFactory* attachments = nullptr; // may be null: no pictures
        double maximumEmbedWidth = 620.0;
        // Coloured code by codeKey; may be null.
        const QHash<QString, MarkdownStyledText>* highlightedCode = nullptr;
    };

    struct Result {
        // Worked out by stretch, as the editor writes only the lines that changed.
        MarkdownStyledNote attributedString;
        MarkdownEditorFragmentStore fragments;
        std::vector<MarkdownSourceRange> activeLines;
        // How many blocks the pass styled: every one for a full pass.
        size_t styledBlocks = 0;
    };

    struct SelectionFragments {
        std::vector<MarkdownEditorFragment> fragments; // unsorted
        std::vector<MarkdownSourceRange> ranges;       // sorted, merged
    };

    struct CheckboxHit {
        MarkdownSourceRange range; // the three characters of "[ ]"
        bool isChecked = false;
    };

    // What every block step is given.
    struct BlockContext {
        const Request* request = nullptr;
        const MarkdownExtensionRegistry* registry = nullptr;
        const DirectiveRegistry* directives = nullptr;
        MarkdownFontDescriptor bodyFont;
        const QString* text = nullptr;
        RangePredicate showsMarkers;
        RangePredicate revealsFormula;
        MarkdownEditorAttachmentFactory* attachments = nullptr;
        QHash<int, double> listGutters; // block location to gutter width
        MarkdownInlineStyler::Environment inlines; // the same for every block

        [[nodiscard]] MarkdownTextAttributes base(const MarkdownParagraphMetrics& paragraph) const;
    };

    [[nodiscard]] static Result style(const Request& request);
    // What `style(request)` returns, made from `old`, the store of the pass before an edit
    // that `change` describes. Styled again: the blocks the edit replaced and the one before
    // them, with the list runs they border; the blocks the selection touches now or touched
    // when `old` was made (the store remembers that selection); those `stale` touches, ranges
    // of the old text whose fragments must not be kept for any other reason; and fences whose
    // colouring may differ. The other blocks keep their fragments, moved by the edit. Falls
    // back to `style` where that cannot be had cheaply (raw source, an edit or a selection
    // over half the blocks, a store not made block by block, fragments out of order), so it
    // may be called after any edit. Pass `old` by move: when nothing else shares it, its
    // fragments are edited in place rather than copied.
    //
    // `old` must come from `style` or `restyle` of the document before the edit with the same
    // configuration, parse options, embed width and attachment factory (its cache not
    // emptied since); a fence's colouring is taken to be the same for the same key and text.
    [[nodiscard]] static Result restyle(const Request& request, MarkdownEditorFragmentStore old,
                                        const MarkdownDocumentChange& change,
                                        const std::vector<MarkdownSourceRange>& stale);
    [[nodiscard]] static SelectionFragments selectionFragments(const Request& request,
                                                               const std::vector<MarkdownSourceRange>& affectedLines);
    [[nodiscard]] static std::vector<MarkdownSourceRange> activeLineRanges(const MarkdownSourceEditorState& state,
                                                                           const QString& text);
    [[nodiscard]] static std::optional<MarkdownSourceRange> formulaUnderSelection(const MarkdownSourceEditorState& state,
                                                                                  const MarkdownEditorFragmentStore& store);

    [[nodiscard]] static double blockPointSize(const MarkdownBlock& block, const MarkdownEditorConfiguration& config,
                                               double bodySize);
    [[nodiscard]] static MarkdownParagraphMetrics baseParagraphStyle(const MarkdownEditorConfiguration& config,
                                                                     double pointSize);
    [[nodiscard]] static MarkdownParagraphMetrics paragraphStyle(const MarkdownBlock& block,
                                                                 const MarkdownEditorConfiguration& config,
                                                                 const MarkdownFontDescriptor& bodyFont);
    [[nodiscard]] static MarkdownFontDescriptor headingFont(int level, const MarkdownEditorConfiguration& config,
                                                      const MarkdownFontDescriptor& bodyFont);
    [[nodiscard]] static std::optional<CheckboxHit> taskCheckboxRange(const MarkdownBlock& block, const QString& text);
    [[nodiscard]] static std::optional<MarkdownSourceRange> fenceInfoRange(const MarkdownBlock& block, const QString& text);
    [[nodiscard]] static RangePredicate markerVisibility(const Request& request,
                                                         const std::vector<MarkdownSourceRange>& activeLines);
    [[nodiscard]] static RangePredicate formulaVisibility(const Request& request);
    [[nodiscard]] static QHash<int, double> listGutters(const Request& request, const QString& text,
                                                        const MarkdownFontDescriptor& font);
    // The key of a fence's colouring: language, U+0001, then the content's location:length.
    [[nodiscard]] static QString codeKey(const MarkdownBlock& block);
    // "mermaid" and its kin name a diagram kind; absent for other languages.
    [[nodiscard]] static std::optional<QString> diagramKind(const std::optional<QString>& language);

    // The block step, and the tag pass over `within` (the whole text when absent). `fragments`,
    // those that keep tags out, may lie in `into`: they are read before anything is added.
    static void style(const MarkdownBlock& block, const BlockContext& context, std::vector<MarkdownEditorFragment>& into);
    static void tagPass(const BlockContext& context, std::optional<MarkdownSourceRange> within,
                        std::span<const MarkdownEditorFragment> fragments, std::vector<MarkdownEditorFragment>& into);

private:
    // The scratch of ordering one block's tile (its fragments with the tags of the text up to
    // the next block), reused from tile to tile.
    struct Tile {
        std::vector<MarkdownEditorFragmentStore::OrderKey> lists[3], merged;
        std::vector<MarkdownEditorFragmentStore::OrderKey> keys; // the fragments in store order
    };
    // Appends block b's tile to `into`, in store order: made where it stays, so that no
    // fragment is moved to another list on its way into the store.
    static void styleTile(const BlockContext& context, size_t b, Tile& tile, std::vector<MarkdownEditorFragment>& into);
    // Whether the fragment at `at` in `fragments` may follow the one before it in the store.
    [[nodiscard]] static bool followsPrevious(const std::vector<MarkdownEditorFragment>& fragments, size_t at);
    [[nodiscard]] static std::vector<MarkdownSourceRange> selectionRecord(const Request& request,
                                                                          const std::vector<MarkdownSourceRange>& activeLines);
    [[nodiscard]] static MarkdownStyledNote styledNote(const Request& request, const MarkdownEditorFragmentStore& fragments);
    // The first block whose end lies beyond `location`.
    [[nodiscard]] static size_t firstBlockEndingAfter(const std::vector<MarkdownBlock>& blocks, int location);
    [[nodiscard]] static DirectiveRegistry directiveRegistry(const MarkdownEditorConfiguration& config);
    // Every block's fragments and the tags, appended to `into` in the store's order; false
    // (with `into` part filled) when the blocks' fragments do not follow one another.
    static bool styleInStoreOrder(const BlockContext& context, MarkdownEditorFragmentStore::Builder& into);
    // Adds the gutters of the list run holding block i, when it is a list item whose run's
    // are not in yet.
    static void addRunGutters(BlockContext& context, size_t i);
    static QHash<int, double> listGutters(const MarkdownDocument& document, size_t first, size_t last,
                                          const QString& text, const MarkdownFontDescriptor& font);
    static void styleQuote(const MarkdownBlock& block, MarkdownTextAttributes base, const BlockContext& context,
                           std::vector<MarkdownEditorFragment>& into);
    static void styleListItem(const MarkdownBlock& block, MarkdownTextAttributes& base,
                              const MarkdownParagraphMetrics& paragraph, const BlockContext& context,
                              std::vector<MarkdownEditorFragment>& into);
    static void styleFence(const MarkdownBlock& block, const MarkdownTextAttributes& base, const BlockContext& context,
                           std::vector<MarkdownEditorFragment>& into);
    static void styleTable(const MarkdownBlock& block, const MarkdownTextAttributes& base, const BlockContext& context,
                           std::vector<MarkdownEditorFragment>& into);
    static void styleDirective(const MarkdownBlock& block, const MarkdownTextAttributes& base,
                               const BlockContext& context, std::vector<MarkdownEditorFragment>& into);
    static void styleBlockLatex(const MarkdownBlock& block, const MarkdownTextAttributes& base,
                                const BlockContext& context, std::vector<MarkdownEditorFragment>& into);
    static void markerPass(const MarkdownBlock& block, MarkdownEditorFragmentRole role, const QColor& color,
                           const BlockContext& context, std::vector<MarkdownEditorFragment>& into);
    static void inlinePass(const MarkdownBlock& block, const BlockContext& context,
                           std::vector<MarkdownEditorFragment>& into);
    static BlockContext makeContext(const Request& request, const std::vector<MarkdownSourceRange>& activeLines,
                                    const MarkdownExtensionRegistry& registry, const DirectiveRegistry& directives);
};

}
