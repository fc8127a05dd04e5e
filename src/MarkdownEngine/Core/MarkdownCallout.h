#pragma once

#include <QString>
#include <QStringView>
#include <array>
#include <optional>

namespace velmo::markdown {

// The kinds of callout a quote can open with, as in "> [!NOTE]".
enum class MarkdownCallout : unsigned char { note, tip, important, warning, caution };

namespace callout {
inline constexpr std::array<MarkdownCallout, 5> all{MarkdownCallout::note, MarkdownCallout::tip,
                                                    MarkdownCallout::important, MarkdownCallout::warning,
                                                    MarkdownCallout::caution};
// "note", "tip", ...
[[nodiscard]] QString rawValue(MarkdownCallout kind);
[[nodiscard]] QString title(MarkdownCallout kind);
// What stands between "[!" and "]": "NOTE", "TIP", ...
[[nodiscard]] QString marker(MarkdownCallout kind);
[[nodiscard]] QString symbolName(MarkdownCallout kind);
// The raw value or the marker, case ignored.
[[nodiscard]] std::optional<MarkdownCallout> fromName(QStringView name);
// The kind a quote's text opens with: the text between its first "[" and the "]" after it
// must be "!" and a marker, case ignored.
[[nodiscard]] std::optional<MarkdownCallout> detect(QStringView quoteText);
}

}
