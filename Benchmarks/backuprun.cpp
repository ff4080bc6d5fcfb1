// Does once what a scheduled backup does, with the real archiver:
//   backuprun archive SOURCE DESTINATION   writes, tests and names an archive of SOURCE in DESTINATION
//   backuprun mirror SOURCE DESTINATION    makes the mirror of SOURCE in DESTINATION equal to it
// Prints the run's message; fails when the run does.
#include "foundation/SystemClock.h"
#include "maintenance/backup/ArchiveRun.h"
#include "maintenance/backup/MirrorRun.h"
#include "platform/linux/archive/ZipArchiver.h"

#include <QCoreApplication>
#include <QCoroTask>
#include <QFileInfo>

#include <cstdio>

using namespace Qt::StringLiterals;
using namespace velbrix;

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    const QStringList words = QCoreApplication::arguments();
    const QString mode = words.value(1);
    if (words.size() != 4 || (mode != u"archive" && mode != u"mirror")) {
        std::fputs("usage: backuprun archive|mirror SOURCE DESTINATION\n", stderr);
        return 2;
    }
    SystemClock clock;
    ZipArchiver archiver(clock);
    BackupRunRequest request;
    request.task.kind = mode == u"mirror" ? BackupTaskKind::sync : BackupTaskKind::backup;
    request.task.sourcePath = words[2];
    request.task.destPath = words[3];
    request.task.name = QFileInfo(words[2]).fileName();
    request.at = clock.now();
    const BackupOutcome outcome = request.task.kind == BackupTaskKind::sync
                                      ? QCoro::waitFor(runMirror(clock, request))
                                      : QCoro::waitFor(runArchive(archiver, request));
    std::printf("%s\n", qPrintable(outcome.message));
    return outcome.state == BackupOutcome::State::done ? 0 : 1;
}
