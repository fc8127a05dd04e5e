#pragma once

#include <QString>
#include <optional>

namespace velmo::markdown {

struct EmbeddedImageRequest {
    QString name;
    std::optional<QString> id;
    std::optional<double> requestedWidth; // points
    friend bool operator==(const EmbeddedImageRequest&, const EmbeddedImageRequest&) = default;
};

}
