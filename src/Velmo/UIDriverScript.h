#pragma once

#include <QString>
#include <QStringList>
#include <vector>

namespace velmo::app {

// One command of a driver script: "name:argument:rest". Only the second part is the argument;
// the third stays for the commands that read it (and keeps its own colons).
struct UIDriverCommand {
    QString text; // the command as written, trimmed
    QString name;
    QString argument;
    QString third;

    // The argument with the two-character sequences "\n" and "\t" made a line feed and a tab,
    // for the commands that take free text.
    [[nodiscard]] QString freeText() const { return unescaped(argument); }
    [[nodiscard]] static QString unescaped(const QString& text);
};

namespace UIDriverScript {

// Split at ";", each part trimmed, empty parts dropped. There is no escape for a literal ";".
[[nodiscard]] std::vector<UIDriverCommand> parse(const QString& script);
// At most three parts at ":", empty parts dropped (they do not count towards the three).
[[nodiscard]] UIDriverCommand command(const QString& text);

}

}
