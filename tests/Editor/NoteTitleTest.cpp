#include "Editor/Model/NoteTitle.h"

#include <gtest/gtest.h>

using namespace velmo::editor;

TEST(NoteTitle, firstLineNames)
{
    struct Case { const char16_t* text; std::optional<QString> name; bool heading; };
    const Case cases[] = {
        {u"#", std::nullopt, true},
        {u"# #", std::nullopt, true},
        {u"#hello", "#hello", false},
        {u"####### x", "####### x", false},
        {u"    # x", "# x", false}, // four spaces: a plain line
        {u"   # x", "x", true},
        {u"\t# x", "# x", false},
        {u"# a#", "a#", true},
        {u"# a #", "a", true},
        {u"## Plans ##\nrest", "Plans", true},
        {u"Shopping list  \r\nmilk", "Shopping list", false},
        {u"\uFEFF# Title", "Title", true},
        {u"", std::nullopt, false},
        {u"\n\nbody", std::nullopt, false},
    };
    for (const Case& c : cases) {
        const auto line = NoteTitle::firstLine(QString::fromUtf16(c.text));
        EXPECT_EQ(line.name, c.name) << QString::fromUtf16(c.text).toStdString();
        EXPECT_EQ(line.isHeading, c.heading) << QString::fromUtf16(c.text).toStdString();
    }
}

TEST(NoteTitle, replacementKeepsTheLinesShape)
{
    struct Case { const char16_t* text; const char* name; const char16_t* result; };
    const Case cases[] = {
        {u"", "Ideas", u"# Ideas\n\n"},
        {u"\n\nbody", "Ideas", u"# Ideas\n\nbody"},
        {u"## Old ##\nbody", "New", u"## New ##\nbody"},
        {u"#  Old\nbody", "#tag", u"#  #tag\nbody"},
        {u"Plain old\nbody", "New", u"New\nbody"},
        {u"\uFEFFOld", "New", u"\uFEFFNew"},
    };
    for (const Case& c : cases)
        EXPECT_EQ(NoteTitle::replacingName(QString::fromUtf16(c.text), c.name), QString::fromUtf16(c.result));
}

TEST(NoteTitle, caretFollowsTheTitle)
{
    const QString text = QStringLiteral("# Note\nbody");
    EXPECT_EQ(NoteTitle::caretAfterReplacingName(text, "Note 2", 0), 0);       // before
    EXPECT_EQ(NoteTitle::caretAfterReplacingName(text, "Note 2", 6), 6);       // inside keeps its offset
    EXPECT_EQ(NoteTitle::caretAfterReplacingName(text, "No", 5), 4);           // inside, clipped
    EXPECT_EQ(NoteTitle::caretAfterReplacingName(text, "Note 2", 9), 11);      // after: shifted
    EXPECT_EQ(NoteTitle::caretAfterReplacingName(text, "Note 2", 999), 13);    // clamped
    EXPECT_EQ(NoteTitle::caretAfterReplacingName("", "Ideas", 0), 2);
    // Never inside a surrogate pair.
    EXPECT_EQ(NoteTitle::caretAfterReplacingName(QStringLiteral("# ab"), QString::fromUtf16(u"\U0001F600"), 3), 4);
}

TEST(NoteTitle, validFilenames)
{
    EXPECT_TRUE(NoteTitle::isValidFilename("Plans", "md"));
    EXPECT_FALSE(NoteTitle::isValidFilename(".hidden", "md"));
    EXPECT_FALSE(NoteTitle::isValidFilename("a/b", "md"));
    EXPECT_FALSE(NoteTitle::isValidFilename("a:b", "md"));
    EXPECT_FALSE(NoteTitle::isValidFilename("  ", "md"));
    EXPECT_FALSE(NoteTitle::isValidFilename("a\tb", "md"));
    EXPECT_FALSE(NoteTitle::isValidFilename("a", "m/d"));
    EXPECT_TRUE(NoteTitle::isValidFilename(QString(252, u'x'), "md"));  // 255 bytes
    EXPECT_FALSE(NoteTitle::isValidFilename(QString(253, u'x'), "md")); // 256 bytes
    EXPECT_TRUE(NoteTitle::isValidFilename(QString(125, QChar(0x00E9)) + "x", "md"));  // é is 2 bytes: 254
    EXPECT_FALSE(NoteTitle::isValidFilename(QString(126, QChar(0x00E9)) + "x", "md")); // 256
}
