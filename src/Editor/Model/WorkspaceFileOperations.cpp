// The changes the user makes to the folder itself. Every operation first decides everything
// that can be refused, then touches the disk in one step that is atomic or undone, then
// brings expansion, selection and order in step and rescans. Moves never replace an existing
// item (renameat2 with RENAME_NOREPLACE), and deleting only ever moves to the Trash.
#include "Editor/Model/Workspace.h"

#include "Editor/Model/MarkdownFileError.h"
#include "Editor/Model/NoteTitle.h"
#include "Editor/Model/WorkspaceFileOperationError.h"
#include "Editor/Model/WorkspaceTree.h"
#include "MarkdownEngine/Core/TextCharacters.h"

#include <QCoreApplication>
#include <QDesktopServices>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>

#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace velmo::editor {

using Kind = WorkspaceFileOperationError::Kind;

namespace {

QString systemFailure(const QString& path, const QString& action, int error)
{
    return QCoreApplication::translate("Localized", "“%1” could not be %2: %3.")
        .arg(QFileInfo(path).fileName(), action, QString::fromLocal8Bit(std::strerror(error)));
}

// Something stands at the path, a dangling symlink included.
bool occupied(const QString& path)
{
    struct stat st {};
    return ::lstat(QFile::encodeName(path).constData(), &st) == 0;
}

bool isRealDirectory(const QString& path)
{
    struct stat st {};
    return ::lstat(QFile::encodeName(path).constData(), &st) == 0 && S_ISDIR(st.st_mode);
}

bool isRegularFile(const QString& path)
{
    struct stat st {};
    return ::stat(QFile::encodeName(path).constData(), &st) == 0 && S_ISREG(st.st_mode);
}

// rename(2) that refuses to replace: a name taken between our check and the move is never
// overwritten. File systems without the flag fall back to check-then-rename.
void moveItem(const QString& from, const QString& to)
{
    const QByteArray source = QFile::encodeName(from);
    const QByteArray target = QFile::encodeName(to);
    if (::renameat2(AT_FDCWD, source.constData(), AT_FDCWD, target.constData(), RENAME_NOREPLACE) == 0)
        return;
    int error = errno;
    if (error == EINVAL || error == ENOSYS) {
        if (occupied(to))
            throw MarkdownFileError::notWritable(QFileInfo(to).fileName() + " already exists");
        if (::rename(source.constData(), target.constData()) == 0)
            return;
        error = errno;
    }
    if (error == EEXIST)
        throw MarkdownFileError::notWritable(QFileInfo(to).fileName() + " already exists");
    throw MarkdownFileError::io(systemFailure(from, QCoreApplication::translate("Localized", "moved"), error));
}

// Removes what this program itself just created. Iterative: a copied tree may be deep.
bool removeCreated(const QString& path)
{
    if (!isRealDirectory(path))
        return ::unlink(QFile::encodeName(path).constData()) == 0;
    return QDir(path).removeRecursively();
}

// Copies a file, or a folder with everything in it; symlinks are copied as links, never
// followed, so a link cycle cannot make the copy endless. Refuses an existing target. On
// failure whatever was copied is removed and the error thrown.
void copyItem(const QString& from, const QString& to)
{
    if (occupied(to))
        throw MarkdownFileError::notWritable(QFileInfo(to).fileName() + " already exists");
    bool created = false; // only what this call made is ever removed again
    const auto fail = [&](const QString& what, int error) {
        const QString description = systemFailure(what, QCoreApplication::translate("Localized", "copied"), error);
        if (created)
            removeCreated(to);
        throw MarkdownFileError::io(description);
    };
    const auto copyOne = [&](const QString& source, const QString& target) {
        const QFileInfo info(source);
        if (info.isSymLink()) {
            // The link's own text, so a relative link stays relative.
            char buffer[PATH_MAX];
            const ssize_t length = ::readlink(QFile::encodeName(source).constData(), buffer, sizeof buffer);
            if (length < 0 || size_t(length) == sizeof buffer)
                fail(source, length < 0 ? errno : ENAMETOOLONG);
            if (::symlink(QByteArray(buffer, length).constData(), QFile::encodeName(target).constData()) != 0)
                fail(target, errno);
        } else if (info.isDir()) {
            if (::mkdir(QFile::encodeName(target).constData(), 0777) != 0)
                fail(target, errno);
        } else if (isRegularFile(source)) {
            QFile file(source);
            if (!file.copy(target))
                fail(source, info.isReadable() ? EIO : EACCES);
        } // pipes, sockets and devices are left out: reading a pipe could block for ever
    };
    if (!QFileInfo(from).exists() && !QFileInfo(from).isSymLink())
        throw MarkdownFileError::missing();
    copyOne(from, to);
    created = true;
    if (!isRealDirectory(from))
        return;
    std::vector<std::pair<QString, QString>> pending{{from, to}};
    while (!pending.empty()) {
        const auto [source, target] = pending.back();
        pending.pop_back();
        const QFileInfoList entries = QDir(source).entryInfoList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
        for (const QFileInfo& entry : entries) {
            const QString destination = target + u'/' + entry.fileName();
            copyOne(entry.filePath(), destination);
            if (entry.isDir() && !entry.isSymLink())
                pending.emplace_back(entry.filePath(), destination);
        }
    }
}

QString parentPath(const QString& path)
{
    return QFileInfo(path).path();
}

QString lastComponent(const QString& path)
{
    return QFileInfo(path).fileName();
}

}

// The open folder itself is never renamed, copied or thrown away from inside itself.
static void refuseRoot(const std::optional<QUrl>& root, const QUrl& url)
{
    if (root && standardizedPath(*root) == standardizedPath(url))
        throw WorkspaceFileOperationError(Kind::outsideWorkspace);
}

QString Workspace::validName(const QString& name, const std::optional<QString>& fallback)
{
    const QStringView trimmed = markdown::chars::trimmed(name);
    if (trimmed.isEmpty() && fallback)
        return *fallback;
    if (trimmed.isEmpty() || name.startsWith(u'.') || trimmed.startsWith(u'.') || name.contains(u'/') || name.contains(u':'))
        throw MarkdownFileError::invalidName();
    for (QChar c : name) {
        if (c.category() == QChar::Other_Control || markdown::chars::isNewline(c.unicode()))
            throw MarkdownFileError::invalidName();
    }
    return name;
}

QString Workspace::folderOrFallback(const std::optional<QUrl>& in) const
{
    if (in)
        return standardizedPath(*in);
    if (m_root)
        return standardizedPath(*m_root);
    return QDir::homePath();
}

MarkdownFile Workspace::createNote(const QString& name, const std::optional<QUrl>& in)
{
    const QString folder = folderOrFallback(in);
    const QString valid = validName(name, QStringLiteral("Untitled"));
    QString base = valid;
    QString extension = QStringLiteral("md");
    const qsizetype dot = valid.lastIndexOf(u'.');
    if (dot > 0 && MarkdownFile::markdownExtensions.contains(valid.mid(dot + 1).toLower())) {
        base = valid.left(dot);
        extension = valid.mid(dot + 1);
    }
    // Claim the name with an exclusive create, so a file that appears meanwhile is never
    // overwritten; a lost race simply takes the next number.
    QString path;
    for (int attempt = 0;; ++attempt) {
        path = QDir::cleanPath(folder + u'/' + uniqueName(base, extension, QUrl::fromLocalFile(folder)));
        const int fd = ::open(QFile::encodeName(path).constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
        if (fd >= 0) {
            ::close(fd);
            break;
        }
        const int error = errno;
        if (error != EEXIST || attempt == 100)
            throw MarkdownFileError::io(systemFailure(path, QCoreApplication::translate("Localized", "created"), error));
    }
    const MarkdownFile file = MarkdownFile::atPath(path);
    try {
        file.write("# " + file.name() + "\n\n");
    } catch (...) {
        ::unlink(QFile::encodeName(path).constData());
        throw;
    }
    rescan();
    select(file.url());
    return file;
}

QUrl Workspace::createFolder(const QString& name, const std::optional<QUrl>& in)
{
    const QString folder = folderOrFallback(in);
    const QString valid = validName(name, QStringLiteral("New Folder"));
    if (!QDir().mkpath(folder))
        throw MarkdownFileError::notWritable(folder);
    QString path;
    for (int n = 1;; ++n) {
        path = QDir::cleanPath(folder + u'/' + (n == 1 ? valid : valid + u' ' + QString::number(n)));
        if (occupied(path))
            continue;
        if (::mkdir(QFile::encodeName(path).constData(), 0777) == 0)
            break;
        const int error = errno;
        if (error != EEXIST)
            throw MarkdownFileError::io(systemFailure(path, QCoreApplication::translate("Localized", "created"), error));
    }
    rescan();
    const QUrl url = QUrl::fromLocalFile(path);
    m_expanded.insert(path);
    expandAncestors(url);
    emit changed();
    return url;
}

QUrl Workspace::renameDestination(const QUrl& url, const QString& name) const
{
    refuseRoot(m_root, url);
    const QString valid = validName(name);
    const QString path = standardizedPath(url);
    QString fileName = valid;
    if (!QFileInfo(path).isDir()) {
        const QString oldExtension = QFileInfo(path).suffix();
        const qsizetype dot = valid.lastIndexOf(u'.');
        const bool typedMarkdown = dot > 0 && MarkdownFile::markdownExtensions.contains(valid.mid(dot + 1).toLower());
        if (!typedMarkdown && !oldExtension.isEmpty())
            fileName = valid + u'.' + oldExtension;
    }
    const QUrl destination = QUrl::fromLocalFile(parentPath(path) + u'/' + fileName);
    validateRenameDestination(url, destination);
    return destination;
}

void Workspace::validateRenameDestination(const QUrl& from, const QUrl& to)
{
    if (!from.isLocalFile() || !to.isLocalFile())
        throw WorkspaceFileOperationError(Kind::outsideWorkspace);
    const QString source = standardizedPath(from);
    const QString target = standardizedPath(to);
    if (parentPath(source) != parentPath(target))
        throw WorkspaceFileOperationError(Kind::outsideWorkspace);
    (void)validName(lastComponent(target));
    // A case-only change passes where the file system tells the two names apart.
    if (source != target && occupied(target))
        throw MarkdownFileError::notWritable(lastComponent(target) + " already exists");
}

QUrl Workspace::rename(const QUrl& url, const QString& name)
{
    return rename(url, renameDestination(url, name));
}

QUrl Workspace::rename(const QUrl& url, const QUrl& to)
{
    refuseRoot(m_root, url);
    validateRenameDestination(url, to);
    const QString from = standardizedPath(url);
    const QString target = standardizedPath(to);
    if (from == target)
        return QUrl::fromLocalFile(target);
    const bool isDirectory = isRealDirectory(from);
    moveItem(from, target);
    retargetState(from, target);
    retargetOrder(from, target, isDirectory);
    rescan();
    return QUrl::fromLocalFile(target);
}

QUrl Workspace::duplicate(const QUrl& url)
{
    refuseRoot(m_root, url);
    const QString source = standardizedPath(url);
    const QFileInfo info(source);
    const bool isDirectory = info.isDir();
    const QString base = isDirectory ? info.fileName() : info.completeBaseName();
    const QString suffix = isDirectory || info.suffix().isEmpty() ? QString() : u'.' + info.suffix();
    QString copy;
    for (int n = 1;; ++n) {
        const QString name = base + (n == 1 ? QStringLiteral(" copy") : QStringLiteral(" copy ") + QString::number(n));
        copy = info.path() + u'/' + name + suffix;
        if (!occupied(copy))
            break;
    }
    copyItem(source, copy);
    if (!isDirectory) {
        // The copy's first line names it, as every note's does.
        const MarkdownFile file = MarkdownFile::atPath(copy);
        try {
            file.write(NoteTitle::replacingName(file.read(true), file.name()));
        } catch (const MarkdownFileError& error) {
            if (::unlink(QFile::encodeName(copy).constData()) == 0)
                throw;
            const QString removal = QString::fromLocal8Bit(std::strerror(errno));
            throw MarkdownFileError::notWritable(copy + ": " + error.message() + " " + removal);
        }
    }
    rescan();
    select(QUrl::fromLocalFile(copy));
    return QUrl::fromLocalFile(copy);
}

void Workspace::deleteItem(const QUrl& url)
{
    refuseRoot(m_root, url);
    const QString path = standardizedPath(url);
    if (!occupied(path))
        throw MarkdownFileError::missing();
    const bool isDirectory = isRealDirectory(path);
    // QFile::moveToTrash falls back to the current directory when the home Trash cannot be
    // made, so that Trash must stand before it is asked; across file systems it fails.
    const QString homeTrash = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) + "/Trash";
    const bool trashReady = QDir().mkpath(homeTrash + "/files") && QDir().mkpath(homeTrash + "/info");
    if (!trashReady || !QFile::moveToTrash(path))
        throw MarkdownFileError::io(QCoreApplication::translate("Localized", "“%1” could not be moved to the Trash.")
                                        .arg(lastComponent(path)));
    dropState(path, isDirectory);
    rescan();
}

QUrl Workspace::moveDestination(const QUrl& url, const QUrl& folder) const
{
    if (!url.isLocalFile() || !folder.isLocalFile())
        throw WorkspaceFileOperationError(Kind::outsideWorkspace);
    if (!containsEntry(url) || !contains(folder))
        throw WorkspaceFileOperationError(Kind::outsideWorkspace);
    const QString folderPath = canonicalPath(folder);
    if (!QFileInfo(folderPath).isDir())
        throw WorkspaceFileOperationError(Kind::notFolder);
    const QString source = standardizedPath(url);
    if (isRealDirectory(source)) {
        const QString resolved = canonicalPath(url);
        if (folderPath == resolved || folderPath.startsWith(resolved + u'/'))
            throw WorkspaceFileOperationError(Kind::folderCycle);
    }
    const auto directory = directoryDestination(folder);
    if (!directory)
        throw WorkspaceFileOperationError(Kind::outsideWorkspace);
    const QString destination = QDir::cleanPath(directory->toLocalFile() + u'/' + lastComponent(source));
    if (canonicalPath(QUrl::fromLocalFile(parentPath(source))) == folderPath)
        return QUrl::fromLocalFile(source);
    if (occupied(destination))
        throw MarkdownFileError::notWritable(lastComponent(source) + " already exists there");
    return QUrl::fromLocalFile(destination);
}

QUrl Workspace::move(const QUrl& url, const QUrl& folder)
{
    const QUrl destination = moveDestination(url, folder);
    const QString from = standardizedPath(url);
    const QString to = standardizedPath(destination);
    if (from == to)
        return destination;
    const bool isDirectory = isRealDirectory(from);
    moveItem(from, to);
    retargetState(from, to);
    retargetOrder(from, to, isDirectory);
    rescan();
    return destination;
}

void Workspace::place(const QUrl& url, const std::optional<QUrl>& sibling)
{
    if (!m_root || !contains(url))
        return;
    const QString path = standardizedPath(url);
    const QString folder = parentPath(path);
    if (sibling && parentPath(standardizedPath(*sibling)) != folder)
        return;
    const WorkspaceNode* node = WorkspaceTree::find(QUrl::fromLocalFile(folder), m_tree);
    if (!node)
        return;
    QStringList current;
    for (const WorkspaceNode& child : node->children())
        current << child.name();
    const std::optional<QString> before = sibling ? std::optional(lastComponent(standardizedPath(*sibling))) : std::nullopt;
    m_order.place(lastComponent(path), before, WorkspaceTree::orderKey(QUrl::fromLocalFile(folder), *m_root), current);
    saveOrder();
    rescan();
}

QList<QUrl> Workspace::importFiles(const QList<QUrl>& urls, const QUrl& folder)
{
    if (!contains(folder))
        throw WorkspaceFileOperationError(Kind::outsideWorkspace);
    const auto directory = directoryDestination(folder);
    if (!directory || !QFileInfo(directory->toLocalFile()).isDir())
        throw WorkspaceFileOperationError(Kind::notFolder);
    // Everything is checked before anything is copied.
    const QString destinationResolved = canonicalPath(*directory);
    for (const QUrl& url : urls) {
        const QFileInfo info(standardizedPath(url));
        if (!url.isLocalFile() || !(info.isDir() || (isRegularFile(info.filePath()) && MarkdownFile(url).isMarkdown())))
            throw WorkspaceFileOperationError(Kind::unsupportedFile);
        // A folder that holds the destination would grow while it is copied, without end.
        const QString resolved = canonicalPath(url);
        if (info.isDir() && (destinationResolved == resolved || destinationResolved.startsWith(resolved + u'/')))
            throw WorkspaceFileOperationError(Kind::folderCycle);
    }
    const QString target = directory->toLocalFile();
    QList<QUrl> imported;
    try {
        for (const QUrl& url : urls) {
            const QString source = standardizedPath(url);
            const QFileInfo info(source);
            const QString name = info.isDir() ? uniqueName(info.fileName(), QString(), *directory)
                                              : uniqueName(info.completeBaseName(), info.suffix(), *directory);
            const QString destination = QDir::cleanPath(target + u'/' + name);
            copyItem(source, destination);
            imported.append(QUrl::fromLocalFile(destination));
        }
    } catch (...) {
        // The sources are untouched; only our own copies go, so nothing is half imported.
        for (const QUrl& copy : imported)
            removeCreated(copy.toLocalFile());
        throw;
    }
    rescan();
    return imported;
}

void Workspace::revealInFinder(const QUrl& url) const
{
    // The file manager opens the item's folder; there is no portable way to highlight the item.
    const QString path = standardizedPath(url);
    QDesktopServices::openUrl(QUrl::fromLocalFile(QFileInfo(path).isDir() ? path : parentPath(path)));
}

void Workspace::restoreOperationState(const WorkspaceOrder& order, const QSet<QString>& expanded,
                                      const std::optional<QUrl>& selection)
{
    const bool orderChanged = order != m_order;
    m_order = order;
    m_expanded = expanded;
    m_selection = selection;
    if (orderChanged)
        saveOrder();
    rescan();
}

void Workspace::retargetState(const QString& from, const QString& to)
{
    const auto moved = [&](const QString& path) -> std::optional<QString> {
        if (path == from)
            return to;
        if (path.startsWith(from + u'/'))
            return to + path.mid(from.size());
        return std::nullopt;
    };
    QSet<QString> expanded;
    for (const QString& path : std::as_const(m_expanded))
        expanded.insert(moved(path).value_or(path));
    m_expanded = std::move(expanded);
    if (m_selection) {
        if (const auto path = moved(standardizedPath(*m_selection)))
            m_selection = QUrl::fromLocalFile(*path);
    }
    emit changed();
}

void Workspace::retargetOrder(const QString& from, const QString& to, bool isDirectory)
{
    if (!m_root)
        return;
    const WorkspaceOrder before = m_order;
    const QString oldFolder = WorkspaceTree::orderKey(QUrl::fromLocalFile(parentPath(from)), *m_root);
    const QString newFolder = WorkspaceTree::orderKey(QUrl::fromLocalFile(parentPath(to)), *m_root);
    if (oldFolder == newFolder)
        m_order.rename(lastComponent(from), lastComponent(to), oldFolder);
    else
        m_order.remove(lastComponent(from), oldFolder); // it arrives unlisted, in its sorted place
    if (isDirectory)
        m_order.retargetFolder(WorkspaceTree::orderKey(QUrl::fromLocalFile(from), *m_root),
                               WorkspaceTree::orderKey(QUrl::fromLocalFile(to), *m_root));
    if (m_order != before)
        saveOrder();
}

void Workspace::dropState(const QString& path, bool isDirectory)
{
    const auto gone = [&](const QString& p) { return p == path || p.startsWith(path + u'/'); };
    QSet<QString> expanded;
    for (const QString& p : std::as_const(m_expanded)) {
        if (!gone(p))
            expanded.insert(p);
    }
    m_expanded = std::move(expanded);
    if (m_selection && gone(standardizedPath(*m_selection)))
        m_selection.reset();
    if (m_root) {
        const WorkspaceOrder before = m_order;
        m_order.remove(lastComponent(path), WorkspaceTree::orderKey(QUrl::fromLocalFile(parentPath(path)), *m_root));
        if (isDirectory) {
            const QString key = WorkspaceTree::orderKey(QUrl::fromLocalFile(path), *m_root);
            for (auto it = m_order.folders.begin(); it != m_order.folders.end();) {
                if (it.key() == key || it.key().startsWith(key + u'/'))
                    it = m_order.folders.erase(it);
                else
                    ++it;
            }
        }
        if (m_order != before)
            saveOrder();
    }
    emit changed();
}

void Workspace::saveOrder()
{
    if (!m_root)
        return;
    try {
        m_order.save(*m_root);
    } catch (const MarkdownFileError& error) {
        // The order in memory stays; only its file could not follow.
        m_lastError = "Velmo could not save the sidebar order: " + error.message();
        emit changed();
    }
}

}
