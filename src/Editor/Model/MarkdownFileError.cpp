#include "Editor/Model/MarkdownFileError.h"

#include <QCoreApplication>

namespace velmo::editor {

QString MarkdownFileError::message() const
{
    switch (m_kind) {
    case Kind::notWritable:
        return QCoreApplication::translate("Localized", "Velmo cannot write to %1.").arg(m_detail);
    case Kind::invalidUTF8:
        return QCoreApplication::translate("Localized", "This file is not text that Velmo can read.");
    case Kind::missing:
        return QCoreApplication::translate("Localized", "The file no longer exists.");
    case Kind::invalidName:
        return QCoreApplication::translate("Localized", "Choose a visible file or folder name without / or :.");
    case Kind::notDownloaded:
        return QCoreApplication::translate("Localized", "This note is still downloading from iCloud.");
    case Kind::io:
        return m_detail;
    }
    return {};
}

}
