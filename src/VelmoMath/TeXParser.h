#pragma once

#include "VelmoMath/TeXNode.h"
#include "VelmoMath/TeXToken.h"

#include <QStringView>
#include <optional>
#include <vector>

namespace velmo::math {

// Turns a formula's source into a tree of TeXNode. Never fails: unknown commands become
// `missing` nodes, stray closers and script marks are skipped, unclosed groups close at the end.
class TeXParser {
public:
    // Always a `row`. `style` is the style the formula starts in: it decides whether large
    // operators take their limits above and below.
    [[nodiscard]] static TeXNode parse(QStringView source, TeXStyle style = TeXStyle::text);

    // Groups nested deeper than this read as a "…" placeholder. It keeps parsing, layout and
    // drawing (all recursive over the tree) within a small, fixed stack on hostile input;
    // no formula a writer types comes near it.
    static constexpr int maxNesting = 64;

private:
    enum class Terminator { none, closeBracket, right };
    // A command handler either declines the command (nullopt) or handles it, giving a node or nothing.
    struct Handled {
        std::optional<TeXNode> node;
    };

    TeXParser(QStringView source, TeXStyle style);

    [[nodiscard]] bool atEnd() const { return index >= tokens.size(); }
    [[nodiscard]] const TeXToken& current() const { return tokens[index]; }
    [[nodiscard]] bool currentIs(TeXToken::Kind kind) const { return !atEnd() && current().kind == kind; }
    void skipWhitespace();

    std::optional<TeXNode> parseAtom();
    std::vector<TeXNode> parseList(Terminator terminator);
    void expectCloseBrace();
    void expectCloseBracket();
    TeXNode parseGroup();
    std::optional<TeXNode> parseOptionalGroup();
    QString rawGroupText();
    TeXNode attachScripts(TeXNode base);
    TeXNode parseScriptOperand();
    std::optional<Handled> parseCommand(QStringView name);
    TeXNode skipTooDeep();

    // The command handlers, in the order they are asked.
    std::optional<Handled> parseStructural(QStringView name);
    std::optional<Handled> parseDecoration(QStringView name);
    std::optional<Handled> parseSpacing(QStringView name);
    TeXNode tableNode(QStringView name);

    TeXNode parseDelimited();
    QString parseDelimiter();
    TeXNode parseEnvironmentRows(TeXMatrixKind kind);
    TeXNode bigDelimiter();

    QStringView units;
    std::vector<TeXToken> tokens;
    size_t index = 0;
    TeXStyle style;
    int depth = 0;

    friend struct NestingGuard;
};

}
