#pragma once

#include "MarkdownEngine/Configuration/EmbeddedImageInfo.h"

#include <QString>
#include <optional>

namespace velmo::markdown {

class DiagramImageRenderer {
public:
    virtual ~DiagramImageRenderer() = default;
    // `kind` is the diagram kind's name ("mermaid").
    [[nodiscard]] virtual std::optional<EmbeddedImageInfo> render(const QString& source, const QString& kind) = 0;
};

class NoOpDiagramImageRenderer final : public DiagramImageRenderer {
public:
    std::optional<EmbeddedImageInfo> render(const QString&, const QString&) override { return std::nullopt; }
};

}
