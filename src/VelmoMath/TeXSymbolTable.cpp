#include "VelmoMath/TeXSymbolTable.h"

#include <array>

namespace velmo::math {

namespace {

using Class = TeXAtomClass;
using Role = TeXFontRole;

struct AtomRow {
    const char16_t* name;
    const char16_t* text;
};

struct OperatorRow {
    const char16_t* name;
    const char16_t* text;
    bool takesLimits;
};

// Lower-case Greek is italic like Latin letters; upper case stands upright, as in TeX.
constexpr AtomRow greekLower[] = {
    {u"alpha", u"α"},   {u"beta", u"β"},     {u"gamma", u"γ"},      {u"delta", u"δ"},    {u"epsilon", u"ϵ"},
    {u"varepsilon", u"ε"}, {u"zeta", u"ζ"},  {u"eta", u"η"},        {u"theta", u"θ"},    {u"vartheta", u"ϑ"},
    {u"iota", u"ι"},    {u"kappa", u"κ"},    {u"varkappa", u"ϰ"},   {u"lambda", u"λ"},   {u"mu", u"μ"},
    {u"nu", u"ν"},      {u"xi", u"ξ"},       {u"omicron", u"ο"},    {u"pi", u"π"},       {u"varpi", u"ϖ"},
    {u"rho", u"ρ"},     {u"varrho", u"ϱ"},   {u"sigma", u"σ"},      {u"varsigma", u"ς"}, {u"tau", u"τ"},
    {u"upsilon", u"υ"}, {u"phi", u"ϕ"},      {u"varphi", u"φ"},     {u"chi", u"χ"},      {u"psi", u"ψ"},
    {u"omega", u"ω"},   {u"digamma", u"ϝ"},
};

constexpr AtomRow greekUpper[] = {
    {u"Gamma", u"Γ"}, {u"Delta", u"Δ"},   {u"Theta", u"Θ"}, {u"Lambda", u"Λ"}, {u"Xi", u"Ξ"},
    {u"Pi", u"Π"},    {u"Sigma", u"Σ"},   {u"Upsilon", u"Υ"}, {u"Phi", u"Φ"},  {u"Psi", u"Ψ"},
    {u"Omega", u"Ω"},
};

constexpr AtomRow binaryOperators[] = {
    {u"pm", u"±"},          {u"mp", u"∓"},          {u"times", u"×"},         {u"div", u"÷"},
    {u"cdot", u"⋅"},        {u"centerdot", u"⋅"},   {u"ast", u"∗"},           {u"star", u"⋆"},
    {u"circ", u"∘"},        {u"bullet", u"∙"},      {u"oplus", u"⊕"},         {u"ominus", u"⊖"},
    {u"otimes", u"⊗"},      {u"oslash", u"⊘"},      {u"odot", u"⊙"},          {u"cap", u"∩"},
    {u"cup", u"∪"},         {u"sqcap", u"⊓"},       {u"sqcup", u"⊔"},         {u"wedge", u"∧"},
    {u"land", u"∧"},        {u"vee", u"∨"},         {u"lor", u"∨"},           {u"setminus", u"∖"},
    {u"smallsetminus", u"∖"}, {u"uplus", u"⊎"},     {u"amalg", u"⨿"},         {u"bigcirc", u"◯"},
    {u"dagger", u"†"},      {u"ddagger", u"‡"},     {u"wr", u"≀"},            {u"diamond", u"⋄"},
    {u"triangleleft", u"◁"}, {u"triangleright", u"▷"}, {u"bigtriangleup", u"△"}, {u"bigtriangledown", u"▽"},
    {u"lhd", u"⊲"},         {u"rhd", u"⊳"},         {u"unlhd", u"⊴"},         {u"unrhd", u"⊵"},
    {u"ltimes", u"⋉"},      {u"rtimes", u"⋊"},      {u"boxplus", u"⊞"},       {u"boxminus", u"⊟"},
    {u"boxtimes", u"⊠"},    {u"boxdot", u"⊡"},      {u"dotplus", u"∔"},       {u"intercal", u"⊺"},
    {u"barwedge", u"⊼"},    {u"veebar", u"⊻"},      {u"curlywedge", u"⋏"},    {u"curlyvee", u"⋎"},
    {u"divideontimes", u"⋇"},
};

constexpr AtomRow relations[] = {
    {u"leq", u"≤"},       {u"le", u"≤"},         {u"geq", u"≥"},        {u"ge", u"≥"},
    {u"neq", u"≠"},       {u"ne", u"≠"},         {u"equiv", u"≡"},      {u"approx", u"≈"},
    {u"approxeq", u"≊"},  {u"sim", u"∼"},        {u"simeq", u"≃"},      {u"cong", u"≅"},
    {u"propto", u"∝"},    {u"ll", u"≪"},         {u"gg", u"≫"},         {u"subset", u"⊂"},
    {u"supset", u"⊃"},    {u"subseteq", u"⊆"},   {u"supseteq", u"⊇"},   {u"subsetneq", u"⊊"},
    {u"supsetneq", u"⊋"}, {u"sqsubset", u"⊏"},   {u"sqsupset", u"⊐"},   {u"sqsubseteq", u"⊑"},
    {u"sqsupseteq", u"⊒"}, {u"in", u"∈"},        {u"ni", u"∋"},         {u"owns", u"∋"},
    {u"notin", u"∉"},     {u"perp", u"⊥"},       {u"parallel", u"∥"},   {u"nparallel", u"∦"},
    {u"mid", u"∣"},       {u"nmid", u"∤"},       {u"vdash", u"⊢"},      {u"dashv", u"⊣"},
    {u"models", u"⊨"},    {u"vDash", u"⊨"},      {u"asymp", u"≍"},      {u"doteq", u"≐"},
    {u"prec", u"≺"},      {u"succ", u"≻"},       {u"preceq", u"⪯"},     {u"succeq", u"⪰"},
    {u"bowtie", u"⋈"},    {u"smile", u"⌣"},      {u"frown", u"⌢"},      {u"lesssim", u"≲"},
    {u"gtrsim", u"≳"},    {u"leqslant", u"⩽"},   {u"geqslant", u"⩾"},   {u"coloneqq", u"≔"},
    {u"triangleq", u"≜"}, {u"nless", u"≮"},      {u"ngtr", u"≯"},       {u"nleq", u"≰"},
    {u"ngeq", u"≱"},      {u"nsim", u"≁"},       {u"ncong", u"≇"},      {u"nequiv", u"≢"},
    {u"thicksim", u"∼"},  {u"lt", u"<"},         {u"gt", u">"},
};

constexpr AtomRow arrows[] = {
    {u"to", u"→"},                {u"rightarrow", u"→"},        {u"leftarrow", u"←"},
    {u"gets", u"←"},              {u"leftrightarrow", u"↔"},    {u"Rightarrow", u"⇒"},
    {u"Leftarrow", u"⇐"},         {u"Leftrightarrow", u"⇔"},    {u"implies", u"⟹"},
    {u"impliedby", u"⟸"},         {u"iff", u"⟺"},               {u"longrightarrow", u"⟶"},
    {u"longleftarrow", u"⟵"},     {u"longleftrightarrow", u"⟷"}, {u"Longrightarrow", u"⟹"},
    {u"Longleftarrow", u"⟸"},     {u"Longleftrightarrow", u"⟺"}, {u"mapsto", u"↦"},
    {u"longmapsto", u"⟼"},        {u"uparrow", u"↑"},           {u"downarrow", u"↓"},
    {u"updownarrow", u"↕"},       {u"Uparrow", u"⇑"},           {u"Downarrow", u"⇓"},
    {u"Updownarrow", u"⇕"},       {u"nearrow", u"↗"},           {u"searrow", u"↘"},
    {u"swarrow", u"↙"},           {u"nwarrow", u"↖"},           {u"hookrightarrow", u"↪"},
    {u"hookleftarrow", u"↩"},     {u"rightharpoonup", u"⇀"},    {u"rightharpoondown", u"⇁"},
    {u"leftharpoonup", u"↼"},     {u"leftharpoondown", u"↽"},   {u"rightleftharpoons", u"⇌"},
    {u"leftrightarrows", u"⇆"},   {u"rightleftarrows", u"⇄"},   {u"twoheadrightarrow", u"↠"},
    {u"rightsquigarrow", u"⇝"},   {u"leadsto", u"⇝"},           {u"circlearrowleft", u"↺"},
    {u"circlearrowright", u"↻"},  {u"nrightarrow", u"↛"},       {u"nleftarrow", u"↚"},
    {u"nRightarrow", u"⇏"},       {u"nLeftarrow", u"⇍"},        {u"leftleftarrows", u"⇇"},
    {u"rightrightarrows", u"⇉"},
};

struct DelimiterRow {
    const char16_t* name;
    const char16_t* text;
    Class atomClass;
};

constexpr DelimiterRow delimiters[] = {
    {u"lbrace", u"{", Class::opening},   {u"rbrace", u"}", Class::closing},
    {u"lbrack", u"[", Class::opening},   {u"rbrack", u"]", Class::closing},
    {u"langle", u"⟨", Class::opening},   {u"rangle", u"⟩", Class::closing},
    {u"lceil", u"⌈", Class::opening},    {u"rceil", u"⌉", Class::closing},
    {u"lfloor", u"⌊", Class::opening},   {u"rfloor", u"⌋", Class::closing},
    {u"lgroup", u"⟮", Class::opening},   {u"rgroup", u"⟯", Class::closing},
    {u"lmoustache", u"⎰", Class::opening}, {u"rmoustache", u"⎱", Class::closing},
    {u"ulcorner", u"⌜", Class::opening}, {u"urcorner", u"⌝", Class::closing},
    {u"llcorner", u"⌞", Class::opening}, {u"lrcorner", u"⌟", Class::closing},
    {u"lvert", u"|", Class::opening},    {u"rvert", u"|", Class::closing},
    {u"lVert", u"‖", Class::opening},    {u"rVert", u"‖", Class::closing},
    {u"vert", u"|", Class::ordinary},    {u"Vert", u"‖", Class::ordinary},
    {u"|", u"‖", Class::ordinary},       {u"backslash", u"\\", Class::ordinary},
};

constexpr AtomRow misc[] = {
    {u"infty", u"∞"},      {u"partial", u"∂"},    {u"nabla", u"∇"},        {u"forall", u"∀"},
    {u"exists", u"∃"},     {u"nexists", u"∄"},    {u"emptyset", u"∅"},     {u"varnothing", u"∅"},
    {u"neg", u"¬"},        {u"lnot", u"¬"},       {u"angle", u"∠"},        {u"measuredangle", u"∡"},
    {u"triangle", u"△"},   {u"hbar", u"ℏ"},       {u"hslash", u"ℏ"},       {u"ell", u"ℓ"},
    {u"wp", u"℘"},         {u"Re", u"ℜ"},         {u"Im", u"ℑ"},           {u"aleph", u"ℵ"},
    {u"beth", u"ℶ"},       {u"gimel", u"ℷ"},      {u"prime", u"′"},        {u"backprime", u"‵"},
    {u"top", u"⊤"},        {u"bot", u"⊥"},        {u"surd", u"√"},         {u"flat", u"♭"},
    {u"natural", u"♮"},    {u"sharp", u"♯"},      {u"clubsuit", u"♣"},     {u"diamondsuit", u"♢"},
    {u"heartsuit", u"♡"},  {u"spadesuit", u"♠"},  {u"ldots", u"…"},        {u"dots", u"…"},
    {u"dotsc", u"…"},      {u"dotsb", u"⋯"},      {u"cdots", u"⋯"},        {u"vdots", u"⋮"},
    {u"ddots", u"⋱"},      {u"therefore", u"∴"},  {u"because", u"∵"},      {u"checkmark", u"✓"},
    {u"square", u"□"},     {u"Box", u"□"},        {u"blacksquare", u"■"},  {u"lozenge", u"◊"},
    {u"degree", u"°"},     {u"S", u"§"},          {u"P", u"¶"},            {u"copyright", u"©"},
    {u"imath", u"ı"},      {u"jmath", u"ȷ"},      {u"complement", u"∁"},   {u"mho", u"℧"},
    {u"eth", u"ð"},        {u"circledS", u"Ⓢ"},   {u"diagup", u"╱"},       {u"diagdown", u"╲"},
    {u"%", u"%"},          {u"$", u"$"},          {u"#", u"#"},            {u"&", u"&"},
    {u"_", u"_"},
};

// Accents are read as commands with an argument before the table is consulted; their rows
// here give the glyph that layout draws over the body.
struct AccentRow {
    const char16_t* name;
    const char16_t* text;
    TeXAccent accent;
};

constexpr AccentRow accents[] = {
    {u"hat", u"ˆ", TeXAccent::hat},     {u"check", u"ˇ", TeXAccent::check},  {u"tilde", u"˜", TeXAccent::tilde},
    {u"acute", u"´", TeXAccent::acute}, {u"grave", u"`", TeXAccent::grave},  {u"dot", u"˙", TeXAccent::dot},
    {u"ddot", u"¨", TeXAccent::doubleDot}, {u"breve", u"˘", TeXAccent::breve}, {u"bar", u"¯", TeXAccent::macron},
    {u"vec", u"\u20D7", TeXAccent::vector},
};

constexpr OperatorRow largeOperators[] = {
    {u"sum", u"∑", true},       {u"prod", u"∏", true},       {u"coprod", u"∐", true},
    {u"int", u"∫", false},      {u"iint", u"∬", false},      {u"iiint", u"∭", false},
    {u"oint", u"∮", false},     {u"oiint", u"∯", false},     {u"bigcup", u"⋃", true},
    {u"bigcap", u"⋂", true},    {u"bigvee", u"⋁", true},     {u"bigwedge", u"⋀", true},
    {u"bigoplus", u"⨁", true},  {u"bigotimes", u"⨂", true},  {u"bigodot", u"⨀", true},
    {u"biguplus", u"⨄", true},  {u"bigsqcup", u"⨆", true},
    // Named operators: limits below in display for those that take them, as in TeX.
    {u"lim", u"lim", true},     {u"liminf", u"lim inf", true}, {u"limsup", u"lim sup", true},
    {u"max", u"max", true},     {u"min", u"min", true},      {u"sup", u"sup", true},
    {u"inf", u"inf", true},     {u"det", u"det", true},      {u"gcd", u"gcd", true},
    {u"Pr", u"Pr", true},       {u"argmax", u"arg max", true}, {u"argmin", u"arg min", true},
    {u"sin", u"sin", false},    {u"cos", u"cos", false},     {u"tan", u"tan", false},
    {u"cot", u"cot", false},    {u"sec", u"sec", false},     {u"csc", u"csc", false},
    {u"arcsin", u"arcsin", false}, {u"arccos", u"arccos", false}, {u"arctan", u"arctan", false},
    {u"sinh", u"sinh", false},  {u"cosh", u"cosh", false},   {u"tanh", u"tanh", false},
    {u"coth", u"coth", false},  {u"log", u"log", false},     {u"ln", u"ln", false},
    {u"lg", u"lg", false},      {u"exp", u"exp", false},     {u"ker", u"ker", false},
    {u"dim", u"dim", false},    {u"deg", u"deg", false},     {u"arg", u"arg", false},
    {u"hom", u"hom", false},
};

constexpr const char16_t* literalDelimiters[] = {u"(", u")", u"[", u"]", u"{", u"}", u"|", u"/", u"<", u">", u"."};

constexpr const char16_t* closingDelimiters[] = {u")", u"]", u"}", u"⟩", u"⌉", u"⌋", u"⟯", u"⎱", u"⌝", u"⌟", u"〉", u"⟧"};

QHash<QStringView, TeXSymbolTable::Entry> buildSymbols()
{
    QHash<QStringView, TeXSymbolTable::Entry> table;
    const auto addAtoms = [&](const auto& rows, Role role, Class atomClass) {
        for (const AtomRow& row : rows)
            table.insert(QStringView(row.name), TeXNode::Atom{QString::fromUtf16(row.text), role, atomClass});
    };
    addAtoms(greekLower, Role::italic, Class::ordinary);
    addAtoms(greekUpper, Role::roman, Class::ordinary);
    addAtoms(binaryOperators, Role::symbol, Class::binary);
    addAtoms(relations, Role::symbol, Class::relation);
    addAtoms(arrows, Role::symbol, Class::relation);
    for (const DelimiterRow& row : delimiters)
        table.insert(QStringView(row.name), TeXNode::Atom{QString::fromUtf16(row.text), Role::roman, row.atomClass});
    addAtoms(misc, Role::symbol, Class::ordinary);
    for (const AccentRow& row : accents)
        table.insert(QStringView(row.name), TeXNode::Atom{QString::fromUtf16(row.text), Role::roman, Class::ordinary});
    for (const OperatorRow& row : largeOperators)
        table.insert(QStringView(row.name), TeXNode::LargeOperator{QString::fromUtf16(row.text), row.takesLimits});
    // Words set upright; "mod" spaced as a binary operator.
    table.insert(u"bmod", TeXNode::Atom{QStringLiteral("mod"), Role::roman, Class::binary});
    // The colon of a mapping, f\colon A \to B, is punctuation.
    table.insert(u"colon", TeXNode::Atom{QStringLiteral(":"), Role::roman, Class::punctuation});
    return table;
}

bool contains(const auto& list, QStringView text)
{
    for (const char16_t* entry : list) {
        if (text == QStringView(entry))
            return true;
    }
    return false;
}

}

const QHash<QStringView, TeXSymbolTable::Entry>& TeXSymbolTable::symbols()
{
    static const QHash<QStringView, Entry> table = buildSymbols();
    return table;
}

const TeXSymbolTable::Entry* TeXSymbolTable::lookup(QStringView name)
{
    const auto& table = symbols();
    const auto found = table.constFind(name);
    return found == table.constEnd() ? nullptr : &found.value();
}

bool TeXSymbolTable::isClosingDelimiter(QStringView text)
{
    return contains(closingDelimiters, text);
}

bool TeXSymbolTable::isLiteralDelimiter(QStringView name)
{
    return contains(literalDelimiters, name);
}

QString TeXSymbolTable::accentText(TeXAccent accent)
{
    for (const AccentRow& row : accents) {
        if (row.accent == accent)
            return QString::fromUtf16(row.text);
    }
    return QString();
}

QString TeXSymbolTable::mathGlyph(QStringView character)
{
    if (character.size() == 1) {
        switch (character[0].unicode()) {
        case u'-': return QStringLiteral("\u2212");
        case u'*': return QStringLiteral("\u2217");
        case u'\'': return QStringLiteral("\u2032");
        case u'"': return QStringLiteral("\u2033");
        default: break;
        }
    }
    return character.toString();
}

TeXAtomClass TeXSymbolTable::atomClass(QStringView character)
{
    if (character.size() != 1)
        return Class::ordinary;
    switch (character[0].unicode()) {
    case u'+':
    case u'-':
    case u'*':
    case u'/': return Class::binary;
    case u'=':
    case u'<':
    case u'>': return Class::relation;
    case u'(':
    case u'[': return Class::opening;
    case u')':
    case u']': return Class::closing;
    case u',': return Class::punctuation;
    default: return Class::ordinary;
    }
}

}
