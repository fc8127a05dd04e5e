#pragma once

#include <QString>
#include <exception>

namespace velmo::editor {

// A failure to read or write a note, with the sentence the user sees.
class MarkdownFileError : public std::exception {
public:
    enum class Kind { notWritable, invalidUTF8, missing, invalidName, notDownloaded, io };

    static MarkdownFileError notWritable(const QString& name) { return {Kind::notWritable, name}; }
    static MarkdownFileError invalidUTF8() { return {Kind::invalidUTF8, {}}; }
    static MarkdownFileError missing() { return {Kind::missing, {}}; }
    static MarkdownFileError invalidName() { return {Kind::invalidName, {}}; }
    static MarkdownFileError notDownloaded() { return {Kind::notDownloaded, {}}; }
    // What the system said when a read or write failed for another reason.
    static MarkdownFileError io(const QString& description) { return {Kind::io, description}; }

    Kind kind() const { return m_kind; }
    // The localized description.
    QString message() const;
    const char* what() const noexcept override { return "MarkdownFileError"; }

private:
    MarkdownFileError(Kind kind, QString detail) : m_kind(kind), m_detail(std::move(detail)) {}

    Kind m_kind;
    QString m_detail;
};

}
