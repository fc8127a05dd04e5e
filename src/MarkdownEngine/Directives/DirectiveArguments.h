#pragma once

#include "MarkdownEngine/Core/MarkdownSourceRange.h"
#include "MarkdownEngine/Directives/DirectiveDiagnostic.h"
#include "MarkdownEngine/Directives/DirectiveSyntax.h"
#include "MarkdownEngine/Directives/DirectiveValue.h"

#include <QList>
#include <QMap>
#include <QString>
#include <optional>

namespace velmo::markdown {

// The typed arguments of one directive. Ranges are relative to the argument text. Empty Qt
// containers hold no allocation, so a block without arguments pays four pointers.
struct DirectiveArguments {
    QMap<QString, DirectiveValue> labeled;
    QList<DirectiveValue> positional;
    QList<DirectiveDiagnostic> diagnostics;
    QMap<QString, MarkdownSourceRange> ranges; // value range of each label, the first one written

    // Never fails: what does not fit the syntax becomes a diagnostic.
    [[nodiscard]] static DirectiveArguments parse(QStringView source, const DirectiveSyntax& syntax);

    [[nodiscard]] std::optional<DirectiveValue> operator[](const QString& label) const;
    [[nodiscard]] std::optional<QString> string(const QString& label) const;
    [[nodiscard]] std::optional<bool> boolean(const QString& label) const; // `bool` in the model
    [[nodiscard]] std::optional<double> number(const QString& label) const;
    [[nodiscard]] std::optional<double> number() const; // first positional value
    [[nodiscard]] std::optional<bool> boolean() const;  // first positional value
    // The `size` argument (or the first positional length), resolved against base.
    [[nodiscard]] std::optional<double> length(std::optional<double> base) const;

    bool operator==(const DirectiveArguments&) const = default;
};

}
