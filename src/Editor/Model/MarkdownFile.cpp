#include "Editor/Model/MarkdownFile.h"

#include "Editor/Model/NoteTextCache.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QStringDecoder>

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace velmo::editor {

const QStringList MarkdownFile::markdownExtensions = {"md", "markdown", "mdown", "mkd", "mdx", "txt"};

static constexpr char utf8Bom[] = "\xEF\xBB\xBF";

MarkdownFile::MarkdownFile(const QUrl& url)
    : m_url(url.isLocalFile() ? QUrl::fromLocalFile(QDir::cleanPath(url.toLocalFile())) : url)
{
}

QString MarkdownFile::name() const
{
    return QFileInfo(path()).completeBaseName();
}

bool MarkdownFile::isMarkdown() const
{
    return markdownExtensions.contains(QFileInfo(path()).suffix().toLower());
}

std::optional<QDateTime> MarkdownFile::modificationDate() const
{
    // A fresh QFileInfo each time: nothing cached may stand in for the disk.
    const QFileInfo info(path());
    if (!info.exists())
        return std::nullopt;
    return info.lastModified();
}

std::optional<qint64> MarkdownFile::byteCount() const
{
    const QFileInfo info(path());
    if (!info.exists())
        return std::nullopt;
    return info.size();
}

static QString systemError(const QString& path, int error)
{
    return QStringLiteral("“%1” could not be accessed: %2.")
        .arg(QFileInfo(path).fileName(), QString::fromLocal8Bit(std::strerror(error)));
}

QByteArray MarkdownFile::readData(bool) const
{
    QFile file(path());
    if (!file.exists())
        throw MarkdownFileError::missing();
    if (QFileInfo(path()).isDir() || !file.open(QIODevice::ReadOnly))
        throw MarkdownFileError::io(systemError(path(), QFileInfo(path()).isDir() ? EISDIR : EACCES));
    return file.readAll();
}

QString MarkdownFile::read(bool downloadIfNeeded) const
{
    return decode(readData(downloadIfNeeded));
}

static std::optional<QString> decodeStrictly(QStringConverter::Encoding encoding, const QByteArray& data)
{
    // Stateless: a sequence cut off at the end is an error, not something to wait for.
    QStringDecoder decoder(encoding, QStringConverter::Flag::Stateless);
    QString text = decoder.decode(data);
    if (decoder.hasError())
        return std::nullopt;
    return text;
}

// Without a byte-order mark, bytes are taken as UTF-16 only when they read as plain text:
// otherwise any even-length Latin-1 file would pass as UTF-16 and open as nonsense.
static bool looksLikeText(const QString& text)
{
    bool hasSeparator = false;
    for (QChar c : text) {
        const char16_t u = c.unicode();
        if (u == ' ' || u == '\n' || u == '\t')
            hasSeparator = true;
        else if (u < 0x20 && u != '\r' && u != '\f')
            return false;
    }
    return hasSeparator;
}

QString MarkdownFile::decode(const QByteArray& data)
{
    if (auto text = decodeStrictly(QStringConverter::Utf8, data))
        return *text;
    const bool evenLength = data.size() % 2 == 0;
    const bool utf16Bom = data.startsWith("\xFF\xFE") || data.startsWith("\xFE\xFF");
    if (evenLength && utf16Bom) {
        if (auto text = decodeStrictly(QStringConverter::Utf16, data))
            return *text;
    }
    if (evenLength) {
        for (auto encoding : {QStringConverter::Utf16LE, QStringConverter::Utf16BE}) {
            if (auto text = decodeStrictly(encoding, data); text && looksLikeText(*text))
                return *text;
        }
    }
    // Latin-1 maps every byte, so nothing is ever refused past this point.
    return QString::fromLatin1(data);
}

static bool writeAll(int fd, const QByteArray& data)
{
    qsizetype done = 0;
    while (done < data.size()) {
        const ssize_t n = ::write(fd, data.constData() + done, size_t(data.size() - done));
        if (n < 0) {
            if (errno == EINTR)
                continue;
            return false;
        }
        done += n;
    }
    return true;
}

static bool startsWithBom(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    return file.read(3) == QByteArray(utf8Bom);
}

void MarkdownFile::write(const QString& text) const
{
    const QString target = path();
    QByteArray data = text.toUtf8();
    if (!data.startsWith(utf8Bom) && startsWithBom(target))
        data.prepend(utf8Bom);

    const QFileInfo info(target);
    const QByteArray targetPath = QFile::encodeName(target);
    struct stat targetStat {};
    const bool exists = ::stat(targetPath.constData(), &targetStat) == 0;
    if (exists && S_ISDIR(targetStat.st_mode))
        throw MarkdownFileError::notWritable(info.fileName());

    // The temporary file stands beside the note, so the rename never crosses file systems;
    // its leading "." keeps it out of the sidebar if a crash leaves it behind.
    const QString temporary = info.absolutePath() + "/." + info.fileName() + ".velmo-write";
    const QByteArray temporaryPath = QFile::encodeName(temporary);
    const int fd = ::open(temporaryPath.constData(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
    if (fd < 0)
        throw MarkdownFileError::io(systemError(target, errno));
    if (!writeAll(fd, data) || ::fsync(fd) != 0) {
        const int error = errno;
        ::close(fd);
        throw MarkdownFileError::io(systemError(target, error));
    }
    if (exists)
        (void)::fchmod(fd, targetStat.st_mode & 07777); // a failure here only loses the mode
    ::close(fd);

    if (::rename(temporaryPath.constData(), targetPath.constData()) != 0)
        throw MarkdownFileError::io(systemError(target, errno));
    // The rename itself must survive a power cut, not only the bytes.
    const int dirFd = ::open(QFile::encodeName(info.absolutePath()).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (dirFd >= 0) {
        (void)::fsync(dirFd);
        ::close(dirFd);
    }
    NoteTextCache::shared().store(text, m_url);
}

QString MarkdownFile::title(const QString& text) const
{
    // Only the first 41 lines are looked at; the 41st runs to the end, as a bounded split does.
    qsizetype start = 0;
    for (int part = 0; part < 41 && start <= text.size(); ++part) {
        qsizetype end = part == 40 ? -1 : text.indexOf(u'\n', start);
        if (end < 0)
            end = text.size();
        const QStringView line = QStringView(text).mid(start, end - start).trimmed();
        start = end + 1;
        if (line.startsWith(u'#')) {
            qsizetype hashes = 0;
            while (hashes < line.size() && line[hashes] == u'#')
                ++hashes;
            if (hashes <= 6) {
                const QStringView rest = line.mid(hashes).trimmed();
                if (!rest.isEmpty())
                    return rest.toString();
            }
            continue;
        }
        if (line.isEmpty() || line.startsWith(u"---"))
            continue;
        break;
    }
    return name();
}

size_t qHash(const MarkdownFile& file, size_t seed)
{
    return qHash(file.url(), seed);
}

}
