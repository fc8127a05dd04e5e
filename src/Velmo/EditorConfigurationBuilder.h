#pragma once

#include "MarkdownEngine/Configuration/MarkdownEditorConfiguration.h"

namespace velmo::editor {
class EditorSettings;
}

namespace velmo::app {

// The editor's configuration from the user's settings and the desktop's appearance.
class EditorConfigurationBuilder {
public:
    EditorConfigurationBuilder() = delete;

    [[nodiscard]] static markdown::MarkdownEditorConfiguration make(const editor::EditorSettings& settings, bool isDark);
};

}
