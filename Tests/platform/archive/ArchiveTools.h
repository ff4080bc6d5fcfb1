#pragma once

#include "../media/MediaTools.h"
#include "foundation/SystemClock.h"
#include "platform/linux/archive/ZipArchiver.h"

#include <QCoroTask>

namespace velbrix::test {

// A temporary folder, and the archiver that is tested in it.
class ArchiveRig {
    QTemporaryDir _folder;

public:
    SystemClock clock;
    ZipArchiver zip{clock};
    Archiver *archiver = &zip;

    QString path(const QString &name) const { return _folder.filePath(name); }
    // A line for the shell in the folder.
    QByteArray in(const QString &line) const
    {
        return shell(u"cd '%1' || exit; export LC_ALL=C.UTF-8; %2"_s.arg(_folder.path(), line));
    }
    ArchiveOutcome create(const QString &source, const QString &archive, const QStringList &excludes = {},
                          const Cancellation &cancellation = {})
    {
        ArchiveRequest request;
        request.source = path(source);
        request.archive = path(archive);
        request.excludes = excludes;
        request.cancellation = cancellation;
        return QCoro::waitFor(archiver->create(request)).value_or(ArchiveOutcome{.exitStatus = -1});
    }
    // The words of a failure, or nothing.
    QString test(const QString &archive)
    {
        return errorText(QCoro::waitFor(archiver->test(path(archive), {})));
    }
    QString extract(const QString &archive, const QString &folder)
    {
        ExtractRequest request;
        request.archive = path(archive);
        request.folder = path(folder);
        return errorText(QCoro::waitFor(archiver->extract(request)));
    }
    // What a backup must keep of a tree, and its contents.
    QByteArray tree(const QString &folder) const
    {
        return in(u"cd '"_s + folder +
                  u"' && find . \\( -type d -printf '%p d %m %Ts\\n' -o -type l -printf "
                  "'%p l %Ts %l\\n' -o -printf '%p %y %m %Ts %s\\n' \\) | LC_ALL=C sort; find . "
                  "-type f -print0 | LC_ALL=C sort -z | xargs -0 md5sum"_s);
    }
};

} // namespace velbrix::test
