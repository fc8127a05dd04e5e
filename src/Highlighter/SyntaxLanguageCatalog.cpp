#include "Highlighter/SyntaxLanguageCatalog.h"

#include <QSet>
#include <algorithm>
#include <string>

namespace velmo::highlighter {

namespace {

using Dialect = SyntaxLanguage::Dialect;
using Markers = std::vector<const char*>;
using Pairs = std::vector<std::pair<const char*, const char*>>;

// One row of the table below; word lists are blank- and line-separated, split once.
struct Entry {
    const char* id;
    const char* displayName;
    std::string keywords = {};
    std::string builtins = {};
    Markers lineComments = {};
    Pairs blockComments = {};
    const char16_t* quotes = u"\"'";
    bool escapes = true;
    bool keyValuePairs = false;
    Dialect dialect = Dialect::code;
    const char16_t* attributePrefixes = u"";
    bool caseSensitive = true;
    const char* aliases = "";
};

const Markers slashes = {"//"};
const Markers hashes = {"#"};
const Pairs slashStar = {{"/*", "*/"}};

// Shared by C, C++, Objective-C and Arduino.
constexpr const char* cKeywords = R"(
    auto break case const continue default do else enum extern for goto if inline register
    restrict return sizeof static struct switch typedef union volatile while _Alignas _Alignof
    _Atomic _Bool _Complex _Generic _Imaginary _Noreturn _Static_assert _Thread_local alignas
    alignof bool false nullptr true static_assert thread_local typeof constexpr NULL)";
constexpr const char* cTypes = R"(
    char short int long float double signed unsigned void size_t ssize_t ptrdiff_t intptr_t
    uintptr_t int8_t int16_t int32_t int64_t uint8_t uint16_t uint32_t uint64_t wchar_t FILE)";
constexpr const char* cppKeywords = R"(
    and and_eq asm bitand bitor catch class co_await co_return co_yield compl concept const_cast
    consteval constinit decltype delete dynamic_cast explicit export final friend module import
    mutable namespace new noexcept not not_eq operator or or_eq override private protected public
    reinterpret_cast requires static_cast template this throw try typeid typename using virtual
    xor xor_eq)";
constexpr const char* cppTypes = R"(
    char8_t char16_t char32_t std string vector map unordered_map set unordered_set array deque
    list unique_ptr shared_ptr weak_ptr optional variant pair tuple string_view function span)";
constexpr const char* javascriptKeywords = R"(
    break case catch class const continue debugger default delete do else export extends finally
    for function if import in instanceof let new return super switch this throw try typeof var
    void while with yield async await of static get set null undefined true false NaN Infinity)";
constexpr const char* javascriptTypes = R"(
    Array Object String Number Boolean Symbol BigInt Function Promise Map Set WeakMap WeakSet Date
    RegExp Error TypeError RangeError SyntaxError JSON Math Reflect Proxy Intl ArrayBuffer DataView
    Uint8Array Int8Array Uint16Array Int16Array Uint32Array Int32Array Float32Array Float64Array)";

std::string merged(std::initializer_list<const char*> lists)
{
    std::string result;
    for (const char* list : lists)
        (result += list) += '\n';
    return result;
}

// In the order of the accessors in the header.
std::vector<Entry> entries()
{
    return {
        {.id = "plain", .displayName = "Plain Text", .quotes = u"",
         .aliases = "text txt plaintext none"},
        {.id = "swift", .displayName = "Swift",
         .keywords = R"(
            associatedtype class deinit enum extension fileprivate func import init inout internal
            let open operator private precedencegroup protocol public rethrows static struct
            subscript typealias var break case catch continue default defer do else fallthrough
            for guard if in repeat return throw switch where while as false is nil self Self super
            throws true try async await actor some any macro nonisolated isolated consuming
            borrowing mutating nonmutating override final lazy weak unowned required convenience
            dynamic optional indirect get set willSet didSet)",
         .builtins = R"(
            Int Int8 Int16 Int32 Int64 UInt UInt8 UInt16 UInt32 UInt64 Float Double Bool String
            Character Array Dictionary Set Optional Result Void Never Error Substring Data Date URL
            CGFloat Range ClosedRange Sequence Collection Equatable Hashable Comparable Codable
            Identifiable Any AnyObject)",
         .lineComments = slashes, .blockComments = slashStar, .quotes = u"\"",
         .attributePrefixes = u"@#"},
        {.id = "python", .displayName = "Python",
         .keywords = R"(
            False None True and as assert async await break class continue def del elif else
            except finally for from global if import in is lambda nonlocal not or pass raise
            return try while with yield match case)",
         .builtins = R"(
            int float complex str bytes bytearray bool list tuple dict set frozenset object type
            range memoryview slice BaseException Exception ValueError TypeError KeyError IndexError
            RuntimeError StopIteration AttributeError NotImplementedError OSError ImportError)",
         .lineComments = hashes, .attributePrefixes = u"@",
         .aliases = "py python3 py3 gyp ipython"},
        {.id = "javascript", .displayName = "JavaScript", .keywords = javascriptKeywords,
         .builtins = javascriptTypes, .lineComments = slashes, .blockComments = slashStar,
         .quotes = u"\"'`", .attributePrefixes = u"@", .aliases = "js jsx mjs cjs node"},
        {.id = "typescript", .displayName = "TypeScript",
         .keywords = merged({javascriptKeywords, R"(
            type interface enum implements declare namespace module abstract readonly private
            protected public keyof infer is asserts as satisfies unique override accessor)"}),
         .builtins = merged({javascriptTypes, R"(
            any unknown never string number boolean object symbol bigint Partial Required Readonly
            Record Pick Omit Exclude Extract ReturnType NonNullable Awaited Parameters)"}),
         .lineComments = slashes, .blockComments = slashStar, .quotes = u"\"'`",
         .attributePrefixes = u"@", .aliases = "ts tsx mts cts"},
        {.id = "json", .displayName = "JSON", .keywords = "true false null",
         .lineComments = slashes, .blockComments = slashStar, .quotes = u"\"",
         .keyValuePairs = true, .aliases = "jsonc json5 geojson"},
        {.id = "yaml", .displayName = "YAML",
         .keywords = "true false null yes no on off True False TRUE FALSE Null NULL",
         .lineComments = hashes, .keyValuePairs = true, .aliases = "yml"},
        {.id = "toml", .displayName = "TOML", .keywords = "true false inf nan",
         .lineComments = hashes},
        {.id = "html", .displayName = "HTML", .blockComments = {{"<!--", "-->"}},
         .escapes = false, .dialect = Dialect::html, .caseSensitive = false,
         .aliases = "htm xhtml xml svg"},
        {.id = "css", .displayName = "CSS",
         .keywords = "and not only or screen print all inherit initial unset revert",
         .builtins = R"(
            auto none block inline inline-block flex inline-flex grid contents absolute relative
            fixed sticky static solid dashed dotted double bold bolder lighter normal italic center
            left right top bottom hidden visible scroll transparent currentColor pointer wrap nowrap
            uppercase lowercase capitalize underline ease ease-in ease-out ease-in-out linear
            infinite border-box content-box cover contain repeat no-repeat)",
         .blockComments = slashStar, .dialect = Dialect::css, .aliases = "scss less sass"},
        {.id = "shell", .displayName = "Shell",
         .keywords = R"(
            if then else elif fi case esac for select while until do done in function time coproc
            return exit break continue local declare typeset export readonly unset shift source
            alias eval exec set trap)",
         .builtins = R"(
            echo printf read cd pwd test true false kill wait jobs bg fg type command builtin let
            getopts umask ulimit hash mapfile readarray dirs pushd popd disown enable shopt
            compgen complete)",
         .lineComments = hashes, .quotes = u"\"'`", .attributePrefixes = u"$",
         .aliases = "sh bash zsh ksh fish console shellscript"},
        {.id = "ruby", .displayName = "Ruby",
         .keywords = R"(
            BEGIN END alias and begin break case class def defined do else elsif end ensure false
            for if in module next nil not or redo rescue retry return self super then true undef
            unless until when while yield __FILE__ __LINE__ __method__ require require_relative
            include extend attr_reader attr_writer attr_accessor private protected public raise)",
         .builtins = R"(
            Array Hash String Integer Float Symbol Object Class Module Kernel Proc Range Struct
            Comparable Enumerable NilClass TrueClass FalseClass StandardError RuntimeError
            ArgumentError Time IO File)",
         .lineComments = hashes, .blockComments = {{"=begin", "=end"}}, .quotes = u"\"'`",
         .attributePrefixes = u"@:$", .aliases = "rb gemfile rake"},
        {.id = "go", .displayName = "Go",
         .keywords = R"(
            break case chan const continue default defer else fallthrough for func go goto if
            import interface map package range return select struct switch type var true false
            nil iota)",
         .builtins = R"(
            bool byte complex64 complex128 error float32 float64 int int8 int16 int32 int64 rune
            string uint uint8 uint16 uint32 uint64 uintptr any comparable)",
         .lineComments = slashes, .blockComments = slashStar, .quotes = u"\"'`",
         .aliases = "golang"},
        {.id = "rust", .displayName = "Rust",
         .keywords = R"(
            as async await break const continue crate dyn else enum extern false fn for if impl
            in let loop match mod move mut pub ref return self Self static struct super trait true
            type union unsafe use where while yield macro_rules)",
         .builtins = R"(
            i8 i16 i32 i64 i128 isize u8 u16 u32 u64 u128 usize f32 f64 bool char str String Vec
            Option Result Box Rc Arc RefCell Cell HashMap HashSet BTreeMap BTreeSet VecDeque Some
            None Ok Err)",
         .lineComments = slashes, .blockComments = slashStar, .attributePrefixes = u"'",
         .aliases = "rs"},
        {.id = "java", .displayName = "Java",
         .keywords = R"(
            abstract assert break case catch class const continue default do else enum extends
            final finally for goto if implements import instanceof interface native new package
            private protected public return static strictfp super switch synchronized this throw
            throws transient try volatile while var record sealed permits yield true false null)",
         .builtins = R"(
            boolean byte char short int long float double void String Object Integer Long Double
            Float Boolean Character Byte Short List ArrayList Map HashMap Set HashSet Optional
            Exception RuntimeException Thread StringBuilder Math System Iterable Collection)",
         .lineComments = slashes, .blockComments = slashStar, .attributePrefixes = u"@"},
        {.id = "kotlin", .displayName = "Kotlin",
         .keywords = R"(
            as break class continue do else false for fun if in interface is null object package
            return super this throw true try typealias typeof val var when while by catch
            constructor delegate dynamic field file finally get import init param property
            receiver set setparam where actual abstract annotation companion const crossinline
            data enum expect external final infix inline inner internal lateinit noinline open
            operator out override private protected public reified sealed suspend tailrec vararg
            value)",
         .builtins = R"(
            Any Unit Nothing Int Long Short Byte Double Float Boolean Char String Array List
            MutableList Map MutableMap Set MutableSet Pair Triple Sequence IntArray ByteArray)",
         .lineComments = slashes, .blockComments = slashStar, .attributePrefixes = u"@",
         .aliases = "kt kts"},
        {.id = "c", .displayName = "C", .keywords = cKeywords, .builtins = cTypes,
         .lineComments = slashes, .blockComments = slashStar, .attributePrefixes = u"#",
         .aliases = "h clang"},
        {.id = "cpp", .displayName = "C++", .keywords = merged({cKeywords, cppKeywords}),
         .builtins = merged({cTypes, cppTypes}), .lineComments = slashes,
         .blockComments = slashStar, .attributePrefixes = u"#",
         .aliases = "c++ cc cxx hpp hh hxx h++"},
        {.id = "objectivec", .displayName = "Objective-C",
         .keywords = merged({cKeywords, R"(
            self super nil Nil YES NO SEL IMP BOOL instancetype id in out inout bycopy byref
            oneway __weak __strong __block __unsafe_unretained __kindof nonatomic atomic strong
            weak copy assign retain readonly readwrite nullable nonnull)"}),
         .builtins = merged({cTypes, R"(
            NSString NSObject NSArray NSDictionary NSSet NSNumber NSInteger NSUInteger CGFloat
            NSError NSData NSURL NSMutableArray NSMutableDictionary NSMutableString)"}),
         .lineComments = slashes, .blockComments = slashStar, .attributePrefixes = u"#@",
         .aliases = "objc objective-c obj-c mm objc++ objective-c++"},
        {.id = "sql", .displayName = "SQL",
         .keywords = R"(
            select from where insert into values update set delete create table drop alter add
            column index view primary key foreign references constraint unique not null default
            and or in is like ilike between exists join inner left right full outer cross on as
            group by order having limit offset union all distinct case when then else end begin
            commit rollback transaction grant revoke with recursive returning if cascade desc asc
            true false database schema trigger procedure function return returns declare natural
            using fetch next rows only over partition window replace temporary temp)",
         .builtins = R"(
            int integer smallint bigint tinyint decimal numeric real float double precision char
            varchar text nchar nvarchar date time timestamp timestamptz interval boolean bool
            blob clob json jsonb uuid serial bigserial bytea money)",
         .lineComments = {"--"}, .blockComments = slashStar, .quotes = u"'\"`",
         .escapes = false, .caseSensitive = false,
         .aliases = "mysql postgresql postgres psql pgsql sqlite plsql tsql mssql"},
        {.id = "php", .displayName = "PHP",
         .keywords = R"(
            abstract and array as break callable case catch class clone const continue declare
            default do echo else elseif empty enddeclare endfor endforeach endif endswitch endwhile
            enum extends final finally fn for foreach function global goto if implements include
            include_once instanceof insteadof interface isset list match namespace new or print
            private protected public readonly require require_once return static switch throw
            trait try unset use var while xor yield true false null self parent)",
         .builtins = R"(
            int float bool string object iterable void mixed never Exception stdClass Closure
            Generator Throwable)",
         .lineComments = {"//", "#"}, .blockComments = slashStar, .quotes = u"\"'`",
         .attributePrefixes = u"$", .caseSensitive = false},
        {.id = "dart", .displayName = "Dart",
         .keywords = R"(
            abstract as assert async await base break case catch class const continue covariant
            default deferred do dynamic else enum export extends extension external factory false
            final finally for get hide if implements import in interface is late library mixin new
            null on operator part required rethrow return sealed set show static super switch sync
            this throw true try typedef var void when while with yield)",
         .builtins = R"(
            int double num String bool List Map Set Iterable Future Stream Object Never Null
            Duration DateTime Record Symbol Type Function)",
         .lineComments = slashes, .blockComments = slashStar, .attributePrefixes = u"@"},
        {.id = "lua", .displayName = "Lua",
         .keywords = R"(
            and break do else elseif end false for function goto if in local nil not or repeat
            return then true until while)",
         .builtins = "string table math io os coroutine utf8 debug package",
         .lineComments = {"--"}, .blockComments = {{"--[[", "]]"}}},
        {.id = "perl", .displayName = "Perl",
         .keywords = R"(
            my our local sub if elsif else unless while until for foreach do last next redo
            return use no package require BEGIN END and or not eq ne lt gt le ge cmp print printf
            say die warn defined undef wantarray qw q qq)",
         .lineComments = hashes, .blockComments = {{"=pod", "=cut"}}, .quotes = u"\"'`",
         .attributePrefixes = u"$@%", .aliases = "pl pm"},
        {.id = "r", .displayName = "R",
         .keywords = R"(
            if else repeat while function for in next break TRUE FALSE NULL Inf NaN NA
            NA_integer_ NA_real_ NA_character_ NA_complex_ library require return)",
         .builtins = "numeric character logical integer complex list vector matrix factor array",
         .lineComments = hashes, .quotes = u"\"'`", .aliases = "rlang rscript"},
        {.id = "haskell", .displayName = "Haskell",
         .keywords = R"(
            case class data default deriving do else foreign if import in infix infixl infixr
            instance let module newtype of then type where qualified as hiding forall mdo family)",
         .builtins = R"(
            Int Integer Float Double Char String Bool Maybe Either IO Word Ordering True False
            Nothing Just Left Right Show Eq Ord Num Functor Monad Applicative Foldable Traversable)",
         .lineComments = {"--"}, .blockComments = {{"{-", "-}"}}, .attributePrefixes = u"'",
         .aliases = "hs"},
        {.id = "elixir", .displayName = "Elixir",
         .keywords = R"(
            after and catch do else end false fn in nil not or rescue true when def defp defmodule
            defmacro defmacrop defstruct defprotocol defimpl defdelegate defguard defexception
            import require alias use quote unquote case cond with for if unless try receive raise
            throw)",
         .builtins = R"(
            Integer Float String Atom List Map Tuple Keyword Enum Stream Kernel Process Agent
            GenServer Task IO File Path Regex)",
         .lineComments = hashes, .attributePrefixes = u"@:", .aliases = "ex exs"},
        {.id = "erlang", .displayName = "Erlang",
         .keywords = R"(
            after and andalso band begin bnot bor bsl bsr bxor case catch cond div end fun if let
            not of or orelse receive rem try when xor maybe else module export import record
            define include behaviour spec type)",
         .builtins = R"(
            integer float atom binary list tuple map pid port reference boolean string term any
            none number)",
         .lineComments = {"%"}, .attributePrefixes = u"?", .aliases = "erl"},
        {.id = "scala", .displayName = "Scala",
         .keywords = R"(
            abstract case catch class def do else enum export extends false final finally for
            forSome given if implicit import lazy match new null object override package private
            protected return sealed super then this throw trait true try type using val var while
            with yield)",
         .builtins = R"(
            Int Long Short Byte Double Float Boolean Char String Unit Any AnyRef AnyVal Nothing
            Null Option Some None List Seq Vector Map Set Array Either Left Right Future)",
         .lineComments = slashes, .blockComments = slashStar, .attributePrefixes = u"@",
         .aliases = "sc"},
        {.id = "dockerfile", .displayName = "Dockerfile",
         .keywords = R"(
            from run cmd label maintainer expose env add copy entrypoint volume user workdir arg
            onbuild stopsignal healthcheck shell as)",
         .lineComments = hashes, .attributePrefixes = u"$", .caseSensitive = false,
         .aliases = "docker containerfile"},
        {.id = "makefile", .displayName = "Makefile",
         .keywords = R"(
            include define endef ifdef ifndef ifeq ifneq else endif export unexport override
            private vpath sinclude)",
         .builtins = R"(
            subst patsubst strip findstring filter sort word wordlist words firstword lastword
            dir notdir suffix basename addsuffix addprefix join wildcard realpath abspath foreach
            file call value eval origin flavor shell error warning info)",
         .lineComments = hashes, .attributePrefixes = u"$", .aliases = "make mk mak gnumake"},
        {.id = "ini", .displayName = "INI", .keywords = "true false yes no on off",
         .lineComments = {";", "#"}, .caseSensitive = false,
         .aliases = "cfg conf properties editorconfig gitconfig"},
        {.id = "diff", .displayName = "Diff", .quotes = u"", .dialect = Dialect::diff,
         .aliases = "patch udiff"},
        {.id = "latex", .displayName = "LaTeX", .lineComments = {"%"}, .quotes = u"",
         .dialect = Dialect::latex, .aliases = "tex context"},
        // Prose with inline HTML: tags, entities and comments are what stand out.
        {.id = "markdown", .displayName = "Markdown", .blockComments = {{"<!--", "-->"}},
         .escapes = false, .dialect = Dialect::html, .caseSensitive = false,
         .aliases = "md mdown mkd mkdn"},
        {.id = "mermaid", .displayName = "Mermaid",
         .keywords = R"(
            graph flowchart subgraph end direction TB TD BT RL LR sequenceDiagram participant
            actor loop alt else opt par and rect critical break note over left right of activate
            deactivate classDiagram class stateDiagram state erDiagram gantt title dateFormat
            axisFormat section pie journey gitGraph commit branch checkout merge mindmap timeline
            quadrantChart requirementDiagram style linkStyle classDef click callback autonumber)",
         .lineComments = {"%%"}, .quotes = u"\"", .aliases = "mmd"},
        {.id = "graphviz", .displayName = "Graphviz",
         .keywords = "strict graph digraph node edge subgraph",
         .builtins = R"(
            label shape color fillcolor fontcolor fontname fontsize style rankdir rank splines
            dir arrowhead arrowtail penwidth width height)",
         .lineComments = {"//", "#"}, .blockComments = slashStar, .quotes = u"\"",
         .caseSensitive = false, .aliases = "dot gv"},
        {.id = "protobuf", .displayName = "Protocol Buffers",
         .keywords = R"(
            syntax edition package import public weak option message enum service rpc returns
            stream oneof map repeated optional required reserved extend extensions to max true
            false group)",
         .builtins = R"(
            double float int32 int64 uint32 uint64 sint32 sint64 fixed32 fixed64 sfixed32 sfixed64
            bool string bytes)",
         .lineComments = slashes, .blockComments = slashStar, .aliases = "proto proto3"},
        {.id = "terraform", .displayName = "Terraform",
         .keywords = R"(
            resource data variable output locals module provider terraform for_each count
            depends_on lifecycle dynamic content for in if true false null required_providers
            backend)",
         .builtins = "string number bool list map set object tuple any",
         .lineComments = {"#", "//"}, .blockComments = slashStar, .quotes = u"\"",
         .aliases = "tf hcl tfvars"},
        {.id = "nginx", .displayName = "nginx",
         .keywords = R"(
            server location listen server_name root index return rewrite proxy_pass include http
            events upstream if set try_files error_page access_log error_log worker_processes
            worker_connections ssl_certificate ssl_certificate_key add_header proxy_set_header gzip
            client_max_body_size alias default_type sendfile keepalive_timeout user pid)",
         .builtins = "on off", .lineComments = hashes, .attributePrefixes = u"$",
         .aliases = "nginxconf"},
        // The escape character is the backtick, so backslashes in strings are plain.
        {.id = "powershell", .displayName = "PowerShell",
         .keywords = R"(
            begin break catch class continue data define do dynamicparam else elseif end enum exit
            filter finally for foreach from function hidden if in param process return static
            switch throw trap try until using var while workflow)",
         .builtins = R"(
            string int long bool double decimal char byte array hashtable object psobject datetime
            void scriptblock pscustomobject)",
         .lineComments = hashes, .blockComments = {{"<#", "#>"}}, .escapes = false,
         .attributePrefixes = u"$", .caseSensitive = false, .aliases = "ps1 ps pwsh psm1 posh"},
        {.id = "vim", .displayName = "Vim Script",
         .keywords = R"(
            if else elseif endif while endwhile for endfor in function endfunction func endfunc
            return call let unlet const set setlocal map nmap vmap imap noremap nnoremap vnoremap
            inoremap autocmd augroup command execute echo echom try catch finally endtry throw
            break continue silent normal syntax highlight def enddef var export import abort
            range dict closure)",
         .lineComments = {"\""}, .aliases = "vimscript viml vimrc"},
        {.id = "zig", .displayName = "Zig",
         .keywords = R"(
            addrspace align allowzero and anyframe anytype asm async await break callconv catch
            comptime const continue defer else enum errdefer error export extern fn for if inline
            linksection noalias noinline nosuspend opaque or orelse packed pub resume return struct
            suspend switch test threadlocal try union unreachable usingnamespace var volatile while
            true false null undefined)",
         .builtins = R"(
            i8 i16 i32 i64 i128 isize u8 u16 u32 u64 u128 usize f16 f32 f64 f80 f128 bool void
            noreturn type anyerror anyopaque comptime_int comptime_float c_int c_uint c_long
            c_char)",
         .lineComments = slashes, .attributePrefixes = u"@"},
        {.id = "elm", .displayName = "Elm",
         .keywords = "if then else case of let in type alias module exposing import as port where",
         .builtins = R"(
            Int Float Bool String Char List Maybe Result Cmd Sub Html Never Just Nothing Ok Err
            True False)",
         .lineComments = {"--"}, .blockComments = {{"{-", "-}"}}},
        {.id = "ocaml", .displayName = "OCaml",
         .keywords = R"(
            and as assert begin class constraint do done downto else end exception external false
            for fun function functor if in include inherit initializer lazy let match method
            module mutable new nonrec object of open or private rec sig struct then to true try
            type val virtual when while with land lor lxor lsl lsr asr mod)",
         .builtins = R"(
            int float bool char string unit list array option ref exn bytes int32 int64 nativeint
            format Some None)",
         .blockComments = {{"(*", "*)"}}, .attributePrefixes = u"'", .aliases = "ml mli"},
        {.id = "clojure", .displayName = "Clojure",
         .keywords = R"(
            def defn defmacro defprotocol defrecord deftype defmulti defmethod fn let letfn if
            when cond condp case do loop recur try catch finally throw ns require import use
            quote var new and or not nil true false doseq dotimes for)",
         .lineComments = {";"}, .quotes = u"\"", .attributePrefixes = u":",
         .aliases = "clj cljs cljc edn"},
        {.id = "gdscript", .displayName = "GDScript",
         .keywords = R"(
            if elif else for while match break continue pass return class class_name extends is
            in as self signal func static const enum var onready export setget breakpoint preload
            await yield assert true false null and or not super tool)",
         .builtins = R"(
            int float bool void String Vector2 Vector3 Vector4 Color Array Dictionary Node Node2D
            Node3D Object Resource Rect2 Transform2D Transform3D Basis Quaternion PackedScene
            StringName NodePath Callable Signal)",
         .lineComments = hashes, .attributePrefixes = u"@$", .aliases = "gd godot"},
        {.id = "haml", .displayName = "Haml",
         .keywords = R"(
            if else elsif end do unless case when while until begin rescue ensure yield nil true
            false self def)",
         .lineComments = {"-#"}, .attributePrefixes = u"%#."},
        {.id = "jinja", .displayName = "Jinja",
         .keywords = R"(
            block endblock extends include import from macro endmacro call endcall filter
            endfilter for endfor if elif else endif set endset with endwith raw endraw autoescape
            endautoescape in is not and or true false none True False None loop super self
            recursive scoped ignore missing context without)",
         .blockComments = {{"{#", "#}"}}, .aliases = "jinja2 j2 django twig nunjucks"},
        {.id = "asm", .displayName = "Assembly",
         .keywords = R"(
            mov movzx movsx lea push pop call ret jmp je jne jz jnz jg jge jl jle ja jae jb jbe
            cmp test add sub mul imul div idiv inc dec and or xor not neg shl shr sal sar rol ror
            nop int syscall leave enter loop section global extern db dw dd dq resb resw resd resq
            equ times align bits default rel ldr str stp ldp b bl bx blr beq bne cbz cbnz adr adrp)",
         .builtins = R"(
            rax rbx rcx rdx rsi rdi rbp rsp r8 r9 r10 r11 r12 r13 r14 r15 eax ebx ecx edx esi edi
            ebp esp ax bx cx dx si di bp sp al bl cl dl ah bh ch dh rip cs ds es fs gs ss xmm0
            xmm1 xmm2 xmm3 x0 x1 x2 x3 x29 x30 w0 w1 w2 lr pc byte word dword qword ptr)",
         .lineComments = {";", "//"}, .blockComments = slashStar, .attributePrefixes = u"%.",
         .caseSensitive = false, .aliases = "assembly nasm x86asm s armasm gas"},
        {.id = "cobol", .displayName = "COBOL",
         .keywords = R"(
            identification division program id environment configuration section data working
            storage linkage file procedure pic picture value values perform until varying end if
            else display accept move to compute add subtract multiply divide giving stop run
            goback call using evaluate when other not and or is equal greater less than then copy
            fd select assign open close read write rewrite input output exec zero zeros space
            spaces true false of by from into thru through occurs times redefines function)",
         .builtins = "binary comp packed-decimal numeric alphabetic",
         .lineComments = {"*>"}, .escapes = false, .caseSensitive = false,
         .aliases = "cbl cob"},
        {.id = "fortran", .displayName = "Fortran",
         .keywords = R"(
            program end module contains use implicit none subroutine function call return if then
            else elseif endif do enddo while select case default stop print write read open close
            allocate deallocate intent in out inout parameter dimension allocatable pointer target
            type interface public private result recursive pure elemental where forall exit cycle
            goto continue format)",
         .builtins = "integer real double precision complex character logical",
         .lineComments = {"!"}, .escapes = false, .caseSensitive = false,
         .aliases = "f90 f95 f03 f08 f for"},
        {.id = "pascal", .displayName = "Pascal",
         .keywords = R"(
            and array as asm begin case class const constructor destructor div do downto else end
            except exports file finalization finally for function goto if implementation in
            inherited initialization inline interface is label library mod nil not object of or
            packed procedure program property raise record repeat set shl shr then threadvar to
            try type unit until uses var while with xor true false result self)",
         .builtins = R"(
            integer cardinal shortint smallint longint int64 byte word longword real single double
            extended currency boolean char string ansistring widestring pointer variant)",
         .lineComments = slashes, .blockComments = {{"{", "}"}, {"(*", "*)"}}, .quotes = u"'",
         .escapes = false, .caseSensitive = false, .aliases = "pas delphi objectpascal"},
        {.id = "ada", .displayName = "Ada",
         .keywords = R"(
            abort abs abstract accept access aliased all and array at begin body case constant
            declare delay delta digits do else elsif end entry exception exit for function generic
            goto if in interface is limited loop mod new not null of or others out overriding
            package pragma private procedure protected raise range record rem renames requeue
            return reverse select separate some subtype synchronized tagged task terminate then
            type until use when while with xor true false)",
         .builtins = R"(
            integer natural positive float long_float boolean character string wide_string
            duration)",
         .lineComments = {"--"}, .quotes = u"\"", .escapes = false, .caseSensitive = false,
         .aliases = "adb ads"},
        {.id = "crystal", .displayName = "Crystal",
         .keywords = R"(
            abstract alias annotation as asm begin break case class def do else elsif end ensure
            enum extend false for fun if in include instance_sizeof is_a lib macro module next nil
            of out pointerof private protected require rescue return select self sizeof struct
            super then true type typeof uninitialized union unless until verbatim when while with
            yield)",
         .builtins = R"(
            Int8 Int16 Int32 Int64 UInt8 UInt16 UInt32 UInt64 Float32 Float64 String Char Bool Nil
            Symbol Array Hash Tuple NamedTuple Proc Range Set Pointer Slice)",
         .lineComments = hashes, .quotes = u"\"'`", .attributePrefixes = u"@:$",
         .aliases = "cr"},
        // Nim compares identifiers without regard to case (past the first letter).
        {.id = "nim", .displayName = "Nim",
         .keywords = R"(
            addr and as asm bind block break case cast concept const continue converter defer
            discard distinct div do elif else end enum except export finally for from func if
            import in include interface is isnot iterator let macro method mixin mod nil not notin
            object of or out proc ptr raise ref return shl shr static template try tuple type
            using var when while xor yield true false result)",
         .builtins = R"(
            int int8 int16 int32 int64 uint uint8 uint16 uint32 uint64 float float32 float64 bool
            char string cstring pointer seq array set openarray void auto untyped typed range)",
         .lineComments = hashes, .blockComments = {{"#[", "]#"}}, .caseSensitive = false,
         .aliases = "nims nimble"},
        {.id = "julia", .displayName = "Julia",
         .keywords = R"(
            baremodule begin break catch const continue do else elseif end export false finally
            for function global if import let local macro module quote return struct true try
            using while abstract mutable primitive type where in isa nothing missing)",
         .builtins = R"(
            Int Int8 Int16 Int32 Int64 Int128 UInt UInt8 UInt16 UInt32 UInt64 Float16 Float32
            Float64 Bool Char String Symbol Vector Matrix Array Dict Set Tuple Nothing Any Union
            Real Integer Number AbstractString AbstractArray Complex Rational)",
         .lineComments = hashes, .blockComments = {{"#=", "=#"}}, .attributePrefixes = u"@':",
         .aliases = "jl"},
        {.id = "applescript", .displayName = "AppleScript",
         .keywords = R"(
            about above after against and apart around as aside at back before beginning behind
            below beneath beside between but by considering contain contains continue copy div
            does eighth else end equal equals error every exit false fifth first for fourth from
            front get given global if ignoring in instead into is it its last local me middle mod
            my ninth not of on onto or out over prop property put ref reference repeat return
            returning script second set seventh since sixth some tell tenth that the then third
            through thru timeout times to transaction true try until where while whose with
            without)",
         .builtins = R"(
            alias application boolean class constant date file integer list number real record
            string text)",
         .lineComments = {"--", "#"}, .blockComments = {{"(*", "*)"}}, .quotes = u"\"",
         .caseSensitive = false, .aliases = "osascript scpt"},
        {.id = "arduino", .displayName = "Arduino", .keywords = merged({cKeywords, cppKeywords}),
         .builtins = merged({cTypes, cppTypes, "boolean byte word String"}),
         .lineComments = slashes, .blockComments = slashStar, .attributePrefixes = u"#",
         .aliases = "ino"},
        {.id = "cmake", .displayName = "CMake",
         .keywords = R"(
            if elseif else endif foreach endforeach while endwhile function endfunction macro
            endmacro return break continue block endblock and or not in matches strequal equal
            less greater defined)",
         .lineComments = hashes, .blockComments = {{"#[[", "]]"}}, .quotes = u"\"",
         .caseSensitive = false, .aliases = "cmakelists"},
        {.id = "nix", .displayName = "Nix",
         .keywords = "let in with rec inherit if then else assert or import true false null builtins",
         .lineComments = hashes, .blockComments = slashStar, .quotes = u"\""},
        {.id = "prisma", .displayName = "Prisma",
         .keywords = "model enum datasource generator type view",
         .builtins = "String Int BigInt Float Decimal Boolean DateTime Json Bytes Unsupported",
         .lineComments = slashes, .quotes = u"\"", .attributePrefixes = u"@"},
        {.id = "scheme", .displayName = "Scheme",
         .keywords = R"(
            define lambda let letrec if cond case else and or not begin do quote quasiquote
            unquote when unless delay syntax-rules)",
         .lineComments = {";"}, .blockComments = {{"#|", "|#"}}, .quotes = u"\"",
         .aliases = "scm racket rkt ss"},
        {.id = "solidity", .displayName = "Solidity",
         .keywords = R"(
            pragma solidity import contract interface library abstract is function modifier event
            emit struct enum mapping public private internal external pure view payable constant
            immutable returns return if else for while do break continue new delete try catch
            revert require assert using memory storage calldata override virtual constructor
            fallback receive anonymous indexed unchecked assembly true false this super type error)",
         .builtins = R"(
            address bool string bytes byte int uint int8 int16 int32 int64 int128 int256 uint8
            uint16 uint32 uint64 uint128 uint256 bytes4 bytes32 fixed ufixed)",
         .lineComments = slashes, .blockComments = slashStar, .aliases = "sol"},
        {.id = "tcl", .displayName = "Tcl",
         .keywords = R"(
            proc set if else elseif for foreach while switch return break continue expr puts
            namespace variable global upvar uplevel catch error eval source package incr append
            lappend lindex llength list string array dict info regexp regsub open close gets after)",
         .lineComments = hashes, .quotes = u"\"", .attributePrefixes = u"$", .aliases = "tk"},
        {.id = "v", .displayName = "V",
         .keywords = R"(
            as asm assert atomic break const continue defer else enum false fn for go goto if
            import in interface is isreftype lock match module mut none or pub return rlock select
            shared sizeof spawn static struct true type typeof union unsafe volatile __global
            __offsetof)",
         .builtins = R"(
            bool string i8 i16 int i64 i128 u8 u16 u32 u64 u128 rune f32 f64 isize usize voidptr
            any map)",
         .lineComments = slashes, .blockComments = slashStar, .quotes = u"\"'`",
         .attributePrefixes = u"@", .aliases = "vlang"},
    };
}

SyntaxLanguage languageFrom(const Entry& entry)
{
    SyntaxLanguage language;
    language.id = QString::fromUtf8(entry.id);
    language.displayName = QString::fromUtf8(entry.displayName);
    language.keywords = WordSet(QString::fromStdString(entry.keywords));
    language.builtins = WordSet(QString::fromStdString(entry.builtins));
    for (const char* marker : entry.lineComments)
        language.lineComments.push_back(QString::fromUtf8(marker));
    for (const auto& [open, close] : entry.blockComments)
        language.blockComments.push_back({QString::fromUtf8(open), QString::fromUtf8(close)});
    for (const char16_t* unit = entry.quotes; *unit; ++unit)
        language.quotes.push_back(*unit);
    language.escapes = entry.escapes;
    language.keyValuePairs = entry.keyValuePairs;
    language.dialect = entry.dialect;
    for (const char16_t* unit = entry.attributePrefixes; *unit; ++unit)
        language.attributePrefixes.push_back(*unit);
    language.caseSensitive = entry.caseSensitive;
    return language;
}

struct Catalog {
    std::vector<SyntaxLanguage> languages;
    QHash<QString, QString> aliases;
    QHash<QString, const SyntaxLanguage*> byID;
    QStringList identifiers;

    Catalog()
    {
        for (const Entry& entry : entries()) {
            SyntaxLanguage language = languageFrom(entry);
            // Lists of a language that ignores case are looked up in lower case.
            if (!language.caseSensitive) {
                language.keywords = language.keywords.lowercased();
                language.builtins = language.builtins.lowercased();
            }
            for (QStringView alias : QString::fromUtf8(entry.aliases).split(u' ', Qt::SkipEmptyParts))
                aliases.insert(alias.toString(), language.id);
            languages.push_back(std::move(language));
        }
        // The table never changes after this, so pointers into it stay valid.
        for (const SyntaxLanguage& language : languages)
            byID.insert(language.id.toLower(), &language);
        QSet<QString> names;
        for (const SyntaxLanguage& language : languages)
            names.insert(language.id);
        for (auto it = aliases.cbegin(); it != aliases.cend(); ++it)
            names.insert(it.key());
        identifiers = QStringList(names.begin(), names.end());
        identifiers.sort();
    }
};

const Catalog& catalog()
{
    static const Catalog built;
    return built;
}

}

const SyntaxLanguage& SyntaxLanguageCatalog::plain() { return catalog().languages[0]; }
const SyntaxLanguage& SyntaxLanguageCatalog::swift() { return catalog().languages[1]; }
const SyntaxLanguage& SyntaxLanguageCatalog::python() { return catalog().languages[2]; }
const SyntaxLanguage& SyntaxLanguageCatalog::javascript() { return catalog().languages[3]; }
const SyntaxLanguage& SyntaxLanguageCatalog::typescript() { return catalog().languages[4]; }
const SyntaxLanguage& SyntaxLanguageCatalog::json() { return catalog().languages[5]; }
const SyntaxLanguage& SyntaxLanguageCatalog::yaml() { return catalog().languages[6]; }
const SyntaxLanguage& SyntaxLanguageCatalog::toml() { return catalog().languages[7]; }
const SyntaxLanguage& SyntaxLanguageCatalog::html() { return catalog().languages[8]; }
const SyntaxLanguage& SyntaxLanguageCatalog::css() { return catalog().languages[9]; }
const SyntaxLanguage& SyntaxLanguageCatalog::shell() { return catalog().languages[10]; }
const SyntaxLanguage& SyntaxLanguageCatalog::ruby() { return catalog().languages[11]; }
const SyntaxLanguage& SyntaxLanguageCatalog::go() { return catalog().languages[12]; }
const SyntaxLanguage& SyntaxLanguageCatalog::rust() { return catalog().languages[13]; }
const SyntaxLanguage& SyntaxLanguageCatalog::java() { return catalog().languages[14]; }
const SyntaxLanguage& SyntaxLanguageCatalog::kotlin() { return catalog().languages[15]; }
const SyntaxLanguage& SyntaxLanguageCatalog::clang() { return catalog().languages[16]; }
const SyntaxLanguage& SyntaxLanguageCatalog::cpp() { return catalog().languages[17]; }
const SyntaxLanguage& SyntaxLanguageCatalog::objectiveC() { return catalog().languages[18]; }
const SyntaxLanguage& SyntaxLanguageCatalog::sql() { return catalog().languages[19]; }
const SyntaxLanguage& SyntaxLanguageCatalog::php() { return catalog().languages[20]; }
const SyntaxLanguage& SyntaxLanguageCatalog::dart() { return catalog().languages[21]; }
const SyntaxLanguage& SyntaxLanguageCatalog::lua() { return catalog().languages[22]; }
const SyntaxLanguage& SyntaxLanguageCatalog::perl() { return catalog().languages[23]; }
const SyntaxLanguage& SyntaxLanguageCatalog::rlang() { return catalog().languages[24]; }
const SyntaxLanguage& SyntaxLanguageCatalog::haskell() { return catalog().languages[25]; }
const SyntaxLanguage& SyntaxLanguageCatalog::elixir() { return catalog().languages[26]; }
const SyntaxLanguage& SyntaxLanguageCatalog::erlang() { return catalog().languages[27]; }
const SyntaxLanguage& SyntaxLanguageCatalog::scala() { return catalog().languages[28]; }
const SyntaxLanguage& SyntaxLanguageCatalog::dockerfile() { return catalog().languages[29]; }
const SyntaxLanguage& SyntaxLanguageCatalog::makefile() { return catalog().languages[30]; }
const SyntaxLanguage& SyntaxLanguageCatalog::ini() { return catalog().languages[31]; }
const SyntaxLanguage& SyntaxLanguageCatalog::diff() { return catalog().languages[32]; }
const SyntaxLanguage& SyntaxLanguageCatalog::latex() { return catalog().languages[33]; }
const SyntaxLanguage& SyntaxLanguageCatalog::markdown() { return catalog().languages[34]; }
const SyntaxLanguage& SyntaxLanguageCatalog::mermaid() { return catalog().languages[35]; }
const SyntaxLanguage& SyntaxLanguageCatalog::graphviz() { return catalog().languages[36]; }
const SyntaxLanguage& SyntaxLanguageCatalog::protobuf() { return catalog().languages[37]; }
const SyntaxLanguage& SyntaxLanguageCatalog::terraform() { return catalog().languages[38]; }
const SyntaxLanguage& SyntaxLanguageCatalog::nginx() { return catalog().languages[39]; }
const SyntaxLanguage& SyntaxLanguageCatalog::powershell() { return catalog().languages[40]; }
const SyntaxLanguage& SyntaxLanguageCatalog::vim() { return catalog().languages[41]; }
const SyntaxLanguage& SyntaxLanguageCatalog::zig() { return catalog().languages[42]; }
const SyntaxLanguage& SyntaxLanguageCatalog::elm() { return catalog().languages[43]; }
const SyntaxLanguage& SyntaxLanguageCatalog::ocaml() { return catalog().languages[44]; }
const SyntaxLanguage& SyntaxLanguageCatalog::clojure() { return catalog().languages[45]; }
const SyntaxLanguage& SyntaxLanguageCatalog::gdscript() { return catalog().languages[46]; }
const SyntaxLanguage& SyntaxLanguageCatalog::haml() { return catalog().languages[47]; }
const SyntaxLanguage& SyntaxLanguageCatalog::jinja() { return catalog().languages[48]; }
const SyntaxLanguage& SyntaxLanguageCatalog::assembly() { return catalog().languages[49]; }
const SyntaxLanguage& SyntaxLanguageCatalog::cobol() { return catalog().languages[50]; }
const SyntaxLanguage& SyntaxLanguageCatalog::fortran() { return catalog().languages[51]; }
const SyntaxLanguage& SyntaxLanguageCatalog::pascal() { return catalog().languages[52]; }
const SyntaxLanguage& SyntaxLanguageCatalog::ada() { return catalog().languages[53]; }
const SyntaxLanguage& SyntaxLanguageCatalog::crystal() { return catalog().languages[54]; }
const SyntaxLanguage& SyntaxLanguageCatalog::nim() { return catalog().languages[55]; }
const SyntaxLanguage& SyntaxLanguageCatalog::julia() { return catalog().languages[56]; }
const SyntaxLanguage& SyntaxLanguageCatalog::applescript() { return catalog().languages[57]; }
const SyntaxLanguage& SyntaxLanguageCatalog::arduino() { return catalog().languages[58]; }
const SyntaxLanguage& SyntaxLanguageCatalog::cmake() { return catalog().languages[59]; }
const SyntaxLanguage& SyntaxLanguageCatalog::nix() { return catalog().languages[60]; }
const SyntaxLanguage& SyntaxLanguageCatalog::prisma() { return catalog().languages[61]; }
const SyntaxLanguage& SyntaxLanguageCatalog::scheme() { return catalog().languages[62]; }
const SyntaxLanguage& SyntaxLanguageCatalog::solidity() { return catalog().languages[63]; }
const SyntaxLanguage& SyntaxLanguageCatalog::tcl() { return catalog().languages[64]; }
const SyntaxLanguage& SyntaxLanguageCatalog::vlang() { return catalog().languages[65]; }

const std::vector<SyntaxLanguage>& SyntaxLanguageCatalog::all() { return catalog().languages; }

const QHash<QString, QString>& SyntaxLanguageCatalog::aliases() { return catalog().aliases; }

const QStringList& SyntaxLanguageCatalog::identifiers() { return catalog().identifiers; }

const QHash<QString, const SyntaxLanguage*>& SyntaxLanguageCatalog::byID()
{
    return catalog().byID;
}

const SyntaxLanguage* SyntaxLanguageCatalog::named(QStringView name)
{
    return catalog().byID.value(name.toString().toLower(), nullptr);
}

const SyntaxLanguage& SyntaxLanguageCatalog::language(QStringView infoString)
{
    // The first word, cut also at "," and braces so that "rust,ignore", "{.python}" and
    // "{r setup}" name their language.
    QStringView word = infoString.trimmed();
    if (word.startsWith(u'{'))
        word = word.sliced(1);
    if (word.startsWith(u'.'))
        word = word.sliced(1);
    for (qsizetype i = 0; i < word.size(); ++i) {
        const QChar unit = word[i];
        if (unit.isSpace() || unit == u',' || unit == u'{' || unit == u'}') {
            word = word.first(i);
            break;
        }
    }
    const QString name = word.toString().toLower();
    if (const SyntaxLanguage* found = named(name))
        return *found;
    const auto alias = catalog().aliases.constFind(name);
    if (alias != catalog().aliases.cend()) {
        if (const SyntaxLanguage* found = named(*alias))
            return *found;
    }
    return plain();
}

}
