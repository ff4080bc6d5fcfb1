// Does once what a backup does, and prints the milliseconds of each step:
//   backuprun archive SOURCE ARCHIVE   writes the archive, then reads it back
//   backuprun test ARCHIVE             reads an archive back
//   backuprun extract ARCHIVE FOLDER   unpacks it
#include "foundation/SystemClock.h"
#include "platform/linux/archive/ZipArchiver.h"

#include <QCoreApplication>
#include <QCoroTask>
#include <QElapsedTimer>

#include <cstdio>

using namespace Qt::StringLiterals;
using namespace velbrix;

namespace {

int say(const char *step, const QElapsedTimer &timer, const QString &problem)
{
    std::printf("%s %.1f\n", step, static_cast<double>(timer.nsecsElapsed()) / 1e6);
    if (!problem.isEmpty())
        std::fprintf(stderr, "%s: %s\n", step, qPrintable(problem));
    return problem.isEmpty() ? 0 : 1;
}

QString problemOf(const Result<void> &answer)
{
    return answer ? QString() : answer.error().message;
}

int test(Archiver &archiver, const QString &archive)
{
    QElapsedTimer timer;
    timer.start();
    const auto answer = QCoro::waitFor(archiver.test(archive, {}));
    return say("test", timer, problemOf(answer));
}

int archive(Archiver &archiver, const QString &source, const QString &archive)
{
    ArchiveRequest request;
    request.source = source;
    request.archive = archive;
    QElapsedTimer timer;
    timer.start();
    const auto outcome = QCoro::waitFor(archiver.create(request));
    const int failed = say("create", timer, outcome ? outcome->problem : outcome.error().message);
    return failed != 0 ? failed : test(archiver, archive);
}

int extract(Archiver &archiver, const QString &archive, const QString &folder)
{
    ExtractRequest request;
    request.archive = archive;
    request.folder = folder;
    QElapsedTimer timer;
    timer.start();
    const auto answer = QCoro::waitFor(archiver.extract(request));
    return say("extract", timer, problemOf(answer));
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    const QStringList words = QCoreApplication::arguments();
    const QString mode = words.value(1);
    SystemClock clock;
    ZipArchiver archiver(clock);
    if (mode == u"archive" && words.size() == 4)
        return archive(archiver, words[2], words[3]);
    if (mode == u"test" && words.size() == 3)
        return test(archiver, words[2]);
    if (mode == u"extract" && words.size() == 4)
        return extract(archiver, words[2], words[3]);
    std::fputs("usage: backuprun archive SOURCE ARCHIVE | test ARCHIVE | extract ARCHIVE FOLDER\n", stderr);
    return 2;
}
