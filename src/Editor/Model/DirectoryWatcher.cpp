#include "Editor/Model/DirectoryWatcher.h"

#include <QFile>
#include <QHash>
#include <QSet>
#include <QThread>
#include <chrono>
#include <vector>

#include <cerrno>
#include <dirent.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/inotify.h>
#include <sys/stat.h>
#include <unistd.h>

namespace velmo::editor {

namespace {

using SteadyClock = std::chrono::steady_clock;

constexpr uint32_t watchMask = IN_CREATE | IN_DELETE | IN_MODIFY | IN_ATTRIB | IN_MOVED_FROM | IN_MOVED_TO
    | IN_DELETE_SELF | IN_MOVE_SELF | IN_ONLYDIR | IN_EXCL_UNLINK;
// A flood larger than this is not listed path by path: it is reported as a whole.
constexpr qsizetype maximumBatch = 20'000;

// The watches of one inotify instance, by descriptor, with the folder each stands for.
struct Watches {
    int fd = -1;
    int limit = -1;
    QHash<int, QByteArray> folders;
    bool limitReached = false;

    // Watches `top` and every visible folder below it, without recursion. New files found
    // on the way go to `found`: they may have been created before their folder was watched.
    void addTree(const QByteArray& top, bool followTop, QStringList* found)
    {
        std::vector<QByteArray> pending{top};
        while (!pending.empty()) {
            const QByteArray folder = std::move(pending.back());
            pending.pop_back();
            const uint32_t mask = watchMask | (folder == top && followTop ? 0 : IN_DONT_FOLLOW);
            const bool full = limit >= 0 && folders.size() >= limit;
            if (full)
                errno = ENOSPC;
            const int wd = full ? -1 : ::inotify_add_watch(fd, folder.constData(), mask);
            if (wd < 0) {
                if (errno == ENOSPC || errno == ENOMEM)
                    limitReached = true;
                continue;
            }
            folders.insert(wd, folder);
            DIR* dir = ::opendir(folder.constData());
            if (!dir)
                continue;
            while (const dirent* entry = ::readdir(dir)) {
                if (entry->d_name[0] == '.')
                    continue; // ".", "..", and hidden entries the workspace never lists
                QByteArray path = folder + '/' + entry->d_name;
                bool isFolder = entry->d_type == DT_DIR;
                if (entry->d_type == DT_UNKNOWN) {
                    struct stat st {};
                    isFolder = ::lstat(path.constData(), &st) == 0 && S_ISDIR(st.st_mode);
                }
                if (isFolder)
                    pending.push_back(path);
                else if (found)
                    found->append(QFile::decodeName(path));
            }
            ::closedir(dir);
        }
    }

    void removeTree(const QByteArray& top)
    {
        const QByteArray prefix = top + '/';
        for (auto it = folders.begin(); it != folders.end();) {
            if (it.value() == top || it.value().startsWith(prefix)) {
                ::inotify_rm_watch(fd, it.key());
                it = folders.erase(it);
            } else {
                ++it;
            }
        }
    }
};

bool existsAt(const QString& path)
{
    struct stat st {};
    return ::lstat(QFile::encodeName(path).constData(), &st) == 0;
}

}

DirectoryWatcher::DirectoryWatcher(const QUrl& url, Handler handler, OwnWriteTest isOwnWrite, int latencyMs)
    : m_url(url)
    , m_handler(std::move(handler))
    , m_isOwnWrite(std::move(isOwnWrite))
    , m_latencyMs(latencyMs)
{
}

DirectoryWatcher::~DirectoryWatcher()
{
    stop();
}

void DirectoryWatcher::start()
{
    if (m_thread)
        return;
    m_wakeFd = ::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    if (m_wakeFd < 0)
        return;
    m_thread.reset(QThread::create([this] { run(); }));
    m_thread->setObjectName(QStringLiteral("com.velmo.watcher"));
    m_thread->start();
}

void DirectoryWatcher::stop()
{
    if (!m_thread)
        return;
    const uint64_t one = 1;
    (void)::write(m_wakeFd, &one, sizeof one);
    m_thread->wait();
    m_thread.reset();
    ::close(m_wakeFd);
    m_wakeFd = -1;
}

bool DirectoryWatcher::shouldNotify(const QStringList& paths) const
{
    for (const QString& path : paths) {
        const qsizetype slash = path.lastIndexOf(u'/');
        if (QStringView(path).mid(slash + 1).startsWith(u'.'))
            continue; // temporary files of our writes, ".velmo"
        if (m_isOwnWrite && m_isOwnWrite(path))
            continue;
        if (path.endsWith(QLatin1String(".md")))
            return true;
        if (!existsAt(path))
            return true;
    }
    return false;
}

void DirectoryWatcher::run()
{
    Watches watches;
    watches.fd = ::inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
    if (watches.fd < 0)
        return;
    watches.limit = m_watchLimit;
    const QByteArray root = QFile::encodeName(m_url.toLocalFile());
    watches.addTree(root, true, nullptr);
    if (!watches.folders.values().contains(root)) {
        ::close(watches.fd); // the workspace runs without watching
        return;
    }
    m_watching = true;
    bool limitReported = false;

    const auto latency = std::chrono::milliseconds(m_latencyMs);
    auto lastDelivery = SteadyClock::now() - latency;
    SteadyClock::time_point deadline;
    QStringList batch;
    bool overflow = false;
    alignas(inotify_event) char buffer[64 * 1024];

    while (true) {
        m_watchCount = int(watches.folders.size());
        if (watches.limitReached && !limitReported) {
            limitReported = true;
            if (m_limitHandler)
                m_limitHandler();
        }
        const bool waiting = !batch.isEmpty() || overflow;
        int timeout = -1;
        if (waiting) {
            const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - SteadyClock::now());
            timeout = int(std::max<qint64>(0, left.count()));
        }
        pollfd fds[2] = {{watches.fd, POLLIN, 0}, {m_wakeFd, POLLIN, 0}};
        const int ready = ::poll(fds, 2, timeout);
        if (ready < 0 && errno != EINTR)
            break;
        if (fds[1].revents)
            break; // stop() asked

        if (fds[0].revents & POLLIN) {
            ssize_t length;
            while ((length = ::read(watches.fd, buffer, sizeof buffer)) > 0) {
                for (char* at = buffer; at < buffer + length;) {
                    const auto* event = reinterpret_cast<const inotify_event*>(at);
                    at += sizeof(inotify_event) + event->len;
                    if (event->mask & IN_Q_OVERFLOW) {
                        overflow = true;
                        continue;
                    }
                    const auto folder = watches.folders.constFind(event->wd);
                    if (folder == watches.folders.constEnd())
                        continue;
                    if (event->mask & IN_IGNORED) {
                        watches.folders.erase(folder);
                        continue;
                    }
                    const QByteArray path = event->len ? folder.value() + '/' + event->name : folder.value();
                    if ((event->mask & IN_ISDIR) && event->len && event->name[0] != '.') {
                        if (event->mask & (IN_CREATE | IN_MOVED_TO))
                            watches.addTree(path, false, &batch);
                        else if (event->mask & IN_MOVED_FROM)
                            watches.removeTree(path);
                    }
                    batch.append(QFile::decodeName(path));
                }
            }
            if (batch.size() > maximumBatch) {
                batch.clear();
                overflow = true;
            }
            if (!waiting && (!batch.isEmpty() || overflow)) {
                // The first event after a quiet spell goes out at once; later ones are batched.
                const auto now = SteadyClock::now();
                deadline = now - lastDelivery >= latency ? now : lastDelivery + latency;
            }
        }

        if ((!batch.isEmpty() || overflow) && SteadyClock::now() >= deadline) {
            QStringList paths;
            QSet<QString> seen;
            for (QString& path : batch) {
                if (!seen.contains(path)) {
                    seen.insert(path);
                    paths.append(std::move(path));
                }
            }
            batch.clear();
            const bool notify = overflow || shouldNotify(paths);
            overflow = false;
            lastDelivery = SteadyClock::now();
            if (notify && m_handler)
                m_handler();
        }
    }
    ::close(watches.fd);
    m_watching = false;
}

}
