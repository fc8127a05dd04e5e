#pragma once

#include <QString>
#include <exception>

namespace velmo::editor {

// A file operation on the workspace refused for where it would put things. Name and disk
// failures are MarkdownFileError.
class WorkspaceFileOperationError : public std::exception {
public:
    enum class Kind { outsideWorkspace, notFolder, folderCycle, unsupportedFile };

    explicit WorkspaceFileOperationError(Kind kind) : m_kind(kind) {}

    Kind kind() const { return m_kind; }
    // The localized description.
    QString message() const;
    const char* what() const noexcept override { return "WorkspaceFileOperationError"; }

private:
    Kind m_kind;
};

}
