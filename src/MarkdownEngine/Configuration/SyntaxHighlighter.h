#pragma once

#include "MarkdownEngine/Configuration/MarkdownFontDescriptor.h"
#include "MarkdownEngine/Styling/MarkdownStyledText.h"

#include <QColor>
#include <QString>
#include <optional>

namespace velmo::markdown {

// Colours the code of fences. Runs off the main thread's critical path: the coordinator puts
// its results into the styler's request by code key.
class SyntaxHighlighter {
public:
    virtual ~SyntaxHighlighter() = default;
    [[nodiscard]] virtual MarkdownFontDescriptor codeFont() const = 0;
    [[nodiscard]] virtual QColor backgroundColor() const = 0;
    [[nodiscard]] virtual std::optional<MarkdownStyledText> highlightedCode(const QString& source,
                                                                            const std::optional<QString>& language) const = 0;
    // The type's name, the code font's family and size, and the background's value.
    [[nodiscard]] virtual QString fingerprint() const;

protected:
    [[nodiscard]] virtual QString typeName() const = 0;
};

class PlainTextSyntaxHighlighter final : public SyntaxHighlighter {
public:
    MarkdownFontDescriptor codeFont() const override;
    QColor backgroundColor() const override;
    std::optional<MarkdownStyledText> highlightedCode(const QString&, const std::optional<QString>&) const override
    {
        return std::nullopt;
    }

protected:
    QString typeName() const override { return QStringLiteral("PlainTextSyntaxHighlighter"); }
};

}
