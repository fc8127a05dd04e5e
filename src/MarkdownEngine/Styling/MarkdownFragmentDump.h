#pragma once

#include "MarkdownEngine/Styling/MarkdownEditorFragmentStore.h"

#include <QJsonObject>
#include <QString>

namespace velmo::markdown {

struct MarkdownEditorConfiguration;

// Text forms of what the styler decided, for the driver's dump and the command line.
class MarkdownFragmentDump {
public:
    MarkdownFragmentDump() = delete;

    // "config body=Family@15.0 h1=Family@28.5 bodyFontName=(none) bodySize=15.0"
    [[nodiscard]] static QString configLine(const MarkdownEditorConfiguration& config);
    // "  heading [0,8] p=5 hidden=false font=Family@28.5 bold ‹# Title›"
    [[nodiscard]] static QString fragmentLine(const MarkdownEditorFragment& fragment, const QString& text);
    // The config line, "fragments=" and the count, then one line per fragment; "\n" after each.
    [[nodiscard]] static QString section(const MarkdownEditorConfiguration& config,
                                         const MarkdownEditorFragmentStore& store, const QString& text);
    [[nodiscard]] static QString font(const MarkdownFontDescriptor& font);
    // "#rrggbbaa"
    [[nodiscard]] static QString color(QRgb argb);
    [[nodiscard]] static QJsonObject json(const MarkdownEditorFragment& fragment);
    [[nodiscard]] static QJsonObject json(const MarkdownStyledText::Run& run);

private:
    // "font", "foreground" and "attributes".
    static void addAttributes(QJsonObject& into, const MarkdownTextAttributes& attributes);
};

}
