#pragma once

#include <QString>
#include <exception>
#include <string>

namespace velmo::markdown {

// Why a registry could not be built; `description` is the user-facing text.
class DirectiveRegistryError : public std::exception {
public:
    enum class Kind { duplicateName, disabledName, emptyName };

    DirectiveRegistryError(Kind kind, QString name = {});

    Kind kind() const { return m_kind; }
    const QString& name() const { return m_name; }
    QString description() const;
    const char* what() const noexcept override { return m_what.c_str(); }

private:
    Kind m_kind;
    QString m_name;
    std::string m_what;
};

}
