#pragma once

#include "MarkdownEngine/Configuration/LatexRenderResult.h"

#include <QString>
#include <optional>

namespace velmo::markdown {

class LatexRenderer {
public:
    virtual ~LatexRenderer() = default;
    [[nodiscard]] virtual std::optional<LatexRenderResult> render(const QString& source, LatexRenderMode mode) = 0;
};

class NoOpLatexRenderer final : public LatexRenderer {
public:
    std::optional<LatexRenderResult> render(const QString&, LatexRenderMode) override { return std::nullopt; }
};

}
