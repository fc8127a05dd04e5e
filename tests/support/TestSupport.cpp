#include "support/TestSupport.h"

#include <QFile>
#include <stdexcept>

namespace velmo::test {

QString sourceDir()
{
    const QString dir = qEnvironmentVariable("VELMO_SOURCE_DIR");
    return dir.isEmpty() ? QStringLiteral(VELMO_TEST_SOURCE_DIR) : dir;
}

QByteArray readBytes(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        throw std::runtime_error("cannot read " + path.toStdString());
    return file.readAll();
}

void writeBytes(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate) || file.write(bytes) != bytes.size())
        throw std::runtime_error("cannot write " + path.toStdString());
}

}
