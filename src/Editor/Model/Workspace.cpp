#include "Editor/Model/Workspace.h"

#include "Editor/Model/WorkspaceFile.h"
#include "Editor/Model/WorkspaceTree.h"
#include "MarkdownEngine/Core/TextCharacters.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>

namespace velmo::editor {

static constexpr int rescanDelayMs = 350;

QString standardizedPath(const QUrl& url)
{
    return QDir::cleanPath(url.toLocalFile());
}

QString canonicalPath(const QUrl& url)
{
    const QString path = standardizedPath(url);
    const QString canonical = QFileInfo(path).canonicalFilePath();
    if (!canonical.isEmpty())
        return canonical;
    // A file not yet written: resolve its folder, keep its name.
    const QFileInfo info(path);
    const QString folder = QFileInfo(info.absolutePath()).canonicalFilePath();
    return folder.isEmpty() ? path : folder + u'/' + info.fileName();
}

// At or below `folder`, by whole components.
static bool isAtOrBelow(const QString& path, const QString& folder)
{
    if (!path.startsWith(folder))
        return false;
    return path.size() == folder.size() || path[folder.size()] == u'/' || folder.endsWith(u'/');
}

Workspace::Workspace()
{
    m_rescanWork.setSingleShot(true);
    m_rescanWork.setInterval(rescanDelayMs);
    connect(&m_rescanWork, &QTimer::timeout, this, [this] {
        rescan();
        emit changedOnDisk();
    });
}

Workspace::~Workspace() = default;

void Workspace::bumpContentGeneration()
{
    ++m_contentGeneration;
    emit changed();
}

void Workspace::setFilter(const QString& filter)
{
    if (filter == m_filter)
        return;
    m_filter = filter;
    emit treeChanged();
    emit changed();
}

void Workspace::open(const QUrl& url)
{
    const QString path = standardizedPath(url);
    const QFileInfo info(path);
    if (!info.isReadable() || !info.isDir()) {
        m_lastError = "Velmo cannot read " + path + ".";
        emit changed();
        return;
    }
    m_root = QUrl::fromLocalFile(path);
    m_lastError.reset();
    m_selection.reset();
    m_expanded = {path};
    m_order = WorkspaceOrder::load(*m_root);
    rescan();
    startWatching(*m_root);
}

QString Workspace::folderPanelTitle()
{
    return QCoreApplication::translate("Localized", "Choose a folder of notes for Velmo.");
}

void Workspace::openWithPanel()
{
    if (!m_folderPanel)
        return;
    if (const auto choice = m_folderPanel(folderPanelTitle()))
        open(*choice);
}

void Workspace::close()
{
    startWatching(QUrl()); // stops the watcher
    m_rescanWork.stop();
    m_root.reset();
    m_selection.reset();
    m_tree = {};
    m_notes.clear();
    m_expanded.clear();
    m_lastError.reset();
    m_filter.clear();
    m_order = {};
    ++m_contentGeneration;
    emit treeChanged();
    emit changed();
}

void Workspace::rescan()
{
    if (!m_root)
        return;
    m_isLoading = true;
    // The old tree and list go first: with both generations alive at once, a large folder
    // would need twice the memory for the length of a scan.
    m_tree = {};
    m_notes = {};
    m_tree = WorkspaceTree::build(*m_root, WorkspaceTree::defaultMaxDepth, m_order);
    const auto files = WorkspaceTree::files(m_tree);
    std::vector<MarkdownFile> notes;
    notes.reserve(files.size());
    for (const WorkspaceNode* file : files)
        notes.push_back(file->file());
    m_notes = std::move(notes);
    ++m_contentGeneration;
    m_isLoading = false;
    if (m_selection && !QFileInfo(standardizedPath(*m_selection)).exists() && !QFileInfo(standardizedPath(*m_selection)).isSymLink())
        m_selection.reset();
    refreshCloudStates();
    emit treeChanged();
    emit changed();
}

QString Workspace::displayName() const
{
    return m_root ? QFileInfo(m_root->toLocalFile()).fileName() : QStringLiteral("Velmo");
}

std::optional<WorkspaceNode> Workspace::filteredTree() const
{
    if (!m_root)
        return std::nullopt;
    return WorkspaceTree::filtered(m_tree, m_filter);
}

bool Workspace::isExpanded(const QUrl& url) const
{
    return m_expanded.contains(standardizedPath(url));
}

void Workspace::setExpanded(const QUrl& url, bool expanded)
{
    const QString path = standardizedPath(url);
    if (m_expanded.contains(path) == expanded)
        return;
    if (expanded)
        m_expanded.insert(path);
    else
        m_expanded.remove(path);
    emit changed();
}

void Workspace::expandAncestors(const QUrl& url)
{
    if (!m_root)
        return;
    const QString root = standardizedPath(*m_root);
    QString folder = QFileInfo(standardizedPath(url)).path();
    if (!isAtOrBelow(folder, root))
        return;
    bool grew = false;
    // Walks up from the parent to the root: at most the path's length in steps.
    while (true) {
        if (!m_expanded.contains(folder)) {
            m_expanded.insert(folder);
            grew = true;
        }
        if (folder.size() <= root.size())
            break;
        folder = QFileInfo(folder).path();
    }
    if (grew)
        emit changed();
}

void Workspace::collapseAll()
{
    QSet<QString> kept;
    if (m_root)
        kept.insert(standardizedPath(*m_root));
    if (kept == m_expanded)
        return;
    m_expanded = kept;
    emit changed();
}

void Workspace::select(const std::optional<QUrl>& url)
{
    const std::optional<QUrl> standardized = url ? std::optional(QUrl::fromLocalFile(standardizedPath(*url))) : std::nullopt;
    const QSet<QString> before = m_expanded;
    if (standardized && m_root && WorkspaceTree::find(*standardized, m_tree)) {
        const QSignalBlocker quiet(this); // one notification for the whole change
        expandAncestors(*standardized);
    }
    if (m_selection == standardized && before == m_expanded)
        return;
    m_selection = standardized;
    emit changed();
}

QList<WorkspaceFolder> Workspace::folders() const
{
    if (!m_root)
        return {};
    return WorkspaceFolder::listing(m_tree, *m_root);
}

bool Workspace::contains(const QUrl& url) const
{
    if (!m_root || !url.isLocalFile())
        return false;
    return isAtOrBelow(canonicalPath(url), canonicalPath(*m_root));
}

bool Workspace::containsEntry(const QUrl& url) const
{
    if (!m_root || !url.isLocalFile())
        return false;
    const QString path = standardizedPath(url);
    if (path == standardizedPath(*m_root))
        return false; // the root is no entry of itself
    return contains(QUrl::fromLocalFile(QFileInfo(path).path()));
}

int Workspace::depth(const QUrl& url) const
{
    if (!m_root)
        return -1;
    const QString root = standardizedPath(*m_root);
    const QString path = standardizedPath(url);
    if (!isAtOrBelow(path, root))
        return -1;
    if (path.size() == root.size())
        return 0;
    return int(QStringView(path).mid(root.size()).count(u'/')) + (root.endsWith(u'/') ? 1 : 0);
}

QString Workspace::relativePath(const QUrl& url) const
{
    if (!m_root)
        return QFileInfo(standardizedPath(url)).fileName();
    return WorkspaceFile::relativePathOf(url, *m_root);
}

std::optional<QUrl> Workspace::creationDirectory() const
{
    if (!m_root)
        return std::nullopt;
    if (m_selection) {
        const QString path = standardizedPath(*m_selection);
        const QFileInfo info(path);
        const QString folder = info.isDir() ? path : info.path();
        if (const auto destination = directoryDestination(QUrl::fromLocalFile(folder));
            destination && QFileInfo(destination->toLocalFile()).isDir())
            return destination;
    }
    return m_root;
}

std::optional<QUrl> Workspace::directoryDestination(const QUrl& url) const
{
    if (!m_root || !url.isLocalFile())
        return std::nullopt;
    const QString root = canonicalPath(*m_root);
    const QString path = canonicalPath(url);
    if (!isAtOrBelow(path, root))
        return std::nullopt;
    const QString rest = path.mid(root.size());
    return QUrl::fromLocalFile(QDir::cleanPath(standardizedPath(*m_root) + u'/' + rest));
}

QString Workspace::uniqueName(const QString& name, const QString& extension, const std::optional<QUrl>& folder) const
{
    const QString directory = folder ? folder->toLocalFile() : m_root ? m_root->toLocalFile() : QDir::homePath();
    QString base = markdown::chars::trimmed(name).toString();
    if (base.isEmpty())
        base = QStringLiteral("Untitled");
    const QString suffix = extension.isEmpty() ? QString() : u'.' + extension;
    const QDir dir(directory);
    // A dangling symlink also takes the name: exists() alone would not see it.
    const auto taken = [&](const QString& candidate) {
        const QFileInfo info(dir.filePath(candidate));
        return info.exists() || info.isSymLink();
    };
    QString candidate = base + suffix;
    for (int n = 2; taken(candidate); ++n)
        candidate = base + u' ' + QString::number(n) + suffix;
    return candidate;
}

// ---- Change detection hooks ----

void Workspace::startWatching(const QUrl& url)
{
    m_watcher.reset();
    m_ownWrites.removeAll();
    if (url.isEmpty())
        return;
    // The watcher's thread only posts to this object; a post left when it is gone is dropped.
    m_watcher = std::make_unique<DirectoryWatcher>(
        url, [this] { QMetaObject::invokeMethod(this, &Workspace::scheduleRescan, Qt::QueuedConnection); },
        [this](const QString& path) { return m_ownWrites.isOwn(path); });
    m_watcher->setLimitHandler([this] {
        const QString message = tr("Some folders are not watched for changes: the system’s limit of watched folders is reached.");
        QMetaObject::invokeMethod(this, [this, message] { emit watchProblem(message); }, Qt::QueuedConnection);
    });
    m_watcher->start();
}

void Workspace::scheduleRescan()
{
    m_rescanWork.start(); // restarting cancels the pending one
}

void Workspace::noteWrittenHere(const QUrl& url)
{
    m_ownWrites.record(url);
}

// ---- end of change detection hooks ----

}
