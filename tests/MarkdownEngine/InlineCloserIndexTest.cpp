#include "MarkdownEngine/Parser/InlineCloserIndex.h"

#include <gtest/gtest.h>

#include <QRandomGenerator>
#include <QString>

using namespace velmo::markdown;

// The tables must answer exactly as the direct scans do, for the whole range and for
// subranges that end anywhere.
TEST(InlineCloserIndex, tablesAnswerAsDirectScans)
{
    QRandomGenerator random(7);
    const QString alphabet = QStringLiteral("[]()\\\n`$~=a");
    for (int round = 0; round < 300; ++round) {
        QString text;
        const int length = 1 + int(random.bounded(40));
        for (int i = 0; i < length; ++i)
            text += alphabet[int(random.bounded(alphabet.size()))];
        for (int end = 1; end <= length; ++end) {
            const MarkdownSourceRange range{0, length};
            InlineCloserIndex direct(text, range, std::numeric_limits<qint64>::max());
            InlineCloserIndex tables(text, range, 0);
            for (int p = 0; p < end; ++p) {
                const QString where = text.toHtmlEscaped() + QStringLiteral(" at %1 to %2").arg(p).arg(end);
                if (text[p] == u'[') {
                    EXPECT_EQ(direct.matchingBracket(p, end), tables.matchingBracket(p, end)) << where.toStdString();
                }
                if (text[p] == u'(') {
                    EXPECT_EQ(direct.matchingParen(p, end), tables.matchingParen(p, end)) << where.toStdString();
                }
                // Closing runs are sought from the end of an opening run, never from inside one.
                for (int runLength = 1; runLength <= 3 && text[p] != u'`'; ++runLength) {
                    EXPECT_EQ(direct.backtickRun(p, runLength, end), tables.backtickRun(p, runLength, end))
                        << where.toStdString();
                }
                EXPECT_EQ(direct.dollar(p, end), tables.dollar(p, end)) << where.toStdString();
                EXPECT_EQ(direct.lineFeed(p, end), tables.lineFeed(p, end)) << where.toStdString();
                for (char16_t unit : {u'$', u'~', u'='})
                    EXPECT_EQ(direct.doubled(unit, p, end), tables.doubled(unit, p, end)) << where.toStdString();
            }
        }
    }
}
