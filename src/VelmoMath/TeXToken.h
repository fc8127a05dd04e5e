#pragma once

#include <QStringView>
#include <QtGlobal>

namespace velmo::math {

// One lexical unit of a formula. `text` is the command name (without its backslash) or the
// character; it views the lexer's source, so tokens live no longer than that text.
struct TeXToken {
    enum class Kind : quint8 {
        command,
        character,
        openBrace,
        closeBrace,
        openBracket,
        closeBracket,
        supMark,
        subMark,
        alignment,
        rowBreak,
        whitespace,
    };

    Kind kind = Kind::whitespace;
    QStringView text;
    qsizetype start = 0; // UTF-16 offset of the token's first unit in the source

    [[nodiscard]] bool isCommand(QStringView name) const { return kind == Kind::command && text == name; }
};

}
