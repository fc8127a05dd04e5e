#pragma once

#include <QString>
#include <QStringView>
#include <optional>

namespace velmo::markdown {

// The callout kinds a quote can announce with "[!NOTE]" and the like.
class MarkdownCallout {
public:
    enum Kind : unsigned char { note, tip, important, warning, caution };

    constexpr MarkdownCallout(Kind kind) : m_kind(kind) {}

    constexpr Kind kind() const { return m_kind; }
    [[nodiscard]] QString rawValue() const;   // "note"
    [[nodiscard]] QString title() const;      // "Note"
    [[nodiscard]] QString marker() const;     // "NOTE"
    [[nodiscard]] QString symbolName() const; // the icon's name

    // Reads the first "[...]" of a quote's text: "!" and a marker, ignoring case and blanks.
    [[nodiscard]] static std::optional<MarkdownCallout> detect(QStringView text);

    friend constexpr bool operator==(MarkdownCallout, MarkdownCallout) = default;

private:
    Kind m_kind;
};

}
