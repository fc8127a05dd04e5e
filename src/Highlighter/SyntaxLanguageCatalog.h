#pragma once

#include "Highlighter/SyntaxLanguage.h"

#include <QHash>
#include <QStringList>
#include <QStringView>
#include <vector>

namespace velmo::highlighter {

// Every language the scanner knows, built once on first use (thread-safe) and never changed.
class SyntaxLanguageCatalog {
public:
    SyntaxLanguageCatalog() = delete;

    [[nodiscard]] static const SyntaxLanguage& plain();
    [[nodiscard]] static const SyntaxLanguage& swift();
    [[nodiscard]] static const SyntaxLanguage& python();
    [[nodiscard]] static const SyntaxLanguage& javascript();
    [[nodiscard]] static const SyntaxLanguage& typescript();
    [[nodiscard]] static const SyntaxLanguage& json();
    [[nodiscard]] static const SyntaxLanguage& yaml();
    [[nodiscard]] static const SyntaxLanguage& toml();
    [[nodiscard]] static const SyntaxLanguage& html();
    [[nodiscard]] static const SyntaxLanguage& css();
    [[nodiscard]] static const SyntaxLanguage& shell();
    [[nodiscard]] static const SyntaxLanguage& ruby();
    [[nodiscard]] static const SyntaxLanguage& go();
    [[nodiscard]] static const SyntaxLanguage& rust();
    [[nodiscard]] static const SyntaxLanguage& java();
    [[nodiscard]] static const SyntaxLanguage& kotlin();
    [[nodiscard]] static const SyntaxLanguage& clang();
    [[nodiscard]] static const SyntaxLanguage& cpp();
    [[nodiscard]] static const SyntaxLanguage& objectiveC();
    [[nodiscard]] static const SyntaxLanguage& sql();
    [[nodiscard]] static const SyntaxLanguage& php();
    [[nodiscard]] static const SyntaxLanguage& dart();
    [[nodiscard]] static const SyntaxLanguage& lua();
    [[nodiscard]] static const SyntaxLanguage& perl();
    [[nodiscard]] static const SyntaxLanguage& rlang();
    [[nodiscard]] static const SyntaxLanguage& haskell();
    [[nodiscard]] static const SyntaxLanguage& elixir();
    [[nodiscard]] static const SyntaxLanguage& erlang();
    [[nodiscard]] static const SyntaxLanguage& scala();
    [[nodiscard]] static const SyntaxLanguage& dockerfile();
    [[nodiscard]] static const SyntaxLanguage& makefile();
    [[nodiscard]] static const SyntaxLanguage& ini();
    [[nodiscard]] static const SyntaxLanguage& diff();
    [[nodiscard]] static const SyntaxLanguage& latex();
    [[nodiscard]] static const SyntaxLanguage& markdown();
    [[nodiscard]] static const SyntaxLanguage& mermaid();
    [[nodiscard]] static const SyntaxLanguage& graphviz();
    [[nodiscard]] static const SyntaxLanguage& protobuf();
    [[nodiscard]] static const SyntaxLanguage& terraform();
    [[nodiscard]] static const SyntaxLanguage& nginx();
    [[nodiscard]] static const SyntaxLanguage& powershell();
    [[nodiscard]] static const SyntaxLanguage& vim();
    [[nodiscard]] static const SyntaxLanguage& zig();
    [[nodiscard]] static const SyntaxLanguage& elm();
    [[nodiscard]] static const SyntaxLanguage& ocaml();
    [[nodiscard]] static const SyntaxLanguage& clojure();
    [[nodiscard]] static const SyntaxLanguage& gdscript();
    [[nodiscard]] static const SyntaxLanguage& haml();
    [[nodiscard]] static const SyntaxLanguage& jinja();
    [[nodiscard]] static const SyntaxLanguage& assembly(); // id "asm"; asm is a C++ keyword
    [[nodiscard]] static const SyntaxLanguage& cobol();
    [[nodiscard]] static const SyntaxLanguage& fortran();
    [[nodiscard]] static const SyntaxLanguage& pascal();
    [[nodiscard]] static const SyntaxLanguage& ada();
    [[nodiscard]] static const SyntaxLanguage& crystal();
    [[nodiscard]] static const SyntaxLanguage& nim();
    [[nodiscard]] static const SyntaxLanguage& julia();
    [[nodiscard]] static const SyntaxLanguage& applescript();
    [[nodiscard]] static const SyntaxLanguage& arduino();
    [[nodiscard]] static const SyntaxLanguage& cmake();
    [[nodiscard]] static const SyntaxLanguage& nix();
    [[nodiscard]] static const SyntaxLanguage& prisma();
    [[nodiscard]] static const SyntaxLanguage& scheme();
    [[nodiscard]] static const SyntaxLanguage& solidity();
    [[nodiscard]] static const SyntaxLanguage& tcl();
    [[nodiscard]] static const SyntaxLanguage& vlang();

    [[nodiscard]] static const std::vector<SyntaxLanguage>& all();
    // Other names a fence may use ("js", "c++", "yml"), mapped to ids.
    [[nodiscard]] static const QHash<QString, QString>& aliases();
    // Every name a fence may use, ids and aliases, sorted: what completion offers.
    [[nodiscard]] static const QStringList& identifiers();
    // Lower-cased id to its language in `all()`.
    [[nodiscard]] static const QHash<QString, const SyntaxLanguage*>& byID();

    // The language with this id, any case; null when there is none.
    [[nodiscard]] static const SyntaxLanguage* named(QStringView name);
    // The language of a fence's info string: its first word, trimmed and lower-cased, as an id
    // or an alias. Nothing or no match gives plain.
    [[nodiscard]] static const SyntaxLanguage& language(QStringView infoString);
};

}
