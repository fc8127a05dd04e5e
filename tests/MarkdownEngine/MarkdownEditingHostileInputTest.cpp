#include "MarkdownEngine/Editing/MarkdownEditingCommands.h"

#include <QElapsedTimer>
#include <functional>
#include <gtest/gtest.h>

using namespace velmo::markdown;
using Commands = MarkdownEditingCommands;

// Inputs built to make a careless scan quadratic. Four times the input must cost about four
// times as much, not sixteen: a ratio holds on slow and sanitized builds alike.
TEST(MarkdownEditingHostileInput, costGrowsLinearly)
{
    const auto whole = [](const QString& t) { return MarkdownSourceRange{0, int(t.size())}; };
    struct Case {
        const char* name;
        int repeats;
        std::function<QString(int)> text;
        std::function<void(const QString&)> run;
    };
    const Case cases[] = {
        {"unclosed colour spans on one line", 5000,
         [](int n) { return QStringLiteral("<span style=\"color:red\">a").repeated(n); },
         [&](const QString& t) { (void)Commands::textColor(t, whole(t), std::nullopt); }},
        {"footnote openers without a closer", 20000, [](int n) { return QStringLiteral("[^").repeated(n); },
         [&](const QString& t) {
             (void)Commands::renumberFootnotes(t, whole(t));
             (void)Commands::footnote(t, {0, 0});
         }},
        {"a tall table", 5000,
         [](int n) { return QStringLiteral("| a |\n| - |\n") + QStringLiteral("| x |\n").repeated(n); },
         [&](const QString& t) { (void)Commands::tidyTable(t, {int(t.size()) - 2, 0}); }},
        {"many ordered items", 10000, [](int n) { return QStringLiteral("1. a\n").repeated(n); },
         [&](const QString& t) {
             (void)Commands::orderedList(t, whole(t));
             (void)Commands::newline(t, {4, 0});
         }},
        {"one line of delimiters", 20000, [](int n) { return QStringLiteral("*_`$").repeated(n); },
         [&](const QString& t) { (void)Commands::clearFormatting(t, {0, 0}); }},
    };
    for (const Case& c : cases) {
        const auto cost = [&](int repeats) {
            const QString text = c.text(repeats);
            QElapsedTimer timer;
            timer.start();
            c.run(text);
            return timer.nsecsElapsed();
        };
        const qint64 small = cost(c.repeats);
        const qint64 large = cost(4 * c.repeats);
        EXPECT_LT(large, 10 * small + 50'000'000) << c.name << ": " << small << " ns, then " << large << " ns";
    }
}
