#pragma once

#include <QLatin1StringView>
#include <array>

namespace velmo::highlighter {

enum class SyntaxTokenKind {
    keyword,
    type,
    function,
    string,
    number,
    comment,
    attribute,
    constant,
    operatorSign,
    tag,
    insertion,
    deletion,
};

inline constexpr int syntaxTokenKindCount = 12;

// The kind's name as written in code, for dumps and the command line.
[[nodiscard]] constexpr QLatin1StringView syntaxTokenKindName(SyntaxTokenKind kind)
{
    constexpr std::array<QLatin1StringView, syntaxTokenKindCount> names = {
        QLatin1StringView("keyword"),   QLatin1StringView("type"),
        QLatin1StringView("function"),  QLatin1StringView("string"),
        QLatin1StringView("number"),    QLatin1StringView("comment"),
        QLatin1StringView("attribute"), QLatin1StringView("constant"),
        QLatin1StringView("operatorSign"), QLatin1StringView("tag"),
        QLatin1StringView("insertion"), QLatin1StringView("deletion"),
    };
    return names[static_cast<int>(kind)];
}

}
