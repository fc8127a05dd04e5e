#include "support/BenchData.h"

#include <QCryptographicHash>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QProcess>
#include <QStandardPaths>
#include <algorithm>
#include <stdexcept>

namespace velmo::bench {

static QString readText(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        throw std::runtime_error("cannot read " + path.toStdString());
    return QString::fromUtf8(file.readAll());
}

QString vaultDir(const QStringList& generatorArguments)
{
    QString root = qEnvironmentVariable("VELMO_BENCH_DATA");
    if (root.isEmpty())
        root = QStringLiteral(VELMO_BENCH_SOURCE_DIR "/build/bench-data");
    const QByteArray key = QCryptographicHash::hash(generatorArguments.join(' ').toUtf8(),
                                                    QCryptographicHash::Sha1).toHex().left(10);
    const QString dir = root + "/vault-" + QString::fromLatin1(key);
    if (QFile::exists(dir + "/.complete"))
        return dir;

    const QString generator = QStringLiteral(VELMO_BENCH_SOURCE_DIR "/../shared/tools/make-vault.py");
    QProcess process;
    process.start(QStringLiteral("python3"), QStringList{generator, dir} + generatorArguments);
    if (!process.waitForFinished(600'000) || process.exitCode() != 0)
        throw std::runtime_error("make-vault.py failed: " + process.readAllStandardError().toStdString());
    QFile marker(dir + "/.complete");
    marker.open(QIODevice::WriteOnly);
    return dir;
}

QString bigNoteText()
{
    // The generator needs notes to link to, so the big note comes with the default 1000.
    return readText(vaultDir({"--big-note", "1"}) + "/Big Note.md");
}

QString concatenatedNotes(int notes)
{
    const QString dir = vaultDir({"--notes", QString::number(notes)});
    QStringList paths;
    QDirIterator it(dir, {"*.md"}, QDir::Files, QDirIterator::Subdirectories);
    while (it.hasNext())
        paths << it.next();
    std::sort(paths.begin(), paths.end());
    QString all;
    for (const QString& path : paths)
        all += readText(path);
    return all;
}

}
