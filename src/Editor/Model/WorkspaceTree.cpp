// The workspace scanner.
//
// 1. Open the root (following a symlink there), note its device and inode as an ancestor.
// 2. Read the folder's entries with readdir: the type comes with the entry, so only symbolic
//    links (and file systems that report no type) cost a stat. Hidden and ignored names, and
//    files without a Markdown extension, are dropped before any string is made for them.
// 3. Sort folders before files, each by an ICU sort key (numeric, case-insensitive), then lay
//    the manual order over the sort.
// 4. Recurse into real folders below the depth limit, skipping any that is its own ancestor.
#include "Editor/Model/WorkspaceTree.h"

#include "Editor/Model/MarkdownFile.h"

#include <QDir>
#include <QFile>
#include <QLocale>
#include <algorithm>
#include <cstring>
#include <memory>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <unicode/ucol.h>

namespace velmo::editor {

const QSet<QString> WorkspaceTree::ignoredNames = {
    ".git", ".build", ".swiftpm", "node_modules", "DerivedData", ".DS_Store", ".idea",
    ".vscode", "__pycache__", ".venv", "venv", "Pods", "dist", "build",
};

// Deeper limits are clamped: the scan recurses once per level.
static constexpr int depthCeiling = 256;

namespace {

struct CollatorDeleter {
    void operator()(UCollator* c) const { ucol_close(c); }
};
using Collator = std::unique_ptr<UCollator, CollatorDeleter>;

// Numeric, secondary strength: digits compare as numbers, case is ignored, accents are not.
// The user's language orders the letters; the C locale gets the root order, since ICU's
// POSIX collation sorts by code point and so puts "B" before "a".
Collator makeCollator()
{
    const QLocale locale;
    const QByteArray name = locale.language() == QLocale::C ? QByteArray("root") : locale.name().toLatin1();
    UErrorCode status = U_ZERO_ERROR;
    Collator collator(ucol_open(name.constData(), &status));
    if (U_FAILURE(status))
        return nullptr;
    ucol_setAttribute(collator.get(), UCOL_NUMERIC_COLLATION, UCOL_ON, &status);
    ucol_setStrength(collator.get(), UCOL_SECONDARY);
    return collator;
}

QByteArray sortKey(const UCollator* collator, const QString& name)
{
    if (!collator)
        return name.toCaseFolded().toUtf8();
    QByteArray key(qsizetype(name.size()) * 4 + 16, Qt::Uninitialized);
    const auto* text = reinterpret_cast<const UChar*>(name.utf16());
    int32_t length = ucol_getSortKey(collator, text, int32_t(name.size()), reinterpret_cast<uint8_t*>(key.data()), int32_t(key.size()));
    if (length > key.size()) {
        key.resize(length);
        length = ucol_getSortKey(collator, text, int32_t(name.size()), reinterpret_cast<uint8_t*>(key.data()), int32_t(key.size()));
    }
    key.resize(std::max(length - 1, 0)); // without the terminating zero
    return key;
}

bool hasMarkdownExtension(const char* name)
{
    const char* dot = std::strrchr(name, '.');
    if (!dot || dot == name)
        return false;
    char lower[16];
    size_t n = 0;
    for (const char* c = dot + 1; *c; ++c) {
        if (n + 1 == sizeof lower)
            return false;
        lower[n++] = char(*c >= 'A' && *c <= 'Z' ? *c - 'A' + 'a' : *c);
    }
    lower[n] = 0;
    for (const QString& extension : MarkdownFile::markdownExtensions) {
        if (extension == QLatin1StringView(lower, qsizetype(n)))
            return true;
    }
    return false;
}

struct Entry {
    QString name;
    QByteArray key;
    bool isDirectory;
    bool isSymbolicLink;
};

struct DirectoryIdentity {
    dev_t device;
    ino_t inode;
    bool operator==(const DirectoryIdentity&) const = default;
};

class Scanner {
public:
    Scanner(int maxDepth, const WorkspaceOrder& order)
        : m_maxDepth(std::min(maxDepth, depthCeiling)), m_order(order), m_collator(makeCollator())
    {
    }

    // `fd` is an open directory, owned here; `key` the folder's relative path ("" at the root).
    void fill(WorkspaceNode& folder, int fd, int depth, const QString& key)
    {
        struct stat st {};
        if (::fstat(fd, &st) != 0) {
            ::close(fd);
            return;
        }
        const DirectoryIdentity identity{st.st_dev, st.st_ino};
        if (std::find(m_ancestors.begin(), m_ancestors.end(), identity) != m_ancestors.end()) {
            ::close(fd); // a cycle: the folder is shown, its contents are where it first appeared
            return;
        }
        std::vector<Entry> entries = list(fd);
        sortEntries(entries);

        std::vector<WorkspaceNode> children;
        children.reserve(entries.size());
        const QString& base = folder.path();
        const QString prefix = base.endsWith(u'/') ? base : base + u'/';
        for (Entry& entry : entries)
            children.emplace_back(prefix + entry.name, entry.isDirectory, entry.isSymbolicLink);
        entries = {};
        children = m_order.ordered(std::move(children), key);

        m_ancestors.push_back(identity);
        if (depth + 1 < m_maxDepth) {
            for (WorkspaceNode& child : children) {
                if (!child.isDirectory() || child.isSymbolicLink())
                    continue;
                const QString name = child.name();
                const int childFd = ::openat(fd, QFile::encodeName(name).constData(),
                                             O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
                if (childFd >= 0)
                    fill(child, childFd, depth + 1, key.isEmpty() ? name : key + u'/' + name);
            }
        }
        m_ancestors.pop_back();
        ::close(fd);
        folder.children() = std::move(children);
    }

private:
    std::vector<Entry> list(int fd)
    {
        std::vector<Entry> entries;
        const int listFd = ::dup(fd);
        if (listFd < 0)
            return entries;
        DIR* dir = ::fdopendir(listFd);
        if (!dir) {
            ::close(listFd);
            return entries;
        }
        while (const dirent* d = ::readdir(dir)) {
            const char* name = d->d_name;
            if (name[0] == '.')
                continue; // hidden, and "." and ".."
            // Pipes, sockets and devices are no notes: reading one could block for ever.
            unsigned char type = d->d_type;
            if (type == DT_UNKNOWN) {
                struct stat st {};
                if (::fstatat(fd, name, &st, AT_SYMLINK_NOFOLLOW) != 0)
                    continue;
                type = S_ISDIR(st.st_mode) ? DT_DIR : S_ISLNK(st.st_mode) ? DT_LNK : S_ISREG(st.st_mode) ? DT_REG : DT_FIFO;
            }
            bool isDirectory = type == DT_DIR;
            const bool isLink = type == DT_LNK;
            if (isLink) {
                struct stat target {};
                if (::fstatat(fd, name, &target, 0) == 0) {
                    isDirectory = S_ISDIR(target.st_mode);
                    if (!isDirectory && !S_ISREG(target.st_mode))
                        continue;
                } // a dangling link stays: it is shown, and opening it says the file is gone
            } else if (type != DT_DIR && type != DT_REG) {
                continue;
            }
            if (!isDirectory && !hasMarkdownExtension(name))
                continue;
            QString decoded = QFile::decodeName(name);
            if (WorkspaceTree::ignoredNames.contains(decoded))
                continue;
            entries.push_back({std::move(decoded), {}, isDirectory, isLink});
        }
        ::closedir(dir);
        return entries;
    }

    void sortEntries(std::vector<Entry>& entries) const
    {
        if (entries.size() < 2)
            return;
        // Files sort by the name without its extension, so "Ideas.md" comes before
        // "Ideas 2.md" (a space sorts before a dot); equal names fall back to the full name.
        for (Entry& entry : entries) {
            const qsizetype dot = entry.isDirectory ? -1 : entry.name.lastIndexOf(u'.');
            entry.key = sortKey(m_collator.get(), dot > 0 ? entry.name.left(dot) : entry.name);
        }
        std::sort(entries.begin(), entries.end(), [](const Entry& a, const Entry& b) {
            if (a.isDirectory != b.isDirectory)
                return a.isDirectory;
            if (const int c = a.key.compare(b.key); c != 0)
                return c < 0;
            return a.name < b.name; // names equal but for case: a stable, repeatable order
        });
    }

    const int m_maxDepth;
    const WorkspaceOrder& m_order;
    Collator m_collator;
    std::vector<DirectoryIdentity> m_ancestors;
};

QString standardized(const QUrl& url)
{
    return QDir::cleanPath(url.toLocalFile());
}

}

WorkspaceNode WorkspaceTree::build(const QUrl& root, int maxDepth, const WorkspaceOrder& order)
{
    const QString path = standardized(root);
    struct stat link {};
    const QByteArray encoded = QFile::encodeName(path);
    const bool isLink = ::lstat(encoded.constData(), &link) == 0 && S_ISLNK(link.st_mode);
    struct stat st {};
    const bool isDirectory = ::stat(encoded.constData(), &st) == 0 && S_ISDIR(st.st_mode);
    WorkspaceNode node(path, isDirectory, isLink);
    if (!isDirectory || maxDepth <= 0)
        return node;
    const int fd = ::open(encoded.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd < 0)
        return node;
    Scanner(maxDepth, order).fill(node, fd, 0, QString());
    return node;
}

static bool isAscii(QStringView text)
{
    return std::all_of(text.begin(), text.end(), [](QChar c) { return c.unicode() < 0x80; });
}

// Whether the lower-cased name contains the (lower-cased) needle. For ASCII, lower-casing and
// a case-insensitive search agree, and the search needs no copy: typing in the filter field
// runs this over every row.
static bool nameContains(QStringView name, const QString& needle, bool asciiNeedle)
{
    if (asciiNeedle && isAscii(name))
        return name.contains(needle, Qt::CaseInsensitive);
    return name.toString().toLower().contains(needle);
}

// The trees these walk come from the scanner, whose depth is bounded, so recursion is safe.
static std::optional<WorkspaceNode> filteredNode(const WorkspaceNode& node, const QString& needle, bool asciiNeedle)
{
    const QStringView path = node.path();
    const QStringView name = path.mid(path.lastIndexOf(u'/') + 1);
    const bool nameMatches = nameContains(name, needle, asciiNeedle);
    if (!node.isDirectory()) {
        if (!nameMatches)
            return std::nullopt;
        return node;
    }
    std::vector<WorkspaceNode> survivors;
    for (const WorkspaceNode& child : node.children()) {
        if (auto kept = filteredNode(child, needle, asciiNeedle))
            survivors.push_back(std::move(*kept));
    }
    if (survivors.empty() && !nameMatches)
        return std::nullopt;
    return WorkspaceNode(node.path(), node.isDirectory(), node.isSymbolicLink(), std::move(survivors));
}

std::optional<WorkspaceNode> WorkspaceTree::filtered(const WorkspaceNode& node, QStringView text)
{
    int start = 0;
    int end = int(text.size());
    while (start < end && (text[start] == u'\t' || text[start].category() == QChar::Separator_Space))
        ++start;
    while (end > start && (text[end - 1] == u'\t' || text[end - 1].category() == QChar::Separator_Space))
        --end;
    const QString needle = text.mid(start, end - start).toString().toLower();
    if (needle.isEmpty())
        return node;
    return filteredNode(node, needle, isAscii(needle));
}

std::vector<const WorkspaceNode*> WorkspaceTree::files(const WorkspaceNode& node)
{
    return node.descendantFiles();
}

static bool isAtOrBelow(const QString& path, const QString& folder)
{
    return path.startsWith(folder)
        && (path.size() == folder.size() || path[folder.size()] == u'/' || folder.endsWith(u'/'));
}

std::vector<const WorkspaceNode*> WorkspaceTree::path(const QUrl& url, const WorkspaceNode& node)
{
    const QString target = standardized(url);
    std::vector<const WorkspaceNode*> chain;
    if (!isAtOrBelow(target, node.path()))
        return chain;
    const WorkspaceNode* current = &node;
    chain.push_back(current);
    // Each step goes one component down, so this ends after at most the tree's depth.
    while (current->path() != target) {
        const WorkspaceNode* next = nullptr;
        for (const WorkspaceNode& child : current->children()) {
            if (isAtOrBelow(target, child.path())) {
                next = &child;
                break;
            }
        }
        if (!next)
            return {};
        current = next;
        chain.push_back(current);
    }
    return chain;
}

const WorkspaceNode* WorkspaceTree::find(const QUrl& url, const WorkspaceNode& node)
{
    const auto chain = path(url, node);
    return chain.empty() ? nullptr : chain.back();
}

QString WorkspaceTree::orderKey(const QUrl& folder, const QUrl& root)
{
    const QString path = standardized(folder);
    const QString rootPath = standardized(root);
    if (path == rootPath || !isAtOrBelow(path, rootPath))
        return {};
    QString key = path.mid(rootPath.size());
    while (key.startsWith(u'/'))
        key.remove(0, 1);
    return key;
}

int WorkspaceTree::compareNames(const QString& a, const QString& b)
{
    static thread_local Collator collator = makeCollator();
    const int c = sortKey(collator.get(), a).compare(sortKey(collator.get(), b));
    return c != 0 ? c : a.compare(b);
}

}
