#include "Editor/Model/RecentDocumentPreview.h"
#include "support/TestSupport.h"

#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace Preview = velmo::editor::RecentDocumentPreview;

TEST(RecentDocumentPreview, keepsTheReadingLines)
{
    const std::pair<QString, QString> cases[] = {
        {"---\ntitle: x\n---\n# Title\nBody line\n# Title\n", "Body line\nTitle"},
        {"---\nno end\n# Title", ""},
        {"```swift\nlet x = 1\n```", ""},
        {"~~~\nfenced\n```\nstill outside\n", "still outside"},
        {"\n# Heading first\ntext", "text"},
        {"| a | b |", "| a · b |"},
        {"> > quoted **bold** and `code`", "quoted bold and code"},
        {"- [x] done [[Target|shown]] and [[Plain]]", "done shown and Plain"},
        {"1. see [site](http://x) ![img](a.png) <b>tag</b>", "see site  tag"},
        {"_edge_ snake_case \\*", "edge snake_case"},
        {"one\ntwo\n\nthree\nfour\nfive", "one\ntwo\nthree\nfour"},
        {"a\r\nb", "a\r\nb"},
    };
    for (const auto& [head, expected] : cases)
        EXPECT_EQ(Preview::text(head), expected) << head.toStdString();

    const QString longLine(400, u'x');
    EXPECT_EQ(Preview::text(longLine), QString(320, u'x') + u'…');
    EXPECT_EQ(Preview::text(QString(320, u'x')), QString(320, u'x'));
}

TEST(RecentDocumentPreview, aCutInsideACharacterLeavesNoReplacement)
{
    QTemporaryDir dir;
    // 4,095 ASCII bytes, then "é" (two bytes) across the limit.
    const QByteArray bytes = QByteArray(4095, 'a') + "\xc3\xa9" + QByteArray(900, 'b');
    velmo::test::writeBytes(dir.filePath("n.md"), bytes);
    const QString preview = Preview::load(QUrl::fromLocalFile(dir.filePath("n.md")));
    EXPECT_FALSE(preview.contains(QChar::ReplacementCharacter));
    EXPECT_EQ(preview, QString(320, u'a') + u'…');
    EXPECT_EQ(Preview::load(QUrl::fromLocalFile(dir.filePath("missing.md"))), "");
}
