#pragma once

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QString>

namespace velbrix::test {

// Empty when there is no such file.
inline QByteArray readFile(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// With the folders it lies in; its path.
inline QString writeFile(const QString &path, const QByteArray &bytes = "x")
{
    QFile file(path);
    if (!QDir().mkpath(QFileInfo(path).path()) || !file.open(QIODevice::WriteOnly) ||
        file.write(bytes) != bytes.size() || !file.flush())
        qFatal("cannot write %s", qUtf8Printable(path));
    return path;
}

// A program that stands in for one of another system; its path.
inline QString standIn(const QString &path, const QByteArray &script)
{
    writeFile(path, script);
    QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    return path;
}

// Names in a folder, hidden ones too.
inline QStringList entriesOf(const QString &folder)
{
    return QDir(folder).entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
}

} // namespace velbrix::test
