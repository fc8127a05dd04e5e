#include "MarkdownEngine/Configuration/MarkdownEditorConfiguration.h"
#include "MarkdownEngine/Styling/MarkdownEditorFragmentStore.h"

#include <gtest/gtest.h>

using namespace velmo::markdown;
using Role = MarkdownEditorFragmentRole;

namespace {

MarkdownEditorFragment fragment(int location, int length, Role role, int priority, bool hidden = false)
{
    MarkdownEditorFragment f;
    f.range = {location, length};
    f.role = role;
    f.priority = priority;
    f.isHidden = hidden;
    return f;
}

}

TEST(MarkdownEditorFragmentStore, ListsAndQueries)
{
    const MarkdownEditorFragmentStore store({
        fragment(10, 5, Role::link, 0),
        fragment(0, 20, Role::blockquote, 2),
        fragment(0, 2, Role::blockquoteMarker, 31, true),
        fragment(2, 3, Role::emphasisMarker, 30, true),
        fragment(8, 0, Role::escapeMarker, 30, true),
        fragment(0, 20, Role::paragraph, 0),
        fragment(12, 2, Role::tag, 6),
    });
    // By location, then priority.
    ASSERT_EQ(store.fragments().size(), 7u);
    EXPECT_EQ(store.fragments()[0].role, Role::paragraph);
    EXPECT_EQ(store.fragments()[1].role, Role::blockquote);
    EXPECT_EQ(store.fragments()[2].role, Role::blockquoteMarker);
    // Touching hidden ranges coalesce; an empty one does not count.
    EXPECT_EQ(store.hiddenRanges(), (std::vector<MarkdownSourceRange>{{0, 5}}));
    EXPECT_TRUE(store.isHidden(4));
    EXPECT_FALSE(store.isHidden(5));
    EXPECT_FALSE(store.isHidden(8));
    EXPECT_EQ(store.decorations().size(), 2u);
    EXPECT_EQ(store.hitTargets().size(), 3u);
    // The smallest hit target wins.
    EXPECT_EQ(store.hitTarget(12)->role, Role::tag);
    EXPECT_EQ(store.hitTarget(10)->role, Role::link);
    EXPECT_EQ(store.hitTarget(19)->role, Role::blockquote);
    EXPECT_EQ(store.hitTarget(25), nullptr);
    EXPECT_EQ(store.fragments(MarkdownSourceRange{14, 3}).size(), 3u);
    EXPECT_EQ(store.decorations(MarkdownSourceRange{3, 1}).size(), 1u);
    EXPECT_EQ(store.fragment(13, Role::link)->range.location, 10);
    EXPECT_EQ(store.roles().size(), 7u);
}

TEST(MarkdownEditorFragmentStore, ApplyOrderAndClipping)
{
    MarkdownEditorConfiguration config;
    auto red = fragment(0, 10, Role::paragraph, 0);
    red.attributes.setForeground(Qt::red);
    auto blue = fragment(2, 3, Role::body, 0); // same priority, shorter: applied later
    blue.attributes.setForeground(Qt::blue);
    auto high = fragment(0, 10, Role::heading, 5);
    high.attributes.setFont(MarkdownFont::serif(30));
    auto outside = fragment(8, 100, Role::tag, 6); // clipped to the text
    outside.attributes.setForeground(Qt::green);
    const auto hidden = MarkdownEditorFragment::hidden({0, 1}, Role::headingMarker, config);
    const MarkdownEditorFragmentStore store({outside, high, blue, red, hidden});

    MarkdownStyledText text(QStringLiteral("0123456789"), {});
    MarkdownTextAttributes base;
    base.setForeground(Qt::black);
    store.apply(text, base);
    EXPECT_EQ(text.runAt(3)->attributes.foreground, QColor(Qt::blue).rgba());
    EXPECT_EQ(text.runAt(6)->attributes.foreground, QColor(Qt::red).rgba());
    EXPECT_EQ(text.runAt(9)->attributes.foreground, QColor(Qt::green).rgba());
    EXPECT_EQ(text.runAt(6)->attributes.role, Role::heading);
    EXPECT_FLOAT_EQ(text.runAt(6)->attributes.font.pointSize, 30.f);
    EXPECT_TRUE(text.runAt(0)->attributes.hidden);
    EXPECT_FLOAT_EQ(text.runAt(0)->attributes.font.pointSize, 0.1f);
    EXPECT_FALSE(text.runAt(1)->attributes.has(MarkdownTextAttributes::Hidden));
    EXPECT_EQ(text.runs().back().range.upperBound(), 10);

    // Separate stretches are ordered on their own; a chain of overlaps stays one stretch.
    auto a = fragment(0, 2, Role::body, 9);
    a.attributes.setForeground(Qt::red);
    auto b = fragment(4, 3, Role::body, 0);
    b.attributes.setForeground(Qt::blue);
    auto c = fragment(6, 3, Role::body, 1);
    c.attributes.setForeground(Qt::green);
    auto d = fragment(2, 4, Role::body, 2); // reaches into b's stretch from before it
    d.attributes.setForeground(Qt::yellow);
    MarkdownStyledText chained(QStringLiteral("0123456789"), {});
    MarkdownEditorFragmentStore({c, a, b, d}).apply(chained, base);
    const QRgb expected[] = {QColor(Qt::red).rgba(), QColor(Qt::red).rgba(), QColor(Qt::yellow).rgba(),
                             QColor(Qt::yellow).rgba(), QColor(Qt::yellow).rgba(), QColor(Qt::yellow).rgba(),
                             QColor(Qt::green).rgba(), QColor(Qt::green).rgba(), QColor(Qt::green).rgba(),
                             QColor(Qt::black).rgba()};
    for (int i = 0; i < 10; ++i)
        EXPECT_EQ(chained.runAt(i)->attributes.foreground, expected[i]) << i;
}

// Fragments handed over one by one make the store the sorting constructor makes, in order or not.
TEST(MarkdownEditorFragmentStore, BuilderMatchesTheSortingStore)
{
    const std::vector<std::vector<MarkdownEditorFragment>> cases{
        {fragment(0, 20, Role::paragraph, 0), fragment(0, 2, Role::headingMarker, 31, true),
         fragment(2, 3, Role::emphasisMarker, 30, true), fragment(5, 1, Role::escapeMarker, 30, true),
         fragment(10, 5, Role::link, 0), fragment(12, 2, Role::tag, 6)},
        {fragment(10, 5, Role::link, 0), fragment(0, 20, Role::blockquote, 2),
         fragment(0, 2, Role::blockquoteMarker, 31, true), fragment(2, 3, Role::emphasisMarker, 30, true)},
        {fragment(0, 4, Role::body, 5), fragment(0, 4, Role::body, 1), fragment(9, 1, Role::tag, 6, true)},
        {},
    };
    for (size_t c = 0; c < cases.size(); ++c) {
        MarkdownEditorFragmentStore::Builder builder;
        for (MarkdownEditorFragment f : cases[c])
            builder.append(std::move(f));
        const MarkdownEditorFragmentStore built = std::move(builder).finish();
        const MarkdownEditorFragmentStore sorted(cases[c]);
        EXPECT_EQ(built.fragments(), sorted.fragments()) << c;
        EXPECT_EQ(built.hiddenRanges(), sorted.hiddenRanges()) << c;
        EXPECT_EQ(built.decorations().size(), sorted.decorations().size()) << c;
        EXPECT_EQ(built.hitTargets().size(), sorted.hitTargets().size()) << c;
        EXPECT_EQ(built.fragments(MarkdownSourceRange{3, 8}).size(), sorted.fragments(MarkdownSourceRange{3, 8}).size()) << c;
    }
}
