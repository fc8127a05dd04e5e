#pragma once

#include <QString>
#include <QUrl>
#include <optional>

namespace velmo::markdown {

// What a wiki link resolves to, for its hover card and its click.
struct MarkdownLinkResolution {
    std::optional<QString> title, subtitle;
    std::optional<QUrl> url;
    std::optional<QString> anchor, badge;
    bool exists = false;

    [[nodiscard]] static MarkdownLinkResolution missing() { return {}; }
    friend bool operator==(const MarkdownLinkResolution&, const MarkdownLinkResolution&) = default;
};

}
