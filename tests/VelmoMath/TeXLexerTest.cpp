#include "VelmoMath/TeXLexer.h"

#include "QStringPrinter.h"

#include <QStringList>
#include <gtest/gtest.h>

using namespace velmo::math;

namespace {

// One word per token: "cmd:name", "chr:c", or the kind's mark; each with "@start".
QString dump(const QString& source)
{
    using Kind = TeXToken::Kind;
    QStringList words;
    for (const TeXToken& token : TeXLexer::run(source)) {
        QString word;
        switch (token.kind) {
        case Kind::command: word = QStringLiteral("cmd:") + token.text.toString(); break;
        case Kind::character: word = QStringLiteral("chr:") + token.text.toString(); break;
        case Kind::openBrace: word = QStringLiteral("{"); break;
        case Kind::closeBrace: word = QStringLiteral("}"); break;
        case Kind::openBracket: word = QStringLiteral("["); break;
        case Kind::closeBracket: word = QStringLiteral("]"); break;
        case Kind::supMark: word = QStringLiteral("^"); break;
        case Kind::subMark: word = QStringLiteral("_"); break;
        case Kind::alignment: word = QStringLiteral("&"); break;
        case Kind::rowBreak: word = QStringLiteral("\\\\"); break;
        case Kind::whitespace: word = QStringLiteral("ws"); break;
        }
        words << word + QLatin1Char('@') + QString::number(token.start);
    }
    return words.join(QLatin1Char(' '));
}

}

TEST(TeXLexer, cutsSourceIntoTokens)
{
    struct Case {
        QString source;
        QString tokens;
    };
    const Case cases[] = {
        {QString(), QString()},
        {QStringLiteral("x^2_i"), QStringLiteral("chr:x@0 ^@1 chr:2@2 _@3 chr:i@4")},
        {QStringLiteral("a \t\n\r b"), QStringLiteral("chr:a@0 ws@1 chr:b@6")},
        {QStringLiteral("{[&]}"), QStringLiteral("{@0 [@1 &@2 ]@3 }@4")},
        // One space after a command name is swallowed, no more.
        {QStringLiteral("\\alpha  b"), QStringLiteral("cmd:alpha@0 ws@7 chr:b@8")},
        {QStringLiteral("\\alpha2"), QStringLiteral("cmd:alpha@0 chr:2@6")},
        {QStringLiteral("\\,\\{\\ x"), QStringLiteral("cmd:,@0 cmd:{@2 cmd: @4 chr:x@6")},
        {QStringLiteral("a\\\\b"), QStringLiteral("chr:a@0 \\\\@1 chr:b@3")},
        // A backslash at the very end gives nothing.
        {QStringLiteral("x\\"), QStringLiteral("chr:x@0")},
    };
    for (const Case& c : cases)
        EXPECT_EQ(dump(c.source), c.tokens) << qPrintable(c.source);
}

TEST(TeXLexer, surrogatesArePairedOrRepaired)
{
    const QString pair = QString::fromUtf16(u"\U0001D538x");
    EXPECT_EQ(dump(pair), QStringLiteral("chr:") + pair.left(2) + QStringLiteral("@0 chr:x@2"));
    const QChar lone[] = {QChar(0xD800), QChar(u'x'), QChar(0xDC00)};
    EXPECT_EQ(dump(QString(lone, 3)), QStringLiteral("chr:\uFFFD@0 chr:x@1 chr:\uFFFD@2"));
    const QChar command[] = {QChar(u'\\'), QChar(0xDC00)};
    EXPECT_EQ(dump(QString(command, 2)), QStringLiteral("cmd:\uFFFD@0"));
}
