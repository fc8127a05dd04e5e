#include "VelmoMath/TeXParser.h"

#include "VelmoMath/TeXSymbolTable.h"

#include <QHash>

// The commands that take arguments or change what follows: fractions, roots, \left…\right,
// environments, fonts, accents, bars, phantoms, styles and spaces. Plain symbols come last,
// from the symbol table; a name known nowhere becomes a `missing` node.

namespace velmo::math {

namespace {

enum class Family : quint8 {
    fraction,
    binomial,
    root,
    left,
    right,
    begin,
    end,
    ignored,
    text,
    font,
    overline,
    underline,
    overbrace,
    underbrace,
    accent,
    phantom,
    styled,
    space,
    braceCharacter,
    big,
};

struct Command {
    Family family;
    quint8 variant = 0; // the fraction style, font role, accent, style: by family
    double em = 0;      // spaces only
};

const QHash<QStringView, Command>& commands()
{
    static const QHash<QStringView, Command> table = [] {
        QHash<QStringView, Command> t;
        t.insert(u"frac", {Family::fraction, quint8(TeXFractionStyle::automatic)});
        t.insert(u"dfrac", {Family::fraction, quint8(TeXFractionStyle::display)});
        t.insert(u"tfrac", {Family::fraction, quint8(TeXFractionStyle::text)});
        for (const char16_t* name : {u"binom", u"dbinom", u"tbinom"})
            t.insert(name, {Family::binomial});
        t.insert(u"sqrt", {Family::root});
        t.insert(u"left", {Family::left});
        t.insert(u"right", {Family::right});
        t.insert(u"begin", {Family::begin});
        t.insert(u"end", {Family::end});
        for (const char16_t* name : {u"limits", u"nolimits", u"not", u"relax", u"mathstrut", u"allowbreak"})
            t.insert(name, {Family::ignored});
        for (const char16_t* name : {u"text", u"textrm", u"textnormal", u"mbox", u"textup", u"operatorname"})
            t.insert(name, {Family::text});
        const std::pair<const char16_t*, TeXFontRole> fonts[] = {
            {u"mathrm", TeXFontRole::roman},          {u"mathbf", TeXFontRole::bold},
            {u"boldsymbol", TeXFontRole::bold},       {u"bm", TeXFontRole::bold},
            {u"mathit", TeXFontRole::italic},         {u"mathnormal", TeXFontRole::italic},
            {u"mathbb", TeXFontRole::blackboard},     {u"mathcal", TeXFontRole::calligraphic},
            {u"mathfrak", TeXFontRole::fraktur},      {u"mathsf", TeXFontRole::sansSerif},
            {u"mathtt", TeXFontRole::monospace},
        };
        for (const auto& [name, role] : fonts)
            t.insert(name, {Family::font, quint8(role)});
        t.insert(u"overline", {Family::overline});
        t.insert(u"underline", {Family::underline});
        t.insert(u"overbrace", {Family::overbrace});
        t.insert(u"underbrace", {Family::underbrace});
        const std::pair<const char16_t*, TeXAccent> accents[] = {
            {u"hat", TeXAccent::hat},     {u"widehat", TeXAccent::hat},     {u"check", TeXAccent::check},
            {u"tilde", TeXAccent::tilde}, {u"widetilde", TeXAccent::tilde}, {u"acute", TeXAccent::acute},
            {u"grave", TeXAccent::grave}, {u"dot", TeXAccent::dot},         {u"ddot", TeXAccent::doubleDot},
            {u"breve", TeXAccent::breve}, {u"bar", TeXAccent::macron},      {u"vec", TeXAccent::vector},
        };
        for (const auto& [name, accent] : accents)
            t.insert(name, {Family::accent, quint8(accent)});
        t.insert(u"phantom", {Family::phantom});
        t.insert(u"hphantom", {Family::phantom});
        t.insert(u"displaystyle", {Family::styled, quint8(TeXStyle::display)});
        t.insert(u"textstyle", {Family::styled, quint8(TeXStyle::text)});
        t.insert(u"scriptstyle", {Family::styled, quint8(TeXStyle::script)});
        t.insert(u"scriptscriptstyle", {Family::styled, quint8(TeXStyle::scriptScript)});
        const std::pair<const char16_t*, double> spaces[] = {
            {u"quad", 1.0},          {u"qquad", 2.0},       {u"enspace", 0.5},     {u"enskip", 0.5},
            {u"thinspace", 1.0 / 6}, {u",", 1.0 / 6},       {u"medspace", 2.0 / 9}, {u":", 2.0 / 9},
            {u"thickspace", 5.0 / 18}, {u";", 5.0 / 18},    {u"!", -1.0 / 6},      {u" ", 0.25},
        };
        for (const auto& [name, em] : spaces)
            t.insert(name, {Family::space, 0, em});
        t.insert(u"{", {Family::braceCharacter});
        t.insert(u"}", {Family::braceCharacter});
        for (const char16_t* name : {u"big", u"Big", u"bigg", u"Bigg", u"bigl", u"Bigl", u"biggl", u"Biggl",
                                     u"bigr", u"Bigr", u"biggr", u"Biggr"})
            t.insert(name, {Family::big});
        return t;
    }();
    return table;
}

const Command* commandNamed(QStringView name)
{
    const auto& table = commands();
    const auto found = table.constFind(name);
    return found == table.constEnd() ? nullptr : &found.value();
}

TeXMatrixKind matrixKind(QStringView name)
{
    struct Row {
        const char16_t* name;
        TeXMatrixKind kind;
    };
    static constexpr Row rows[] = {
        {u"pmatrix", TeXMatrixKind::parenthesized}, {u"matrix", TeXMatrixKind::plain},
        {u"matrix*", TeXMatrixKind::plain},         {u"bmatrix", TeXMatrixKind::bracketed},
        {u"Bmatrix", TeXMatrixKind::braced},        {u"vmatrix", TeXMatrixKind::verticalBar},
        {u"Vmatrix", TeXMatrixKind::doubleBar},     {u"cases", TeXMatrixKind::cases},
        {u"aligned", TeXMatrixKind::aligned},       {u"align", TeXMatrixKind::aligned},
        {u"align*", TeXMatrixKind::aligned},        {u"split", TeXMatrixKind::aligned},
        {u"array", TeXMatrixKind::aligned},         {u"gathered", TeXMatrixKind::gathered},
        {u"gather", TeXMatrixKind::gathered},       {u"gather*", TeXMatrixKind::gathered},
        {u"smallmatrix", TeXMatrixKind::small},
    };
    for (const Row& row : rows) {
        if (name == QStringView(row.name))
            return row.kind;
    }
    return TeXMatrixKind::plain;
}

QString delimiterGlyph(QStringView name)
{
    if (name == u"|")
        return QStringLiteral("\u2016");
    if (TeXSymbolTable::isLiteralDelimiter(name))
        return name.toString();
    if (const TeXSymbolTable::Entry* entry = TeXSymbolTable::lookup(name)) {
        if (const auto* atom = std::get_if<TeXNode::Atom>(entry))
            return atom->text;
        return std::get<TeXNode::LargeOperator>(*entry).text;
    }
    return QString();
}

// A font command sets the role of every atom it reaches; classes are kept.
TeXNode recast(const TeXNode& node, TeXFontRole role)
{
    const auto recastPtr = [role](const TeXNodePtr& child) { return child ? share(recast(*child, role)) : child; };
    if (const auto* row = node.as<TeXNode::Row>()) {
        std::vector<TeXNode> children;
        children.reserve(row->children.size());
        for (const TeXNode& child : row->children)
            children.push_back(recast(child, role));
        return TeXNode::Row{std::move(children)};
    }
    if (const auto* atom = node.as<TeXNode::Atom>())
        return TeXNode::Atom{atom->text, role, atom->atomClass};
    if (const auto* fraction = node.as<TeXNode::Fraction>())
        return TeXNode::Fraction{recastPtr(fraction->numerator), recastPtr(fraction->denominator), fraction->style};
    if (const auto* stack = node.as<TeXNode::Stack>())
        return TeXNode::Stack{recastPtr(stack->upper), recastPtr(stack->lower)};
    if (const auto* scripts = node.as<TeXNode::Scripts>())
        return TeXNode::Scripts{recastPtr(scripts->base), recastPtr(scripts->superscript),
                                recastPtr(scripts->subscriptNode), scripts->limits};
    return node;
}

// Over- and underbraces: the body with a bar, and one brace glyph behind it (not stretched).
TeXNode braced(TeXNode node, bool above)
{
    std::vector<TeXNode> children;
    children.push_back(TeXNode::Bar{share(std::move(node)), above});
    children.push_back(TeXNode::Atom{above ? QStringLiteral("\u23DE") : QStringLiteral("\u23DF"), TeXFontRole::symbol,
                                     TeXAtomClass::ordinary});
    return TeXNode::Row{std::move(children)};
}

}

std::optional<TeXParser::Handled> TeXParser::parseStructural(QStringView name)
{
    const Command* command = commandNamed(name);
    if (!command)
        return std::nullopt;
    switch (command->family) {
    case Family::fraction: {
        TeXNode numerator = parseGroup();
        TeXNode denominator = parseGroup();
        return Handled{TeXNode::Fraction{share(std::move(numerator)), share(std::move(denominator)),
                                         TeXFractionStyle(command->variant)}};
    }
    case Family::binomial: {
        TeXNode upper = parseGroup();
        TeXNode lower = parseGroup();
        return Handled{TeXNode::Delimited{QStringLiteral("("), QStringLiteral(")"),
                                          share(TeXNode::Stack{share(std::move(upper)), share(std::move(lower))})}};
    }
    case Family::root: {
        std::optional<TeXNode> rootIndex = parseOptionalGroup();
        TeXNode body = parseGroup();
        return Handled{TeXNode::Radical{share(std::move(body)), rootIndex ? share(std::move(*rootIndex)) : nullptr}};
    }
    case Family::left:
        return Handled{parseDelimited()};
    case Family::right:
    case Family::ignored:
        return Handled{};
    case Family::begin: {
        const QString environment = rawGroupText();
        if (environment == u"array")
            (void)rawGroupText(); // the column alignments, which layout does not use
        return Handled{parseEnvironmentRows(matrixKind(environment))};
    }
    case Family::end:
        // A stray \end loses the token after it; its name then reads as atoms.
        if (!atEnd())
            ++index;
        return Handled{};
    default:
        return std::nullopt;
    }
}

std::optional<TeXParser::Handled> TeXParser::parseDecoration(QStringView name)
{
    const Command* command = commandNamed(name);
    if (!command)
        return std::nullopt;
    switch (command->family) {
    case Family::text:
        return Handled{TeXNode::Atom{rawGroupText(), TeXFontRole::roman, TeXAtomClass::ordinary}};
    case Family::font:
        return Handled{recast(parseGroup(), TeXFontRole(command->variant))};
    case Family::overline:
    case Family::underline:
        return Handled{TeXNode::Bar{share(parseGroup()), command->family == Family::overline}};
    case Family::overbrace:
    case Family::underbrace:
        return Handled{braced(parseGroup(), command->family == Family::overbrace)};
    case Family::accent:
        return Handled{TeXNode::Accent{share(parseGroup()), TeXAccent(command->variant)}};
    case Family::phantom:
        return Handled{TeXNode::Phantom{share(parseGroup())}};
    case Family::styled:
        return Handled{TeXNode::Styled{share(parseGroup()), TeXStyle(command->variant)}};
    default:
        return std::nullopt;
    }
}

std::optional<TeXParser::Handled> TeXParser::parseSpacing(QStringView name)
{
    const Command* command = commandNamed(name);
    if (!command)
        return std::nullopt;
    switch (command->family) {
    case Family::space:
        return Handled{TeXNode::Spacing{command->em}};
    case Family::braceCharacter:
        return Handled{TeXNode::Atom{name.toString(), TeXFontRole::roman, TeXSymbolTable::atomClass(name)}};
    case Family::big:
        return Handled{bigDelimiter()};
    default:
        return std::nullopt;
    }
}

TeXNode TeXParser::tableNode(QStringView name)
{
    if (const TeXSymbolTable::Entry* entry = TeXSymbolTable::lookup(name)) {
        if (const auto* atom = std::get_if<TeXNode::Atom>(entry))
            return *atom;
        return std::get<TeXNode::LargeOperator>(*entry);
    }
    return TeXNode::Missing{QLatin1Char('\\') + name.toString()};
}

TeXNode TeXParser::parseDelimited()
{
    QString open = parseDelimiter();
    std::vector<TeXNode> body = parseList(Terminator::right);
    skipWhitespace();
    QString close;
    if (!atEnd() && current().isCommand(u"right")) {
        ++index;
        close = parseDelimiter();
    }
    return TeXNode::Delimited{std::move(open), std::move(close), share(TeXNode::Row{std::move(body)})};
}

QString TeXParser::parseDelimiter()
{
    using Kind = TeXToken::Kind;
    skipWhitespace();
    if (atEnd())
        return QString();
    const TeXToken& token = current();
    switch (token.kind) {
    case Kind::command:
        ++index;
        return delimiterGlyph(token.text);
    case Kind::character:
        ++index;
        return token.text.toString();
    // The lexer gives brackets kinds of their own; after \left and \right they are delimiters.
    case Kind::openBracket:
        ++index;
        return QStringLiteral("[");
    case Kind::closeBracket:
        ++index;
        return QStringLiteral("]");
    case Kind::openBrace:
        ++index;
        expectCloseBrace();
        return QString();
    default:
        return QString();
    }
}

TeXNode TeXParser::parseEnvironmentRows(TeXMatrixKind kind)
{
    using Kind = TeXToken::Kind;
    std::vector<std::vector<TeXNode>> rows;
    std::vector<TeXNode> row;
    std::vector<TeXNode> cell;
    const auto closeCell = [&] {
        row.push_back(TeXNode::Row{std::move(cell)});
        cell.clear();
    };
    while (!atEnd()) {
        const TeXToken& token = current();
        if (token.isCommand(u"end")) {
            ++index;
            (void)rawGroupText();
            break;
        }
        if (token.kind == Kind::closeBrace || token.kind == Kind::whitespace) {
            // Spaces between cells are not atoms: "& -1" must keep its minus unary.
            ++index;
            continue;
        }
        if (token.kind == Kind::alignment || token.kind == Kind::rowBreak) {
            ++index;
            closeCell();
            if (token.kind == Kind::rowBreak) {
                rows.push_back(std::move(row));
                row.clear();
            }
            continue;
        }
        const size_t before = index;
        std::optional<TeXNode> atom = parseAtom();
        cell.push_back(atom ? std::move(*atom) : emptyRow());
        if (index == before)
            ++index;
    }
    closeCell();
    rows.push_back(std::move(row));
    return TeXNode::Matrix{kind, std::move(rows)};
}

TeXNode TeXParser::bigDelimiter()
{
    QString text = parseDelimiter();
    if (text.isEmpty())
        return emptyRow();
    const TeXAtomClass atomClass =
        TeXSymbolTable::isClosingDelimiter(text) ? TeXAtomClass::closing : TeXAtomClass::opening;
    return TeXNode::Atom{std::move(text), TeXFontRole::roman, atomClass};
}

}
