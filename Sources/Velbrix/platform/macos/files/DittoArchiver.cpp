#include "platform/macos/files/DittoArchiver.h"

#include "foundation/ExcludeRules.h"
#include "platform/macos/files/ZipExcludes.h"
#include "platform/macos/files/ZipWalk.h"

#include <QCoroFuture>
#include <QDir>
#include <QFileInfo>
#include <QSet>
#include <QTemporaryDir>
#include <QThreadPool>
#include <QtConcurrent/QtConcurrentRun>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

constexpr int cancelledStatus = 9;
constexpr int existsStatus = 15;
constexpr int zipSkippedSome = 18;
constexpr qsizetype listedSkipped = 100;

ProcessRequest request(const QString &program, const QStringList &arguments, const Cancellation &cancellation)
{
    ProcessRequest request;
    request.program = program;
    request.arguments = arguments;
    request.cancellation = cancellation;
    request.endsWithUs = true;
    return request;
}

QString firstLine(const QByteArray &words)
{
    return QString::fromUtf8(words.trimmed().split('\n').first());
}

bool metFullDisk(const ProcessOutcome &run)
{
    return (run.errorOutput + run.output).contains("No space left on device");
}

QString complaint(const ProcessOutcome &run)
{
    if (metFullDisk(run))
        return u"磁盘空间不足"_s;
    const QString words = firstLine(run.errorOutput.isEmpty() ? run.output : run.errorOutput);
    return words.isEmpty() ? u"退出码 %1"_s.arg(run.exitCode) : words;
}

// zip goes on without what it cannot read, and says so.
void noteSkipped(const QByteArray &complaints, ArchiveOutcome &outcome)
{
    const QByteArray mark = "could not open for reading: ";
    for (const QByteArray &line : complaints.split('\n')) {
        const qsizetype at = line.indexOf(mark);
        if (at < 0)
            continue;
        if (outcome.skipped.size() < listedSkipped)
            outcome.skipped.append(QString::fromUtf8(line.sliced(at + mark.size())).section(u'/', 1));
        ++outcome.skippedCount;
    }
}

ArchiveOutcome outcomeOf(const ProcessOutcome &run, bool byZip)
{
    ArchiveOutcome outcome;
    if (run.cancelled)
        return {.exitStatus = cancelledStatus, .problem = u"已取消"_s, .cancelled = true};
    if (byZip)
        noteSkipped(run.errorOutput + run.output, outcome);
    if (run.succeeded() || (byZip && run.exitCode == zipSkippedSome && outcome.skippedCount > 0))
        return outcome;
    outcome.exitStatus = run.exitCode != 0 ? run.exitCode : 1;
    outcome.problem = run.crashed ? u"打包程序意外终止"_s : complaint(run);
    outcome.isDiskFull = metFullDisk(run);
    return outcome;
}

Result<void> judged(const Result<ProcessOutcome> &run, const QString &what)
{
    if (!run)
        return std::unexpected(run.error());
    if (run->cancelled)
        return failure(u"已取消"_s);
    if (!run->succeeded())
        return failure(what + complaint(*run));
    return {};
}

bool leadsOut(const QByteArray &path)
{
    return path.startsWith('/') || path.split('/').contains("..");
}

// Folders end with a slash: what lies in anything else may be written where a
// link leads.
bool isInNoFolder(const QByteArray &path, const QSet<QByteArray> &paths)
{
    for (auto end = path.indexOf('/'); end >= 0; end = path.indexOf('/', end + 1)) {
        if (paths.contains(path.first(end)))
            return true;
    }
    return false;
}

// Never waited for: a disk that is gone would hold up the end.
QThreadPool &workers()
{
    static auto *const pool = new QThreadPool;
    return *pool;
}

// Without what ditto notes beside a file of its attributes.
bool isFile(const QByteArray &path)
{
    return !path.endsWith('/') && !path.startsWith("__MACOSX/") &&
           !path.sliced(path.lastIndexOf('/') + 1).startsWith("._");
}

QByteArray unsafePath(const QByteArrayList &listed)
{
    const QSet<QByteArray> paths(listed.begin(), listed.end());
    for (const QByteArray &path : listed) {
        if (leadsOut(path) || isInNoFolder(path, paths))
            return path;
    }
    return {};
}

// All of them or none.
Result<void> moveInto(const QDir &folder, const QDir &from)
{
    const QStringList names =
        from.entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
    for (const QString &name : names) {
        const QFileInfo there(folder.filePath(name));
        if (there.exists() || there.isSymLink())
            return failure(u"“%1”已经存在，没有替换"_s.arg(name));
    }
    for (const QString &name : names) {
        if (!QDir().rename(from.filePath(name), folder.filePath(name)))
            return failure(u"无法写入“%1”"_s.arg(name));
    }
    return {};
}

} // namespace

DittoArchiver::DittoArchiver(Clock &clock) : DittoArchiver(clock, Programs()) {}

DittoArchiver::DittoArchiver(Clock &clock, Programs programs) : _runner(clock), _programs(std::move(programs))
{
}

QCoro::Task<Result<ArchiveOutcome>> DittoArchiver::create(ArchiveRequest archiving)
{
    const QFileInfo source(QDir::cleanPath(QDir(archiving.source).absolutePath()));
    const QString archive = QFileInfo(archiving.archive).absoluteFilePath();
    if (QFileInfo::exists(archive)) {
        ArchiveOutcome taken{.exitStatus = existsStatus, .problem = u"已经存在：%1"_s.arg(archive)};
        co_return taken;
    }
    // As a path: "-x" would be an option.
    const QString below = u"./"_s + source.fileName();
    const QByteArrayList excludes = zipExcludes(archiving.excludes, source.fileName());
    const bool byZip = !excludes.isEmpty();
    // Copies, because the owner may be gone after a wait.
    ProcessRunner runner = _runner;
    const Programs programs = _programs;
    const QFuture<Result<std::shared_ptr<QTemporaryFile>>> writing =
        QtConcurrent::run(&workers(), patternFile, excludes);
    const auto patterns = co_await writing;
    if (!patterns)
        co_return std::unexpected(patterns.error());
    ProcessRequest packing =
        byZip ? request(programs.zip,
                        {u"-r"_s, u"-y"_s, u"-q"_s, archive, below, u"-x@"_s + (*patterns)->fileName()},
                        archiving.cancellation)
              : request(programs.ditto, {u"-c"_s, u"-k"_s, u"--keepParent"_s, source.filePath(), archive},
                        archiving.cancellation);
    packing.workingDirectory = source.path();
    const auto run = co_await runner.run(std::move(packing));
    if (!run)
        co_return std::unexpected(run.error());
    ArchiveOutcome outcome = outcomeOf(*run, byZip);
    if (outcome.exitStatus == 0) {
        const QFuture<Result<QByteArrayList>> listing = QtConcurrent::run(&workers(), zipNames, archive);
        if (const auto names = co_await listing; names)
            outcome.files = std::ranges::count_if(*names, isFile);
    }
    co_return outcome;
}

QCoro::Task<Result<void>> DittoArchiver::test(const QString archive, Cancellation cancellation)
{
    const QFuture<Result<void>> checking = QtConcurrent::run(&workers(), checkZip, archive, cancellation);
    const Result<void> checked = co_await checking;
    co_return Result<void>(checked);
}

QCoro::Task<Result<void>> DittoArchiver::extract(ExtractRequest extraction)
{
    // Copies, because the owner may be gone after a wait.
    ProcessRunner runner = _runner;
    const QString ditto = _programs.ditto;
    const QFuture<Result<QByteArrayList>> listing =
        QtConcurrent::run(&workers(), zipNames, extraction.archive);
    const Result<QByteArrayList> listed = co_await listing;
    if (!listed)
        co_return std::unexpected(listed.error());
    if (const QByteArray path = unsafePath(*listed); !path.isEmpty())
        co_return failure(u"归档中有不安全的路径：“%1”，没有解压"_s.arg(QString::fromUtf8(path)));
    QTemporaryDir meanwhile(QDir(extraction.folder).filePath(u".velbrix-"_s));
    if (!meanwhile.isValid())
        co_return failure(u"无法写入目标文件夹：%1"_s.arg(meanwhile.errorString()));
    ProcessRequest unpacking =
        request(ditto, {u"-x"_s, u"-k"_s, extraction.archive, meanwhile.path()}, extraction.cancellation);
    const auto run = co_await runner.run(std::move(unpacking));
    if (const auto isUnpacked = judged(run, u"解压失败："_s); !isUnpacked)
        co_return isUnpacked;
    co_return moveInto(QDir(extraction.folder), QDir(meanwhile.path()));
}

} // namespace velbrix
