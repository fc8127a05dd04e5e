#pragma once

#include "MarkdownEngine/Configuration/EmbeddedImageInfo.h"
#include "MarkdownEngine/Configuration/EmbeddedImageRequest.h"

#include <optional>

namespace velmo::markdown {

class EmbeddedImageProvider {
public:
    virtual ~EmbeddedImageProvider() = default;
    [[nodiscard]] virtual std::optional<EmbeddedImageInfo> image(const EmbeddedImageRequest& request) = 0;
    virtual void invalidate(const EmbeddedImageRequest& request) = 0;
};

class NoOpEmbeddedImageProvider final : public EmbeddedImageProvider {
public:
    std::optional<EmbeddedImageInfo> image(const EmbeddedImageRequest&) override { return std::nullopt; }
    void invalidate(const EmbeddedImageRequest&) override {}
};

}
