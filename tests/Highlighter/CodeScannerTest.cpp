#include "TokenDump.h"

#include <gtest/gtest.h>

namespace velmo::highlighter {
namespace {

using test::dump;

struct Case {
    const char16_t* language;
    const char16_t* code;
    const char16_t* expected;
};

void check(std::initializer_list<Case> cases)
{
    for (const Case& item : cases) {
        const QString code = QString::fromUtf16(item.code);
        SCOPED_TRACE((QString::fromUtf16(item.language) + QStringLiteral(": ") + code).toStdString());
        EXPECT_EQ(dump(code, QStringView(item.language)).toStdString(), QString::fromUtf16(item.expected).toStdString());
    }
}

TEST(CodeScanner, Strings)
{
    check({
        {u"python", u"x = \"a", u"operatorSign:= string:\"a"},
        {u"python", u"\"a\nx = \"", u"string:\"a operatorSign:= string:\""},
        {u"python", u"\"\"\"a\"b\"\"\"", u"string:\"\"\"a\"b\"\"\""},
        {u"python", u"'''a\n'b'''", u"string:'''a\n'b'''"},
        {u"python", u"\"\"\"open\nstill", u"string:\"\"\"open\nstill"},
        {u"python", u"\"\" \"\"", u"string:\"\" string:\"\""},
        {u"python", u"\"a\\\"b\" 1", u"string:\"a\\\"b\" number:1"},
        {u"python", u"'it\\'s'", u"string:'it\\'s'"},
        {u"python", u"\"end\\", u"string:\"end\\"},
        {u"javascript", u"`a\n${b}\nc`", u"string:`a\n${b}\nc`"},
        {u"go", u"`raw\\`", u"string:`raw\\`"},
        // SQL doubles its quotes instead of escaping: a backslash is plain.
        {u"sql", u"'a\\' 'b'", u"string:'a\\' string:'b'"},
        {u"json", u"{\"k\": 1, \"v\"}", u"attribute:\"k\" number:1 string:\"v\""},
        {u"json", u"\"k\"\t :true", u"attribute:\"k\" keyword:true"},
        {u"json", u"\"v\"", u"string:\"v\""},
        {u"python", u"{\"k\": 1}", u"string:\"k\" number:1"},
        {u"yaml", u"name: x\nmax-age: 3\nurl: http://a", u"attribute:name attribute:max-age number:3 attribute:url operatorSign://"},
        // A quote that also marks lifetimes: 'a is an attribute, 'a' a character.
        {u"rust", u"&'a str, 'x', '\\n'", u"operatorSign:& attribute:'a type:str string:'x' string:'\\n'"},
        {u"haskell", u"foldl' f 'c'", u"string:'c'"},
        // Prefixes join their string; longer words before a quote stay words.
        {u"python", u"f\"{x}\" rb'\\d' print\"x\"", u"string:f\"{x}\" string:rb'\\d' string:\"x\""},
        {u"cpp", u"L\"w\" u8\"s\"", u"string:L\"w\" string:u8\"s\""},
        {u"sql", u"N'x' in'y'", u"string:N'x' keyword:in string:'y'"},
    });
}

TEST(CodeScanner, Numbers)
{
    check({
        {u"c", u"0x1F_u", u"number:0x1F_u"},
        {u"c", u"0b1010 0o17 0XfF", u"number:0b1010 number:0o17 number:0XfF"},
        {u"python", u"1_000_000", u"number:1_000_000"},
        {u"python", u"3.14 1e10 2.5E-3 6e+2", u"number:3.14 number:1e10 number:2.5E-3 number:6e+2"},
        {u"python", u"1.x", u"number:1"},
        {u"rust", u"1..2", u"number:1 number:2"},
        {u"rust", u"1u8 2.0f32", u"number:1u8 number:2.0f32"},
        {u"css", u"a { width: 10px; line-height: 1.5em; top: 50%; }",
         u"tag:a attribute:width number:10px attribute:line-height number:1.5em attribute:top number:50%"},
        {u"javascript", u".5 + x.y", u"number:.5 operatorSign:+"},
        // "1e" has no exponent digits, so the letter joins as a suffix and "+" stays apart.
        {u"python", u"1e+", u"number:1e operatorSign:+"},
        {u"python", u"x1 = 2", u"operatorSign:= number:2"},
    });
}

TEST(CodeScanner, Comments)
{
    check({
        {u"c", u"a // b\nc", u"comment:// b"},
        {u"c", u"/* a\n b */ x", u"comment:/* a\n b */"},
        {u"c", u"/* open", u"comment:/* open"},
        {u"c", u"x=/*c*/1", u"operatorSign:= comment:/*c*/ number:1"},
        {u"c", u"\"// not\" // yes", u"string:\"// not\" comment:// yes"},
        {u"python", u"# c\r\nx", u"comment:# c"},
        {u"lua", u"--[[ block\n]] -- line", u"comment:--[[ block\n]] comment:-- line"},
        {u"haskell", u"{- a -} -- b", u"comment:{- a -} comment:-- b"},
        {u"sql", u"SELECT 1 -- c", u"keyword:SELECT number:1 comment:-- c"},
        {u"shell", u"echo $# # c", u"type:echo comment:# c"},
        // Vim's comment quote counts only first on a line; elsewhere it opens a string.
        {u"vim", u"\" note\nlet x = \"s\"", u"comment:\" note keyword:let operatorSign:= string:\"s\""},
        {u"powershell", u"<# a #> $x", u"comment:<# a #> attribute:$x"},
        {u"ruby", u"=begin\nx\n=end\ny", u"comment:=begin\nx\n=end"},
    });
}

TEST(CodeScanner, Words)
{
    check({
        {u"python", u"def f(x): return None",
         u"keyword:def function:f keyword:return keyword:None"},
        {u"python", u"print(len(s))", u"function:print function:len"},
        {u"python", u"int(x) MAX_SIZE = A1", u"type:int constant:MAX_SIZE operatorSign:= constant:A1"},
        {u"c", u"FOO(1)", u"constant:FOO number:1"},
        {u"c", u"#include <x.h>", u"attribute:#include operatorSign:< operatorSign:>"},
        {u"java", u"@Override void f()", u"attribute:@Override type:void function:f"},
        {u"rust", u"println!(\"{}\", x); vec![1]", u"function:println! string:\"{}\" function:vec! number:1"},
        {u"sql", u"select Count(*) FROM t", u"keyword:select function:Count operatorSign:* keyword:FROM"},
        {u"ruby", u"Foo::Bar :sym @x", u"attribute::sym attribute:@x"},
        {u"python", u"éte = naïve(1)", u"operatorSign:= function:naïve number:1"},
        {u"python", u"_ = __init__", u"operatorSign:="},
        {u"plain", u"if x == 1: \"a\" # b", u""},
        {u"javascript", u"p.catch(e); m.get; a..in", u"function:catch keyword:in"},
        {u"rust", u"f.await?.type", u"keyword:await operatorSign:?"},
    });
}

TEST(CodeScanner, Diff)
{
    check({
        {u"diff", u"@@ -1 +1 @@", u"attribute:@@ -1 +1 @@"},
        {u"diff", u"diff --git a/x b/x\nindex 1..2\n--- a/x\n+++ b/x\n@@ -1,2 +1,2 @@\n ctx\n-old\r\n+new\n",
         u"keyword:diff --git a/x b/x keyword:index 1..2 deletion:--- a/x insertion:+++ b/x "
         u"attribute:@@ -1,2 +1,2 @@ deletion:-old insertion:+new"},
        {u"diff", u"\n\n+", u"insertion:+"},
    });
}

TEST(CodeScanner, Html)
{
    check({
        {u"html", u"<a href=\"x\" hidden>t</a>",
         u"tag:<a attribute:href string:\"x\" attribute:hidden tag:> tag:</a tag:>"},
        {u"html", u"<img src=x.png/>", u"tag:<img attribute:src string:x.png tag:/>"},
        {u"html", u"<!DOCTYPE html><!-- c --> &amp; & x", u"keyword:<!DOCTYPE html> comment:<!-- c --> constant:&amp;"},
        {u"html", u"<p class='a", u"tag:<p attribute:class string:'a"},
        {u"html", u"<p <b>", u"tag:<p tag:<b tag:>"},
        {u"html", u"<script>if (a < b) f(\"</p>\")</script>",
         u"tag:<script tag:> keyword:if operatorSign:< function:f string:\"</p>\" tag:</script tag:>"},
        {u"html", u"<STYLE>p { color: red }</style>",
         u"tag:<STYLE tag:> tag:p attribute:color tag:</style tag:>"},
        {u"html", u"<script>var x", u"tag:<script tag:> keyword:var"},
        {u"markdown", u"# T <br> &lt; 1", u"tag:<br tag:> constant:&lt;"},
    });
}

TEST(CodeScanner, Css)
{
    check({
        {u"css", u"@media screen and (max-width: 600px) { .a #b:hover::before { color: #fff !important } }",
         u"keyword:@media keyword:screen keyword:and attribute:max-width number:600px attribute:.a "
         u"attribute:#b keyword::hover keyword:::before attribute:color number:#fff keyword:!important"},
        {u"css", u"a{background:url(x.png) no-repeat;--gap:var(--x)}",
         u"tag:a attribute:background function:url type:no-repeat attribute:--gap function:var attribute:--x"},
        {u"css", u"/* c */ p::after { content: \"}\" }",
         u"comment:/* c */ tag:p keyword:::after attribute:content string:\"}\""},
    });
}

TEST(CodeScanner, Latex)
{
    check({
        {u"latex", u"\\section*{Intro} % c\n$x^2$ \\\\ 10pt",
         u"keyword:\\section* comment:% c operatorSign:$ operatorSign:^ number:2 operatorSign:$ keyword:\\\\ number:10pt"},
        {u"latex", u"\\begin{align} a & b \\end{align}\\%",
         u"keyword:\\begin type:align operatorSign:& keyword:\\end type:align keyword:\\%"},
        {u"latex", u"\\", u"keyword:\\"},
    });
}

}
}
