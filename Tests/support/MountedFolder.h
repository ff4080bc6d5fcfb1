#pragma once

#include "foundation/FileThreads.h"

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
        // It lies in the folder of all tests, above that of this one.
        const QString program = QStringLiteral("support/TestFileSystem");
        QDir tests(QCoreApplication::applicationDirPath());
        while (!tests.exists(program) && tests.cdUp())
            continue;
        _isMounted =
            QProcess::execute(tests.filePath(program),
                              QStringList{kind, _folder.filePath(QStringLiteral("content")), path()} +
                                  options) == 0;
    }
    ~MountedFolder()
    {
        setHanging(false);
        if (!FileThreads::waitForAll(std::chrono::seconds(20)))
            qFatal("a thread never came back from the disk");
        if (_isMounted)
            QProcess::execute(QStringLiteral("fusermount3"), {QStringLiteral("-uz"), path()});
    }
    Q_DISABLE_COPY_MOVE(MountedFolder)

    bool isMounted() const { return _isMounted; }
    QString path() const { return _folder.filePath(QStringLiteral("disk")); }
    // One of the hanging kind answers nobody meanwhile.
    void setHanging(bool hangs) const
    {
        QFile sign(_folder.filePath(QStringLiteral("content.hangs")));
        if (hangs ? !sign.open(QIODevice::WriteOnly) : sign.exists() && !sign.remove())
            qFatal("the disk cannot be told");
    }

private:
    QTemporaryDir _folder;
    bool _isMounted = false;
};

} // namespace velbrix::test
