#include "MarkdownEngine/Editing/MarkdownEditingCommands.h"

#include <QElapsedTimer>
#include <functional>
#include <gtest/gtest.h>

using namespace velmo::markdown;
using Commands = MarkdownEditingCommands;

// Inputs built to make a careless scan quadratic. A benchmark would not notice a hang here, so
// each must finish under a generous bound.
TEST(MarkdownEditingHostileInput, finishesInLinearTime)
{
    struct Case {
        const char* name;
        QString text;
        std::function<void(const QString&)> run;
    };
    const auto whole = [](const QString& t) { return MarkdownSourceRange{0, int(t.size())}; };
    const Case cases[] = {
        {"unclosed colour spans on one line", QString(QStringLiteral("<span style=\"color:red\">a")).repeated(40000),
         [&](const QString& t) { (void)Commands::textColor(t, whole(t), std::nullopt); }},
        {"footnote openers without a closer", QStringLiteral("[^").repeated(200000),
         [&](const QString& t) { (void)Commands::renumberFootnotes(t, whole(t)); (void)Commands::footnote(t, {0, 0}); }},
        {"a very tall table", QStringLiteral("| a |\n| - |\n") + QStringLiteral("| x |\n").repeated(30000),
         [&](const QString& t) { (void)Commands::tidyTable(t, {int(t.size()) - 2, 0}); }},
        {"many list lines", QStringLiteral("1. a\n").repeated(50000),
         [&](const QString& t) { (void)Commands::orderedList(t, whole(t)); (void)Commands::newline(t, {4, 0}); }},
        {"one line of delimiters", QStringLiteral("*_`$").repeated(100000),
         [&](const QString& t) { (void)Commands::clearFormatting(t, {0, 0}); }},
    };
    for (const Case& c : cases) {
        QElapsedTimer timer;
        timer.start();
        c.run(c.text);
        EXPECT_LT(timer.elapsed(), 5000) << c.name;
    }
}
