#pragma once

#include <QFont>
#include <QStringList>
#include <QString>
#include <functional>
#include <optional>
#include <variant>

namespace velmo::markdown {

// How a directive changes the font of its text; every part is optional.
struct DirectiveFontTransform {
    struct Absolute { double points = 0; };
    struct Scale { double factor = 1; };
    using Size = std::variant<Absolute, Scale>;

    struct Traits {
        std::optional<QFont::Weight> weight;
        std::optional<bool> italic;
    };

    std::optional<Size> size;
    std::optional<Traits> traits;
    std::optional<QString> familyName;
    std::function<QFont(const QFont&)> custom;

    // Size, then traits, then family, then the custom function.
    [[nodiscard]] QFont apply(const QFont& font) const;
    [[nodiscard]] bool isIdentity() const { return !size && !traits && !familyName && !custom; }
};

}
