#include "MarkdownEngine/Configuration/MarkdownFontDescriptor.h"

#include <gtest/gtest.h>

using namespace velmo::markdown;

// Families are held by number: descriptors made apart from the same name must still be equal,
// different names different, and the name must come back as it went in.
TEST(MarkdownFontDescriptor, FamiliesCompareByName)
{
    const QString name = QStringLiteral("Descriptor Test Family");
    const MarkdownFontDescriptor a{name, 12};
    MarkdownFontDescriptor b;
    b.setFamily(QString(name).append(u' ').chopped(1)); // an equal name in another string
    EXPECT_EQ(a, b);
    EXPECT_EQ(a.familyKey(), b.familyKey());
    EXPECT_EQ(b.family(), name);

    const MarkdownFontDescriptor other{QStringLiteral("Descriptor Test Family 2"), 12};
    EXPECT_FALSE(a == other);
    EXPECT_EQ(other.family(), QStringLiteral("Descriptor Test Family 2"));

    // No name, empty or null, is the default descriptor's.
    MarkdownFontDescriptor empty{QStringLiteral(""), 12};
    EXPECT_EQ(empty, MarkdownFontDescriptor());
    EXPECT_TRUE(empty.family().isEmpty());
    empty.setFamily(name);
    empty.setFamily(QString());
    EXPECT_EQ(empty, MarkdownFontDescriptor());
}
