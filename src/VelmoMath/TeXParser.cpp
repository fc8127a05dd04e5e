#include "VelmoMath/TeXParser.h"

#include "VelmoMath/TeXLexer.h"
#include "VelmoMath/TeXSymbolTable.h"

// The parser, a recursive descent over the lexer's tokens:
//  1. `parse` reads atoms until the tokens end; a top-level "}" ends the formula there.
//  2. `parseAtom` reads one group, character or command, then the scripts behind it.
//  3. Commands go through four handlers in turn (structural, decoration, spacing, table),
//     which live in TeXParserCommands.cpp.
// Every recursion passes through `parseAtom` or `parseScriptOperand`, which count nesting,
// so `maxNesting` bounds the depth of both the parse and the tree.

namespace velmo::math {

struct NestingGuard {
    explicit NestingGuard(int& depth) : depth(depth) { ++depth; }
    ~NestingGuard() { --depth; }
    NestingGuard(const NestingGuard&) = delete;
    NestingGuard& operator=(const NestingGuard&) = delete;
    int& depth;
};

TeXParser::TeXParser(QStringView source, TeXStyle style) : units(source), tokens(TeXLexer::run(source)), style(style)
{
}

TeXNode TeXParser::parse(QStringView source, TeXStyle style)
{
    TeXParser parser(source, style);
    std::vector<TeXNode> children;
    while (!parser.atEnd()) {
        if (parser.current().kind == TeXToken::Kind::closeBrace)
            break;
        if (auto atom = parser.parseAtom())
            children.push_back(std::move(*atom));
    }
    return TeXNode::Row{std::move(children)};
}

void TeXParser::skipWhitespace()
{
    while (currentIs(TeXToken::Kind::whitespace))
        ++index;
}

TeXNode TeXParser::skipTooDeep()
{
    // Skip the whole group at once so the content is not re-read one level up.
    if (current().kind == TeXToken::Kind::openBrace) {
        int level = 0;
        for (; index < tokens.size(); ++index) {
            if (tokens[index].kind == TeXToken::Kind::openBrace)
                ++level;
            else if (tokens[index].kind == TeXToken::Kind::closeBrace && --level == 0)
                break;
        }
    }
    if (index < tokens.size())
        ++index;
    return TeXNode::Missing{QStringLiteral("…")};
}

std::optional<TeXNode> TeXParser::parseAtom()
{
    using Kind = TeXToken::Kind;
    if (atEnd())
        return std::nullopt;
    NestingGuard guard(depth);
    if (depth > maxNesting) {
        const Kind kind = current().kind;
        TeXNode placeholder = skipTooDeep();
        if (kind == Kind::openBrace || kind == Kind::character || kind == Kind::command)
            return placeholder;
        return std::nullopt;
    }
    const TeXToken token = current();
    ++index;
    switch (token.kind) {
    case Kind::openBrace: {
        std::vector<TeXNode> list = parseList(Terminator::none);
        expectCloseBrace();
        return attachScripts(TeXNode::Row{std::move(list)});
    }
    case Kind::openBracket: {
        std::vector<TeXNode> list = parseList(Terminator::none);
        expectCloseBracket();
        return attachScripts(TeXNode::Row{std::move(list)});
    }
    case Kind::character:
        return attachScripts(TeXNode::Atom{TeXSymbolTable::mathGlyph(token.text), TeXFontRole::italic,
                                           TeXSymbolTable::atomClass(token.text)});
    case Kind::command: {
        std::optional<Handled> handled = parseCommand(token.text);
        if (handled && handled->node)
            return attachScripts(std::move(*handled->node));
        return std::nullopt;
    }
    default:
        return std::nullopt;
    }
}

std::vector<TeXNode> TeXParser::parseList(Terminator terminator)
{
    std::vector<TeXNode> list;
    while (!atEnd()) {
        const TeXToken& token = current();
        if (token.kind == TeXToken::Kind::closeBrace)
            break;
        if (terminator == Terminator::closeBracket && token.kind == TeXToken::Kind::closeBracket)
            break;
        if (terminator == Terminator::right && token.isCommand(u"right"))
            break;
        if (auto atom = parseAtom())
            list.push_back(std::move(*atom));
    }
    return list;
}

void TeXParser::expectCloseBrace()
{
    skipWhitespace();
    if (currentIs(TeXToken::Kind::closeBrace))
        ++index;
}

void TeXParser::expectCloseBracket()
{
    skipWhitespace();
    if (currentIs(TeXToken::Kind::closeBracket))
        ++index;
}

TeXNode TeXParser::parseGroup()
{
    skipWhitespace();
    if (atEnd())
        return emptyRow();
    if (current().kind == TeXToken::Kind::openBrace) {
        ++index;
        std::vector<TeXNode> list = parseList(Terminator::none);
        expectCloseBrace();
        return TeXNode::Row{std::move(list)};
    }
    std::optional<TeXNode> atom = parseAtom();
    return atom ? std::move(*atom) : emptyRow();
}

std::optional<TeXNode> TeXParser::parseOptionalGroup()
{
    size_t ahead = index;
    while (ahead < tokens.size() && tokens[ahead].kind == TeXToken::Kind::whitespace)
        ++ahead;
    if (ahead >= tokens.size() || tokens[ahead].kind != TeXToken::Kind::openBracket)
        return std::nullopt;
    index = ahead + 1;
    std::vector<TeXNode> list = parseList(Terminator::closeBracket);
    expectCloseBracket();
    return TeXNode::Row{std::move(list)};
}

QString TeXParser::rawGroupText()
{
    skipWhitespace();
    if (!currentIs(TeXToken::Kind::openBrace))
        return QString();
    const size_t open = index;
    int level = 0;
    for (size_t i = open; i < tokens.size(); ++i) {
        if (tokens[i].kind == TeXToken::Kind::openBrace) {
            ++level;
        } else if (tokens[i].kind == TeXToken::Kind::closeBrace && --level == 0) {
            index = i + 1;
            const qsizetype start = tokens[open].start + 1;
            return units.sliced(start, tokens[i].start - start).toString();
        }
    }
    index = tokens.size();
    return QString();
}

TeXNode TeXParser::attachScripts(TeXNode base)
{
    using Kind = TeXToken::Kind;
    const auto* op = base.as<TeXNode::LargeOperator>();
    bool limits = op && op->takesLimits && style == TeXStyle::display;
    TeXNodePtr superscript;
    TeXNodePtr subscript;
    while (!atEnd()) {
        const TeXToken& token = current();
        if (token.kind == Kind::supMark) {
            ++index;
            superscript = share(parseScriptOperand());
        } else if (token.kind == Kind::subMark) {
            ++index;
            subscript = share(parseScriptOperand());
        } else if (token.isCommand(u"limits")) {
            ++index;
            limits = true;
        } else if (token.isCommand(u"nolimits")) {
            ++index;
            limits = false;
        } else {
            // A space ends the scripts: "x ^2" is two atoms.
            if (token.kind == Kind::whitespace)
                ++index;
            break;
        }
    }
    if (!superscript && !subscript)
        return base;
    return TeXNode::Scripts{share(std::move(base)), std::move(superscript), std::move(subscript), limits};
}

TeXNode TeXParser::parseScriptOperand()
{
    using Kind = TeXToken::Kind;
    NestingGuard guard(depth);
    skipWhitespace();
    if (atEnd())
        return emptyRow();
    if (depth > maxNesting)
        return skipTooDeep();
    const TeXToken token = current();
    ++index;
    switch (token.kind) {
    case Kind::openBrace: {
        std::vector<TeXNode> list = parseList(Terminator::none);
        expectCloseBrace();
        return TeXNode::Row{std::move(list)};
    }
    case Kind::character:
        return TeXNode::Atom{TeXSymbolTable::mathGlyph(token.text), TeXFontRole::italic,
                             TeXSymbolTable::atomClass(token.text)};
    case Kind::command: {
        std::optional<Handled> handled = parseCommand(token.text);
        if (handled && handled->node)
            return std::move(*handled->node);
        return emptyRow();
    }
    default:
        return emptyRow();
    }
}

std::optional<TeXParser::Handled> TeXParser::parseCommand(QStringView name)
{
    if (auto handled = parseStructural(name))
        return handled;
    if (auto handled = parseDecoration(name))
        return handled;
    if (auto handled = parseSpacing(name))
        return handled;
    return Handled{tableNode(name)};
}

}
