#pragma once

#include <QSet>
#include <QString>

namespace velmo::markdown {

struct DirectiveRegistrySettings {
    bool keepsUnknownDirectives = true; // an unknown directive stays as text
    bool validatesArguments = true;
    QSet<QString> disabledNames;
    QSet<QString> extraNames; // accepted as directives without an implementation

    bool operator==(const DirectiveRegistrySettings&) const = default;
};

}
