#pragma once

#include <QString>
#include <memory>
#include <type_traits>
#include <variant>
#include <vector>

namespace velmo::math {

enum class TeXFontRole : quint8 {
    italic,
    roman,
    bold,
    boldItalic,
    blackboard,
    calligraphic,
    fraktur,
    sansSerif,
    monospace,
    symbol,
};

// The classes that decide the space between neighbours in a row.
enum class TeXAtomClass : quint8 {
    ordinary,
    binary,
    relation,
    opening,
    closing,
    punctuation,
    largeOperator,
    inner,
};

enum class TeXStyle : quint8 { display, text, script, scriptScript };

enum class TeXFractionStyle : quint8 { automatic, display, text };

enum class TeXAccent : quint8 { hat, check, tilde, acute, grave, dot, doubleDot, breve, macron, vector };

enum class TeXMatrixKind : quint8 {
    plain,
    parenthesized,
    bracketed,
    braced,
    verticalBar,
    doubleBar,
    cases,
    aligned,
    gathered,
    small,
};

class TeXNode;
// Single children are shared and immutable: a parsed tree is never edited in place.
using TeXNodePtr = std::shared_ptr<const TeXNode>;

// The parsed formula: a tree whose depth the parser bounds, so walking it recursively is safe.
class TeXNode {
public:
    struct Row {
        std::vector<TeXNode> children;
    };
    struct Atom {
        QString text;
        TeXFontRole role = TeXFontRole::italic;
        TeXAtomClass atomClass = TeXAtomClass::ordinary;
    };
    struct LargeOperator {
        QString text;
        bool takesLimits = false;
    };
    struct Fraction {
        TeXNodePtr numerator;
        TeXNodePtr denominator;
        TeXFractionStyle style = TeXFractionStyle::automatic;
    };
    struct Stack {
        TeXNodePtr upper;
        TeXNodePtr lower;
    };
    struct Radical {
        TeXNodePtr body;
        TeXNodePtr index; // may be null
    };
    struct Scripts {
        TeXNodePtr base;
        TeXNodePtr superscript;   // may be null
        TeXNodePtr subscriptNode; // may be null
        bool limits = false;
    };
    struct Delimited {
        QString open; // empty: no delimiter on that side
        QString close;
        TeXNodePtr body;
    };
    struct Accent {
        TeXNodePtr node;
        TeXAccent accent = TeXAccent::hat;
    };
    struct Bar {
        TeXNodePtr node;
        bool above = true;
    };
    struct Styled {
        TeXNodePtr node;
        TeXStyle style = TeXStyle::text;
    };
    struct Matrix {
        TeXMatrixKind kind = TeXMatrixKind::plain;
        std::vector<std::vector<TeXNode>> rows; // rows of cells
    };
    struct Spacing {
        double em = 0;
    };
    struct Phantom {
        TeXNodePtr node;
    };
    struct Missing {
        QString text;
    };

    using Value = std::variant<Row, Atom, LargeOperator, Fraction, Stack, Radical, Scripts, Delimited, Accent,
                               Bar, Styled, Matrix, Spacing, Phantom, Missing>;

    // Any case converts to a node; nothing else does.
    template <typename Case>
        requires std::is_constructible_v<Value, Case&&>
    TeXNode(Case value) : value(std::move(value)) {}

    template <typename Case>
    [[nodiscard]] const Case* as() const { return std::get_if<Case>(&value); }

    // The class this node has as a child of a row.
    [[nodiscard]] TeXAtomClass atomClass() const;
    // A compact one-line form for tests and traces: "[x^{2} + 1]", "frac(a,b)", "missing(\\foo)".
    [[nodiscard]] QString dump() const;

    Value value;
};

[[nodiscard]] inline TeXNodePtr share(TeXNode node)
{
    return std::make_shared<const TeXNode>(std::move(node));
}

[[nodiscard]] inline TeXNode emptyRow()
{
    return TeXNode::Row{};
}

}
