#include "TokenDump.h"

#include <QSet>
#include <gtest/gtest.h>

namespace velmo::highlighter {
namespace {

// A short, ordinary piece of each language and a few tokens in it that a reader would miss
// if they went uncoloured.
struct Snippet {
    const char* id;
    const char* code;
    std::vector<const char*> tokens;
};

const std::vector<Snippet> snippets = {
    {"swift", R"(@MainActor final class Model { var count: Int = 0; func bump() { count += 1 } })",
     {"attribute:@MainActor", "keyword:final", "type:Int", "function:bump"}},
    {"python", R"(@dataclass
class Point:
    x: float = 0.0  # metres
    def norm(self) -> float:
        return math.sqrt(self.x ** 2))",
     {"attribute:@dataclass", "keyword:class", "type:float", "comment:# metres", "function:sqrt"}},
    {"javascript", R"(export async function load(url) { const r = await fetch(`${url}/x`); return JSON.parse(r) })",
     {"keyword:export", "keyword:await", "string:`${url}/x`", "type:JSON", "function:parse"}},
    {"typescript", R"(interface User { id: number; name?: string } type Id = Readonly<User>;)",
     {"keyword:interface", "type:number", "type:string", "type:Readonly"}},
    {"json", R"({"name": "velmo", "version": 2, "private": true, "tags": null})",
     {"attribute:\"name\"", "string:\"velmo\"", "number:2", "keyword:true", "keyword:null"}},
    {"yaml", "# ci\non:\n  push:\n    branches: [\"main\"]\n  retries: 3\n",
     {"comment:# ci", "attribute:push", "attribute:branches", "string:\"main\"", "number:3"}},
    {"toml", "[package]\nname = \"velmo\" # app\nedition = 2021\nlto = true",
     {"string:\"velmo\"", "comment:# app", "number:2021", "keyword:true"}},
    {"html", R"(<ul class="nav"><li><a href='/'>Home</a></li></ul>)",
     {"tag:<ul", "attribute:class", "string:\"nav\"", "string:'/'", "tag:</a"}},
    {"css", ".card > h2 { margin: 0 auto; color: rgb(0 0 0 / 50%); }",
     {"attribute:.card", "tag:h2", "attribute:margin", "type:auto", "function:rgb", "number:50%"}},
    {"shell", "#!/bin/sh\nfor f in *.md; do\n  echo \"$f\" | wc -l  # count\ndone",
     {"comment:#!/bin/sh", "keyword:for", "type:echo", "string:\"$f\"", "keyword:done"}},
    {"ruby", "class User < ApplicationRecord\n  attr_reader :name\n  def to_s = \"#{@name}\"\nend",
     {"keyword:class", "keyword:attr_reader", "attribute::name", "keyword:def", "keyword:end"}},
    {"go", "func (s *Server) Run(ctx context.Context) error {\n\treturn nil // done\n}",
     {"keyword:func", "function:Run", "type:error", "keyword:nil", "comment:// done"}},
    {"rust", "#[derive(Debug)]\npub fn first<'a>(v: &'a [u8]) -> Option<&'a u8> { v.get(0) }",
     {"keyword:pub", "attribute:'a", "type:u8", "type:Option", "function:get"}},
    {"java", "@Override public String toString() { return \"P(\" + x + \")\"; }",
     {"attribute:@Override", "keyword:public", "type:String", "function:toString", "string:\"P(\""}},
    {"kotlin", "data class User(val id: Long) { fun show() = println(\"$id\") }",
     {"keyword:data", "keyword:val", "type:Long", "keyword:fun", "function:println"}},
    {"c", "#include <stdio.h>\nint main(void) { printf(\"%d\\n\", EOF); return 0; }",
     {"attribute:#include", "type:int", "function:main", "constant:EOF", "number:0"}},
    {"cpp", "template <typename T> std::unique_ptr<T> make() { return nullptr; }",
     {"keyword:template", "keyword:typename", "type:std", "type:unique_ptr", "keyword:nullptr"}},
    {"objectivec", "@interface View : NSObject\n@property (nonatomic) NSInteger count;\n@end",
     {"attribute:@interface", "type:NSObject", "keyword:nonatomic", "type:NSInteger"}},
    {"sql", "SELECT id, COUNT(*) FROM notes WHERE title LIKE 'a%' -- all\nGROUP BY id;",
     {"keyword:SELECT", "keyword:FROM", "string:'a%'", "comment:-- all", "keyword:BY"}},
    {"php", "<?php function greet(string $name): string { return \"Hi $name\"; }",
     {"keyword:function", "function:greet", "type:string", "attribute:$name"}},
    {"dart", "Future<void> main() async { final list = <int>[1, 2]; }",
     {"type:Future", "keyword:void", "keyword:async", "keyword:final", "type:int"}},
    {"lua", "local function add(a, b) return a + b end -- sum",
     {"keyword:local", "function:add", "keyword:end", "comment:-- sum"}},
    {"perl", "my @lines = <STDIN>; foreach my $l (@lines) { print \"$l\"; }",
     {"keyword:my", "attribute:@lines", "keyword:foreach", "attribute:$l"}},
    {"r", "df <- data.frame(x = c(1, 2))\nif (is.na(x)) NULL else TRUE # check",
     {"function:c", "keyword:if", "keyword:NULL", "keyword:TRUE", "comment:# check"}},
    {"haskell", "module Main where\nmain :: IO ()\nmain = putStrLn \"hi\" -- greet",
     {"keyword:module", "keyword:where", "type:IO", "string:\"hi\"", "comment:-- greet"}},
    {"elixir", "defmodule Greeter do\n  @moduledoc false\n  def hi(name), do: \"Hi #{name}\"\nend",
     {"keyword:defmodule", "attribute:@moduledoc", "keyword:def", "function:hi", "keyword:end"}},
    {"erlang", "-module(hello).\nhello() -> io:format(\"hi~n\"). % greet",
     {"keyword:module", "function:format", "string:\"hi~n\"", "comment:% greet"}},
    {"scala", "case class Point(x: Int) extends Shape { override def area: Double = 0.0 }",
     {"keyword:case", "keyword:class", "type:Int", "keyword:override", "type:Double"}},
    {"dockerfile", "FROM debian:12 AS build\nRUN apt-get update # deps\nENV PATH=$HOME/bin",
     {"keyword:FROM", "keyword:AS", "keyword:RUN", "comment:# deps", "attribute:$HOME"}},
    {"makefile", "CFLAGS := -O2\nall: $(OBJS)\n\t$(CC) -o app $(wildcard *.o) # link",
     {"constant:CFLAGS", "constant:OBJS", "type:wildcard", "comment:# link"}},
    {"ini", "[core]\n; comment\neditor = vim\nautocrlf = false",
     {"comment:; comment", "keyword:false"}},
    {"latex", "\\documentclass{article}\n\\begin{document}\nHello $x^2$ % note\n\\end{document}",
     {"keyword:\\documentclass", "keyword:\\begin", "type:document", "comment:% note"}},
    {"markdown", "# Title\n\nSome <kbd>Ctrl</kbd> text &copy; <!-- hidden -->",
     {"tag:<kbd", "constant:&copy;", "comment:<!-- hidden -->"}},
    {"mermaid", "graph TD\n  A[Start] --> B{Ok?}\n  %% note\n  subgraph one\n  end",
     {"keyword:graph", "keyword:TD", "comment:%% note", "keyword:subgraph", "keyword:end"}},
    {"graphviz", "digraph G { rankdir=LR; a -> b [label=\"go\"]; } // done",
     {"keyword:digraph", "type:rankdir", "type:label", "string:\"go\"", "comment:// done"}},
    {"protobuf", "syntax = \"proto3\";\nmessage Note { string title = 1; repeated int32 ids = 2; }",
     {"keyword:syntax", "keyword:message", "type:string", "keyword:repeated", "type:int32"}},
    {"terraform", "resource \"aws_s3_bucket\" \"b\" {\n  count = var.enabled ? 1 : 0 # toggle\n}",
     {"keyword:resource", "string:\"aws_s3_bucket\"", "keyword:count", "comment:# toggle"}},
    {"nginx", "server {\n  listen 80;\n  location / { proxy_pass http://app; } # fwd\n}",
     {"keyword:server", "keyword:listen", "number:80", "keyword:proxy_pass", "comment:# fwd"}},
    {"powershell", "function Get-Note { param([string]$Path) Write-Host \"C:\\dir\\\" }",
     {"keyword:function", "keyword:param", "type:string", "attribute:$Path", "string:\"C:\\dir\\\""}},
    {"vim", "\" settings\nset number\nfunction! s:Go() abort\n  let l:x = 'a'\nendfunction",
     {"comment:\" settings", "keyword:set", "keyword:function", "keyword:abort", "string:'a'"}},
    {"zig", "const std = @import(\"std\");\npub fn main() !void { var x: u32 = 0; }",
     {"keyword:const", "attribute:@import", "keyword:pub", "type:void", "type:u32"}},
    {"elm", "view : Model -> Html Msg\nview model = text \"hi\" -- render",
     {"type:Html", "string:\"hi\"", "comment:-- render"}},
    {"ocaml", "let rec fact n = if n = 0 then 1 else n * fact (n - 1) (* math *)\ntype 'a t = 'a list",
     {"keyword:let", "keyword:rec", "comment:(* math *)", "attribute:'a", "type:list"}},
    {"clojure", "(defn greet [name] (str \"Hi \" name)) ; say hi\n{:a 1}",
     {"keyword:defn", "string:\"Hi \"", "comment:; say hi", "attribute::a"}},
    {"gdscript", "extends Node2D\n@export var speed: float = 2.0\nfunc _ready():\n\t$Sprite.show()",
     {"keyword:extends", "type:Node2D", "attribute:@export", "type:float", "attribute:$Sprite"}},
    {"haml", "%section.container\n  -# hidden\n  - if user\n    %p= user.name",
     {"attribute:%section", "attribute:.container", "comment:-# hidden", "keyword:if"}},
    {"jinja", "{% for item in items %}{{ item.name | upper }}{% endfor %}{# note #}",
     {"keyword:for", "keyword:in", "keyword:endfor", "comment:{# note #}"}},
    {"asm", "section .text\nglobal _start\n_start:\n  mov rax, 60 ; exit\n  syscall",
     {"keyword:section", "attribute:.text", "keyword:mov", "type:rax", "comment:; exit"}},
    {"cobol", "       IDENTIFICATION DIVISION.\n       PROCEDURE DIVISION.\n           DISPLAY 'HI'. *> greet",
     {"keyword:IDENTIFICATION", "keyword:DIVISION", "keyword:DISPLAY", "string:'HI'", "comment:*> greet"}},
    {"fortran", "program hello\n  implicit none\n  integer :: i = 1 ! count\nend program",
     {"keyword:program", "keyword:implicit", "type:integer", "comment:! count"}},
    {"pascal", "program Hi;\nvar s: String;\nbegin { greet } WriteLn('Hi'); end.",
     {"keyword:program", "keyword:var", "type:String", "comment:{ greet }", "string:'Hi'"}},
    {"ada", "with Ada.Text_IO;\nprocedure Hello is\nbegin\n   Put_Line (\"Hi\"); -- greet\nend Hello;",
     {"keyword:with", "keyword:procedure", "keyword:is", "string:\"Hi\"", "comment:-- greet"}},
    {"crystal", "def greet(name : String) : Nil\n  puts \"Hi #{name}\" # say\nend",
     {"keyword:def", "function:greet", "type:String", "type:Nil", "comment:# say"}},
    {"nim", "proc greet(name: string): string =\n  result = \"Hi \" & name # say",
     {"keyword:proc", "function:greet", "type:string", "keyword:result", "comment:# say"}},
    {"julia", "function f(x::Float64)\n  @assert x > 0 # positive\n  return x'\nend",
     {"keyword:function", "type:Float64", "attribute:@assert", "comment:# positive", "keyword:end"}},
    {"applescript", "tell application \"Finder\" to set n to count of windows -- how many",
     {"keyword:tell", "type:application", "string:\"Finder\"", "keyword:set", "comment:-- how many"}},
    {"arduino", "void setup() { pinMode(LED_BUILTIN, OUTPUT); String s = \"on\"; }",
     {"type:void", "function:setup", "constant:LED_BUILTIN", "type:String"}},
    {"cmake", "if(NOT WIN32)\n  add_executable(app main.cpp) # build\nendif()",
     {"keyword:if", "keyword:NOT", "function:add_executable", "comment:# build", "keyword:endif"}},
    {"nix", "{ pkgs ? import <nixpkgs> {} }:\nlet name = \"velmo\"; in pkgs.hello # pkg",
     {"keyword:import", "keyword:let", "string:\"velmo\"", "keyword:in", "comment:# pkg"}},
    {"prisma", "model User {\n  id    Int     @id @default(autoincrement())\n  email String  @unique\n}",
     {"keyword:model", "type:Int", "attribute:@id", "type:String", "attribute:@unique"}},
    {"scheme", "(define (square x) (* x x)) ; square it\n#| block |#",
     {"keyword:define", "comment:; square it", "comment:#| block |#"}},
    {"solidity", "pragma solidity ^0.8.0;\ncontract Bank { mapping(address => uint256) public balances; }",
     {"keyword:pragma", "keyword:contract", "keyword:mapping", "type:address", "type:uint256"}},
    {"tcl", "proc greet {name} {\n  puts \"Hi $name\" ;# say\n}\nset x [expr {1 + 2}]",
     {"keyword:proc", "keyword:puts", "string:\"Hi $name\"", "keyword:set", "keyword:expr"}},
    {"v", "fn main() {\n\tmut x := 5 // five\n\tprintln('x=${x}')\n}",
     {"keyword:fn", "function:main", "keyword:mut", "comment:// five", "string:'x=${x}'"}},
    {"diff", "--- a/x\n+++ b/x\n@@ -1 +1 @@\n-old\n+new",
     {"attribute:@@ -1 +1 @@", "deletion:-old", "insertion:+new"}},
    {"plain", "Nothing here: 1 + \"2\" // 3", {}},
};

TEST(LanguageSnippets, EachLanguageColoursWhatMatters)
{
    QSet<QString> covered;
    for (const Snippet& snippet : snippets) {
        const SyntaxLanguage* language = SyntaxLanguageCatalog::named(QString::fromUtf8(snippet.id));
        ASSERT_NE(language, nullptr) << snippet.id;
        covered.insert(language->id);
        const QString code = QString::fromUtf8(snippet.code);
        const QStringList tokens = test::tokenTexts(code, *language);
        for (const char* expected : snippet.tokens) {
            EXPECT_TRUE(tokens.contains(QString::fromUtf8(expected)))
                << snippet.id << ": no " << expected << " in " << tokens.join(u' ').toStdString();
        }
    }
    for (const SyntaxLanguage& language : SyntaxLanguageCatalog::all())
        EXPECT_TRUE(covered.contains(language.id)) << "no snippet for " << language.id.toStdString();
}

}
}
