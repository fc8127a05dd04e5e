#pragma once

#include "MarkdownEngine/Configuration/MarkdownEditorServices.h"
#include "MarkdownEngine/Configuration/MarkdownEditorTheme.h"
#include "MarkdownEngine/Configuration/MarkdownFont.h"
#include "MarkdownEngine/Directives/DirectiveRegistrySettings.h"
#include "MarkdownEngine/Directives/MarkdownDirective.h"
#include "MarkdownEngine/Extensions/MarkdownExtension.h"

#include <QString>
#include <QStringList>
#include <memory>
#include <optional>
#include <vector>

namespace velmo::markdown {

// Everything the editor surface needs to know: colours, fonts, metrics, policies, services.
// Lengths are points; a scale or factor multiplies a font size; "lines" and "Em" multiply the
// body size. A default-constructed value is the default configuration.
struct MarkdownEditorConfiguration {
    struct MarkerStyle {
        double hiddenMarkerFontSize = 0.1;
        double inlineCodeMarkerAlpha = 0.45;
        double findMatchHighlightAlpha = 0.75;
        bool revealsMarkersOnActiveLine = true;
        bool operator==(const MarkerStyle&) const = default;
    };
    struct CodeBlockStyle {
        std::optional<QString> fontName;
        double fontSizeScale = 0.92;
        double paragraphSpacing = 0.35;
        double horizontalIndent = 12.0;
        double cornerRadius = 6.0;
        bool operator==(const CodeBlockStyle&) const = default;
    };
    struct InlineCodeStyle {
        std::optional<QString> fontName;
        double fontSizeScale = 0.92;
        double horizontalPadding = 3.0;
        double cornerRadius = 4.0;
        bool operator==(const InlineCodeStyle&) const = default;
    };
    struct TableStyle {
        double cellHorizontalPadding = 12.0;
        double cellVerticalPadding = 6.0;
        bool showsOuterBorder = true;
        bool showsColumnRules = true;
        double ruleAlpha = 0.45;
        std::optional<double> headerRuleAlpha = 0.7;
        double headerFillAlpha = 0.06;
        bool operator==(const TableStyle&) const = default;
    };
    struct ListStyle {
        bool helpersEnabled = true;
        bool autoClosePairsEnabled = true;
        double indentPerLevel = 24.0;
        int maximumNestingLevel = 6;
        double extraLineHeight = 2.0;
        std::optional<double> itemSpacingLines = 0.2;
        bool operator==(const ListStyle&) const = default;
    };
    struct TaskCheckboxStyle {
        QString uncheckedSymbolName = QStringLiteral("square");
        QString checkedSymbolName = QStringLiteral("checkmark.square.fill");
        bool operator==(const TaskCheckboxStyle&) const = default;
    };
    struct HeadingStyle {
        std::vector<double> fontMultipliers{1.9, 1.55, 1.3, 1.16, 1.06, 1.0};
        std::vector<double> topSpacingEm{1.3, 1.15, 1.0, 0.9, 0.8, 0.7};
        std::optional<QString> fontName;
        bool isBold = true;
        std::optional<double> bottomSpacingLines = 0.25;

        [[nodiscard]] double fontMultiplier(int level) const;
        [[nodiscard]] double topSpacing(int level) const; // topSpacingEm(level:)
        bool operator==(const HeadingStyle&) const = default;
    };
    struct ImageEmbedStyle {
        double minimumWidth = 48.0;
        double fallbackMaxWidth = 620.0;
        double unreasonableMaxWidth = 4000.0;
        double paragraphSpacing = 0.5;
        double imageGap = 8.0;
        bool operator==(const ImageEmbedStyle&) const = default;
    };
    struct BlockLatexStyle {
        double paragraphSpacingBefore = 0.6;
        double paragraphSpacing = 0.6;
        double singleLetterPaddingBottom = 2.0;
        bool operator==(const BlockLatexStyle&) const = default;
    };
    struct InlineLatexStyle {
        double verticalPadding = 1.0;
        bool operator==(const InlineLatexStyle&) const = default;
    };
    struct BlockquoteStyle {
        double extraLineHeight = 4.0;
        double calloutPadding = 8.0;
        bool operator==(const BlockquoteStyle&) const = default;
    };
    struct ThematicBreakStyle {
        struct Mark {
            QString text;
            double scale = 1.0;
            bool operator==(const Mark&) const = default;
        };
        std::optional<Mark> dashMark = Mark{QStringLiteral("—"), 0.55};
        std::optional<Mark> asteriskMark = Mark{QStringLiteral("✳"), 0.75};
        std::optional<Mark> underscoreMark = Mark{QStringLiteral("_"), 0.9};

        [[nodiscard]] std::optional<Mark> mark(QChar character) const;
        bool operator==(const ThematicBreakStyle&) const = default;
    };
    struct LinkStyle {
        double activeLinkAlpha = 1.0;
        double incompleteLinkAlpha = 1.0;
        double underlineAlpha = 0.35;
        bool operator==(const LinkStyle&) const = default;
    };
    struct ParagraphStyle {
        double spacingFactor = 0.55;
        double lineHeightExtraSpacing = 4.0;
        std::optional<double> lineHeightFactor = 1.35;
        double blankLineFactor = 0.7;

        struct Metrics {
            double lineHeight = 0;
            double spacing = 0;
        };
        [[nodiscard]] Metrics metrics(double pointSize) const;
        bool operator==(const ParagraphStyle&) const = default;
    };
    struct OverscrollPolicy {
        double percent = 0.35;
        double maxPoints = 260.0;
        double minPoints = 56.0;
        double activationStartFraction = 0.35;
        double activationRangeFraction = 0.5;

        [[nodiscard]] double bottomInset(double visibleHeight) const;
        [[nodiscard]] double activationRange(double visibleHeight) const { return visibleHeight * activationRangeFraction; }
        bool operator==(const OverscrollPolicy&) const = default;
    };
    struct DragSelectionPolicy {
        double movementThreshold = 3.0;
        double edgeTriggerDistance = 28.0;
        double scrollStepPerTick = 6.0;
        double ticksPerSecond = 60.0;
        bool operator==(const DragSelectionPolicy&) const = default;
    };
    struct SafeAreaInsets {
        double top = 0, leading = 0, trailing = 0, bottom = 0;
        bool operator==(const SafeAreaInsets&) const = default;
    };
    struct ScrollersPolicy {
        bool hasVerticalScroller = true;
        bool hasHorizontalScroller = false;
        bool autohidesScrollers = true;
        bool operator==(const ScrollersPolicy&) const = default;
    };
    struct TextInsets {
        double horizontal = 0, vertical = 0;
        bool operator==(const TextInsets&) const = default;
    };
    struct SpellCheckingPolicy {
        bool continuousSpellChecking = false;
        bool grammarChecking = false;
        bool automaticSpellingCorrection = false;
        bool automaticQuoteSubstitution = false;
        bool operator==(const SpellCheckingPolicy&) const = default;
    };
    enum class HeightBehavior : unsigned char { scrolls, fitsContent };

    using ExtensionPointer = std::shared_ptr<const MarkdownExtension>;
    using DirectivePointer = std::shared_ptr<const MarkdownDirective>;

    MarkdownEditorTheme theme = MarkdownEditorTheme::defaultTheme();
    MarkdownEditorServices services;
    double bodySize = 15.0;
    std::optional<QString> bodyFontName; // empty counts as absent
    MarkdownFont::Design bodyFontDesign = MarkdownFont::Design::serif;
    MarkerStyle markers;
    CodeBlockStyle codeBlock;
    InlineCodeStyle inlineCode;
    TableStyle table;
    ListStyle lists;
    TaskCheckboxStyle taskCheckbox;
    HeadingStyle headings;
    ImageEmbedStyle imageEmbed;
    BlockLatexStyle blockLatex;
    InlineLatexStyle inlineLatex;
    BlockquoteStyle blockquote;
    ThematicBreakStyle thematicBreak;
    LinkStyle link;
    ParagraphStyle paragraph;
    OverscrollPolicy overscroll;
    DragSelectionPolicy dragSelection;
    SafeAreaInsets safeAreaInsets;
    ScrollersPolicy scrollers;
    TextInsets textInsets;
    std::optional<double> readingWidth = 720.0;
    bool rendersTablesDuringLiveResize = false;
    SpellCheckingPolicy spellChecking;
    HeightBehavior heightBehavior = HeightBehavior::scrolls;
    bool rawSourceMode = false;
    bool focusMode = false;
    bool typewriterMode = false;
    QString inlinePlaceholder = QStringLiteral("text");
    std::vector<ExtensionPointer> extensions = defaultExtensions();
    bool cursorFollowsSpanInk = true;
    std::vector<DirectivePointer> directives = defaultDirectives();
    DirectiveRegistrySettings directiveSettings;

    [[nodiscard]] static std::vector<ExtensionPointer> defaultExtensions();
    [[nodiscard]] static std::vector<DirectivePointer> defaultDirectives();

    // Whether the text styled with one would look the same with the other. Services take no part.
    [[nodiscard]] bool hasSameStyle(const MarkdownEditorConfiguration& other) const;
    // The fields hasSameStyle compares, in declaration order.
    [[nodiscard]] static const QStringList& styleFieldNames();

    [[nodiscard]] MarkdownFontDescriptor bodyFont(std::optional<double> size = std::nullopt) const;
    [[nodiscard]] double headingPointSize(int level, double bodySize) const
    {
        return bodySize * headings.fontMultiplier(level);
    }
    [[nodiscard]] bool wantsVerticalScroller() const { return heightBehavior == HeightBehavior::scrolls; }

    // Same count, and at each position the same dynamic type and identifier.
    [[nodiscard]] static bool sameExtensions(const std::vector<ExtensionPointer>& a, const std::vector<ExtensionPointer>& b);
    [[nodiscard]] static bool sameDirectives(const std::vector<DirectivePointer>& a, const std::vector<DirectivePointer>& b);
};

}
