#pragma once

#include <QByteArray>
#include <QString>

namespace velmo::test {

// The repository's root, for fixtures that live beside the tests.
QString sourceDir();

QByteArray readBytes(const QString& path);
void writeBytes(const QString& path, const QByteArray& bytes);

}
