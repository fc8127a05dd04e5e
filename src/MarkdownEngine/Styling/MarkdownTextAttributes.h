#pragma once

#include "MarkdownEngine/Configuration/MarkdownFontDescriptor.h"
#include "MarkdownEngine/Styling/MarkdownEditorFragmentRole.h"
#include "MarkdownEngine/Styling/MarkdownParagraphMetrics.h"

#include <QColor>
#include <QSharedData>
#include <QString>
#include <cstdint>
#include <memory>

namespace velmo::markdown {

struct MarkdownEditorAttachment;

// The attributes of a stretch of styled text: a fixed set of keys, each present or not.
// A record with a presence mask rather than a map of variants, so that a large note's tens of
// thousands of fragments and runs cost a copy and a few tests each, not heap nodes.
struct MarkdownTextAttributes {
    enum Key : std::uint32_t {
        Font = 1u << 0,
        Foreground = 1u << 1,
        Background = 1u << 2,
        Underline = 1u << 3,          // single underline
        UnderlineColor = 1u << 4,
        Strikethrough = 1u << 5,      // single strike
        StrikethroughColor = 1u << 6,
        BaselineOffset = 1u << 7,
        Kern = 1u << 8,
        Paragraph = 1u << 9,
        Hidden = 1u << 10,            // Velmo.hidden
        Role = 1u << 11,              // Velmo.role
        Depth = 1u << 12,             // Velmo.depth
        ListMarker = 1u << 13,        // Velmo.listMarker
        Attachment = 1u << 14,        // Velmo.attachment
        TableGrid = 1u << 15,         // Velmo.tableGrid
        FenceBox = 1u << 16,          // Velmo.fenceBox
        Callout = 1u << 17,           // Velmo.callout
        TaskCheckbox = 1u << 18,      // Velmo.taskCheckbox
        WikiLinkID = 1u << 19,        // Velmo.wikiLinkID
        Link = 1u << 20,              // VelmoLink
    };

    std::uint32_t keys = 0;
    QRgb foreground = 0, background = 0, underlineColor = 0, strikethroughColor = 0; // ARGB
    float baselineOffset = 0, kern = 0;
    int depth = 0;
    MarkdownEditorFragmentRole role = MarkdownEditorFragmentRole::body;
    bool hidden = false, tableGrid = false, fenceBox = false, taskCheckbox = false;
    MarkdownFontDescriptor font;

    [[nodiscard]] bool has(Key key) const { return keys & key; }
    [[nodiscard]] bool isEmpty() const { return keys == 0; }
    void remove(Key key) { keys &= ~std::uint32_t(key); }

    // Values few ranges carry live behind shared pointers, so that copying a set, which
    // styling does for every fragment and run, moves a hundred bytes and not three hundred.
    [[nodiscard]] const MarkdownParagraphMetrics& paragraph() const;
    [[nodiscard]] const QString& listMarker() const { return extras().listMarker; }
    [[nodiscard]] const QString& callout() const { return extras().callout; }
    [[nodiscard]] const QString& wikiLinkID() const { return extras().wikiLinkID; }
    [[nodiscard]] const QString& link() const { return extras().link; }
    [[nodiscard]] const std::shared_ptr<const MarkdownEditorAttachment>& attachment() const { return extras().attachment; }

    MarkdownTextAttributes& setFont(const MarkdownFontDescriptor& f) { font = f; keys |= Font; return *this; }
    MarkdownTextAttributes& setForeground(const QColor& c) { foreground = c.rgba(); keys |= Foreground; return *this; }
    MarkdownTextAttributes& setBackground(const QColor& c) { background = c.rgba(); keys |= Background; return *this; }
    MarkdownTextAttributes& setUnderline(const QColor& c)
    {
        underlineColor = c.rgba();
        keys |= Underline | UnderlineColor;
        return *this;
    }
    MarkdownTextAttributes& setStrikethroughColor(const QColor& c)
    {
        strikethroughColor = c.rgba();
        keys |= StrikethroughColor;
        return *this;
    }
    MarkdownTextAttributes& setBaselineOffset(float v) { baselineOffset = v; keys |= BaselineOffset; return *this; }
    MarkdownTextAttributes& setKern(float v) { kern = v; keys |= Kern; return *this; }
    MarkdownTextAttributes& setParagraph(const MarkdownParagraphMetrics& p);
    MarkdownTextAttributes& setHidden() { hidden = true; keys |= Hidden; return *this; }
    MarkdownTextAttributes& setRole(MarkdownEditorFragmentRole r) { role = r; keys |= Role; return *this; }
    MarkdownTextAttributes& setDepth(int d) { depth = d; keys |= Depth; return *this; }
    MarkdownTextAttributes& setListMarker(const QString& s);
    MarkdownTextAttributes& setAttachment(std::shared_ptr<const MarkdownEditorAttachment> a);
    MarkdownTextAttributes& setTableGrid() { tableGrid = true; keys |= TableGrid; return *this; }
    MarkdownTextAttributes& setFenceBox() { fenceBox = true; keys |= FenceBox; return *this; }
    MarkdownTextAttributes& setCallout(const QString& s);
    MarkdownTextAttributes& setTaskCheckbox(bool checked) { taskCheckbox = checked; keys |= TaskCheckbox; return *this; }
    MarkdownTextAttributes& setWikiLinkID(const QString& s);
    MarkdownTextAttributes& setLink(const QString& url);

    // Takes every key `other` names, leaving the rest.
    void merge(const MarkdownTextAttributes& other);

    // Equal keys with equal values; values of absent keys do not count.
    friend bool operator==(const MarkdownTextAttributes& a, const MarkdownTextAttributes& b);

private:
    // Counted in the object, so that each pointer is one word: sets are copied and moved by
    // the hundred thousand.
    struct SharedParagraph : QSharedData {
        MarkdownParagraphMetrics metrics;
    };
    struct Extras : QSharedData {
        QString listMarker, callout, wikiLinkID, link;
        std::shared_ptr<const MarkdownEditorAttachment> attachment;
    };
    [[nodiscard]] const Extras& extras() const;
    Extras& mutableExtras(); // copies on write

    QExplicitlySharedDataPointer<const SharedParagraph> m_paragraph;
    QExplicitlySharedDataPointer<Extras> m_extras;
};

// The clear colour: no ink.
inline const QColor clearColor = QColor(0, 0, 0, 0);

}
