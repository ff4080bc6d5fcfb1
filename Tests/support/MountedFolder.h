#pragma once

#include <QCoreApplication>
#include <QDir>
#include <QProcess>
#include <QTemporaryDir>

namespace velbrix::test {

// An empty disk of one of the kinds in TestFileSystem.cpp.
class MountedFolder {
public:
    explicit MountedFolder(const QString &kind, const QStringList &options = {})
    {
        for (const QString &name : {QStringLiteral("content"), QStringLiteral("disk")})
            QDir(_folder.path()).mkdir(name);
        const QString program =
            QCoreApplication::applicationDirPath() + QStringLiteral("/../support/TestFileSystem");
        _isMounted = QProcess::execute(
                         program, QStringList{kind, _folder.filePath(QStringLiteral("content")), path()} +
                                      options) == 0;
    }
    ~MountedFolder()
    {
        if (_isMounted)
            QProcess::execute(QStringLiteral("fusermount3"), {QStringLiteral("-uz"), path()});
    }
    Q_DISABLE_COPY_MOVE(MountedFolder)

    bool isMounted() const { return _isMounted; }
    QString path() const { return _folder.filePath(QStringLiteral("disk")); }

private:
    QTemporaryDir _folder;
    bool _isMounted = false;
};

} // namespace velbrix::test
