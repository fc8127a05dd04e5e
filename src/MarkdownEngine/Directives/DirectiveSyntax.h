#pragma once

#include "MarkdownEngine/Directives/DirectiveParameter.h"

#include <QString>
#include <optional>
#include <vector>

namespace velmo::markdown {

struct DirectiveSyntax {
    enum class Form : unsigned char { inline_, leaf, container };

    QString name;
    Form form = Form::leaf;
    std::optional<char16_t> marker;
    std::vector<DirectiveParameter> parameters;
    bool parsesBody = false;

    bool operator==(const DirectiveSyntax&) const = default;
};

}
