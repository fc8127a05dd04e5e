#include "Editor/Model/Workspace.h"

#include "MarkdownEngine/Core/TextCharacters.h"

#include <QCollator>
#include <QDir>
#include <QDirIterator>
#include <QFileInfo>
#include <algorithm>

namespace velmo::editor {

QString canonicalPath(const QUrl& url)
{
    const QString path = QDir::cleanPath(url.toLocalFile());
    const QString canonical = QFileInfo(path).canonicalFilePath();
    if (!canonical.isEmpty())
        return canonical;
    // A file not yet written: resolve its folder, keep its name.
    const QFileInfo info(path);
    const QString folder = QFileInfo(info.absolutePath()).canonicalFilePath();
    return folder.isEmpty() ? path : folder + u'/' + info.fileName();
}

void Workspace::open(const QUrl& url)
{
    const QString path = QDir::cleanPath(url.toLocalFile());
    if (!QFileInfo(path).isReadable()) {
        m_lastError = "Velmo cannot read " + path + ".";
        emit changed();
        return;
    }
    m_root = QUrl::fromLocalFile(path);
    m_lastError.reset();
    m_selection.reset();
    m_expanded = {path};
    rescan();
    startWatching(*m_root);
}

void Workspace::close()
{
    m_watcher.reset();
    if (m_rescanWork)
        m_rescanWork->stop();
    m_root.reset();
    m_notes.clear();
    m_selection.reset();
    m_expanded.clear();
    m_lastError.reset();
    ++m_contentGeneration;
    emit changed();
}

void Workspace::rescan()
{
    if (!m_root)
        return;
    QCollator collator;
    collator.setNumericMode(true);
    collator.setCaseSensitivity(Qt::CaseInsensitive);
    // Sort keys made once per note: comparing paths anew costs most of a large folder's scan.
    std::vector<std::pair<QCollatorSortKey, MarkdownFile>> keyed;
    // Hidden entries are skipped and symlinked folders are not followed, so no cycle can form.
    QDirIterator it(m_root->toLocalFile(), QDir::Files | QDir::NoDotAndDotDot, QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QString path = it.next();
        MarkdownFile file = MarkdownFile::atPath(path);
        if (file.isMarkdown())
            keyed.emplace_back(collator.sortKey(relativePath(file.url())), std::move(file));
    }
    std::sort(keyed.begin(), keyed.end(), [](const auto& a, const auto& b) { return a.first.compare(b.first) < 0; });
    std::vector<MarkdownFile> notes;
    notes.reserve(keyed.size());
    for (auto& [key, file] : keyed)
        notes.push_back(std::move(file));
    m_notes = std::move(notes);
    ++m_contentGeneration;
    if (m_selection && !QFileInfo::exists(m_selection->toLocalFile()))
        m_selection.reset();
    emit changed();
}

QString Workspace::displayName() const
{
    return m_root ? QFileInfo(m_root->toLocalFile()).fileName() : QStringLiteral("Velmo");
}

void Workspace::select(const std::optional<QUrl>& url)
{
    if (m_selection == url)
        return;
    m_selection = url;
    emit changed();
}

void Workspace::noteWrittenHere(const QUrl& url)
{
    m_ownWrites.record(url);
}

void Workspace::markContentChanged()
{
    ++m_contentGeneration;
    emit changed();
}

static constexpr int rescanDelayMs = 350;

void Workspace::scheduleRescan()
{
    if (!m_rescanWork) {
        m_rescanWork = new QTimer(this);
        m_rescanWork->setSingleShot(true);
        m_rescanWork->setInterval(rescanDelayMs);
        connect(m_rescanWork, &QTimer::timeout, this, [this] {
            rescan();
            emit changedOnDisk();
        });
    }
    m_rescanWork->start();
}

void Workspace::startWatching(const QUrl& url)
{
    m_watcher.reset();
    m_ownWrites.removeAll();
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

bool Workspace::contains(const QUrl& url) const
{
    if (!m_root)
        return false;
    const QString root = canonicalPath(*m_root);
    const QString path = canonicalPath(url);
    return path == root || path.startsWith(root + u'/');
}

QString Workspace::relativePath(const QUrl& url) const
{
    const QString path = QDir::cleanPath(url.toLocalFile());
    if (m_root) {
        const QString root = QDir::cleanPath(m_root->toLocalFile());
        if (path.startsWith(root + u'/'))
            return path.mid(root.size() + 1);
    }
    return QFileInfo(path).fileName();
}

QString Workspace::uniqueName(const QString& name, const QString& extension, const std::optional<QUrl>& folder) const
{
    const QString directory = folder ? folder->toLocalFile() : m_root ? m_root->toLocalFile() : QDir::homePath();
    QString base = markdown::chars::trimmed(name).toString();
    if (base.isEmpty())
        base = QStringLiteral("Untitled");
    const QString suffix = extension.isEmpty() ? QString() : u'.' + extension;
    const QDir dir(directory);
    QString candidate = base + suffix;
    for (int n = 2; QFileInfo::exists(dir.filePath(candidate)); ++n)
        candidate = base + u' ' + QString::number(n) + suffix;
    return candidate;
}

}
