#include "VelmoMath/TeXNode.h"

#include <QStringList>

namespace velmo::math {

namespace {

template <class... Ts>
struct Overloaded : Ts... {
    using Ts::operator()...;
};
template <class... Ts>
Overloaded(Ts...) -> Overloaded<Ts...>;

QString dumpOf(const TeXNodePtr& node)
{
    return node ? node->dump() : QStringLiteral("-");
}

const char* accentName(TeXAccent accent)
{
    static const char* const names[] = {"hat", "check", "tilde", "acute", "grave",
                                        "dot", "ddot", "breve", "bar", "vec"};
    return names[int(accent)];
}

const char* matrixName(TeXMatrixKind kind)
{
    static const char* const names[] = {"matrix", "pmatrix", "bmatrix", "Bmatrix", "vmatrix",
                                        "Vmatrix", "cases", "aligned", "gathered", "smallmatrix"};
    return names[int(kind)];
}

const char* styleName(TeXStyle style)
{
    static const char* const names[] = {"display", "text", "script", "scriptscript"};
    return names[int(style)];
}

QString dumpRow(const std::vector<TeXNode>& children)
{
    QStringList parts;
    for (const TeXNode& child : children)
        parts << child.dump();
    return QLatin1Char('[') + parts.join(QLatin1Char(' ')) + QLatin1Char(']');
}

}

TeXAtomClass TeXNode::atomClass() const
{
    return std::visit(Overloaded{
                          [](const Atom& atom) { return atom.atomClass; },
                          [](const LargeOperator&) { return TeXAtomClass::largeOperator; },
                          // TeX treats generalised fractions and \left…\right groups as inner.
                          [](const Fraction&) { return TeXAtomClass::inner; },
                          [](const Delimited&) { return TeXAtomClass::inner; },
                          [](const Scripts& scripts) {
                              return scripts.base ? scripts.base->atomClass() : TeXAtomClass::ordinary;
                          },
                          [](const Matrix& matrix) {
                              switch (matrix.kind) {
                              case TeXMatrixKind::plain:
                              case TeXMatrixKind::aligned:
                              case TeXMatrixKind::gathered:
                              case TeXMatrixKind::small: return TeXAtomClass::ordinary;
                              default: return TeXAtomClass::inner;
                              }
                          },
                          [](const auto&) { return TeXAtomClass::ordinary; },
                      },
                      value);
}

QString TeXNode::dump() const
{
    return std::visit(
        Overloaded{
            [](const Row& row) { return dumpRow(row.children); },
            [](const Atom& atom) { return atom.text; },
            [](const LargeOperator& op) {
                return QStringLiteral("op(%1%2)").arg(op.text, op.takesLimits ? QStringLiteral(",limits") : QString());
            },
            [](const Fraction& f) {
                static const char* const names[] = {"frac", "dfrac", "tfrac"};
                return QStringLiteral("%1(%2,%3)")
                    .arg(QLatin1String(names[int(f.style)]), dumpOf(f.numerator), dumpOf(f.denominator));
            },
            [](const Stack& s) { return QStringLiteral("stack(%1,%2)").arg(dumpOf(s.upper), dumpOf(s.lower)); },
            [](const Radical& r) {
                return r.index ? QStringLiteral("sqrt[%1](%2)").arg(dumpOf(r.index), dumpOf(r.body))
                               : QStringLiteral("sqrt(%1)").arg(dumpOf(r.body));
            },
            [](const Scripts& s) {
                QString text = dumpOf(s.base);
                if (s.superscript)
                    text += QStringLiteral("^{%1}").arg(s.superscript->dump());
                if (s.subscriptNode)
                    text += QStringLiteral("_{%1}").arg(s.subscriptNode->dump());
                return s.limits ? QStringLiteral("limits(%1)").arg(text) : text;
            },
            [](const Delimited& d) {
                return QStringLiteral("left%1 %2 right%3")
                    .arg(d.open.isEmpty() ? QStringLiteral(".") : d.open, dumpOf(d.body),
                         d.close.isEmpty() ? QStringLiteral(".") : d.close);
            },
            [](const Accent& a) { return QStringLiteral("%1(%2)").arg(QLatin1String(accentName(a.accent)), dumpOf(a.node)); },
            [](const Bar& b) {
                return QStringLiteral("%1(%2)").arg(b.above ? QStringLiteral("overline") : QStringLiteral("underline"),
                                                    dumpOf(b.node));
            },
            [](const Styled& s) { return QStringLiteral("%1(%2)").arg(QLatin1String(styleName(s.style)), dumpOf(s.node)); },
            [](const Matrix& m) {
                QStringList rows;
                for (const auto& row : m.rows) {
                    QStringList cells;
                    for (const TeXNode& cell : row)
                        cells << cell.dump();
                    rows << cells.join(QLatin1Char('&'));
                }
                return QStringLiteral("%1{%2}").arg(QLatin1String(matrixName(m.kind)), rows.join(QStringLiteral("\\\\")));
            },
            [](const Spacing& s) { return QStringLiteral("space(%1)").arg(s.em, 0, 'g', 3); },
            [](const Phantom& p) { return QStringLiteral("phantom(%1)").arg(dumpOf(p.node)); },
            [](const Missing& m) { return QStringLiteral("missing(%1)").arg(m.text); },
        },
        value);
}

}
