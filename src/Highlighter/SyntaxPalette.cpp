#include "Highlighter/SyntaxPalette.h"

namespace velmo::highlighter {

SyntaxPalette SyntaxPalette::forAppearance(Appearance appearance)
{
    if (appearance == Appearance::dark) {
        return {
            .plain = {0xd4d4d4ff},
            .keyword = {0xff7ab2ff},
            .type = {0x4ec9b0ff},
            .function = {0x82aaffff},
            .string = {0xff8170ff},
            .number = {0xd9c97cff},
            .comment = {0x939da8ff},
            .attribute = {0xe5c07bff},
            .constant = {0xd2a8ffff},
            .operatorSign = {0xc0c5ceff},
            .tag = {0x7ee787ff},
            .insertion = {0x56d364ff},
            .deletion = {0xff7b72ff},
        };
    }
    return {
        .plain = {0x1f2328ff},
        .keyword = {0xa626a4ff},
        .type = {0x0b7261ff},
        .function = {0x316c9aff},
        .string = {0xb3261eff},
        .number = {0x1c00cfff},
        .comment = {0x5f6b77ff},
        .attribute = {0x8a5a00ff},
        .constant = {0x7a3e9dff},
        .operatorSign = {0x4b5563ff},
        .tag = {0x18794eff},
        .insertion = {0x116329ff},
        .deletion = {0xa40e26ff},
    };
}

SyntaxColor SyntaxPalette::color(SyntaxTokenKind kind) const
{
    switch (kind) {
    case SyntaxTokenKind::keyword:
        return keyword;
    case SyntaxTokenKind::type:
        return type;
    case SyntaxTokenKind::function:
        return function;
    case SyntaxTokenKind::string:
        return string;
    case SyntaxTokenKind::number:
        return number;
    case SyntaxTokenKind::comment:
        return comment;
    case SyntaxTokenKind::attribute:
        return attribute;
    case SyntaxTokenKind::constant:
        return constant;
    case SyntaxTokenKind::operatorSign:
        return operatorSign;
    case SyntaxTokenKind::tag:
        return tag;
    case SyntaxTokenKind::insertion:
        return insertion;
    case SyntaxTokenKind::deletion:
        return deletion;
    }
    return plain;
}

}
