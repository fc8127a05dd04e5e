#pragma once

#include <QFont>
#include <QString>

namespace velmo::markdown {

// Where a directive is being styled. The code font family stands in for the editor theme,
// which is all a built-in directive asks of it.
struct DirectiveContext {
    QFont inheritedFont;
    QString codeFontFamily = QStringLiteral("monospace");
    bool isActive = false; // the caret is inside the directive
    char16_t marker = u':';
};

}
