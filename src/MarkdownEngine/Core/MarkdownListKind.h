#pragma once

#include <QtGlobal>
#include <variant>

namespace velmo::markdown {

namespace list_kind {
struct Bullet {
    char16_t character = u'-';
    bool operator==(const Bullet&) const = default;
};
struct Ordered {
    qint64 number = 1; // digits are unlimited; a number that does not fit is 1
    char16_t delimiter = u'.';
    bool operator==(const Ordered&) const = default;
};
}

using MarkdownListKind = std::variant<list_kind::Bullet, list_kind::Ordered>;

}
