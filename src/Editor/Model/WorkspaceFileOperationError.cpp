#include "Editor/Model/WorkspaceFileOperationError.h"

#include <QCoreApplication>

namespace velmo::editor {

QString WorkspaceFileOperationError::message() const
{
    switch (m_kind) {
    case Kind::outsideWorkspace:
        return QCoreApplication::translate("Localized", "Move notes within the open folder.");
    case Kind::notFolder:
        return QCoreApplication::translate("Localized", "Choose a folder as the destination.");
    case Kind::folderCycle:
        return QCoreApplication::translate("Localized", "A folder cannot be moved into itself or one of its subfolders.");
    case Kind::unsupportedFile:
        return QCoreApplication::translate("Localized", "Drop a Markdown document or a folder of notes.");
    }
    return {};
}

}
