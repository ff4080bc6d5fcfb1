#pragma once

#include "platform/Archiver.h"
#include "platform/DiskUsage.h"
#include "platform/TrashCan.h"
#include "support/AnswerTime.h"

#include <QtEndian>

namespace velbrix::test {

// Writes a few bytes for an archive, which its test() knows again.
class FakeArchiver final : public Archiver {
public:
    explicit FakeArchiver(Clock &clock) : _answer(clock) {}

    static inline const QByteArray content = "PK\5\6" + QByteArray(18, 0);
    static constexpr auto turn = std::chrono::milliseconds(100); // how often a held call looks up

    ArchiveOutcome outcome;         // of create; half an archive is left when it is not 0
    std::optional<QString> failure; // of create: it does not begin
    bool tears = false;             // create says that all is well, with half an archive
    std::optional<QString> extractProblem;
    QStringList entries{u"extracted"_s}; // files that extract makes
    bool holds = false;                  // every call waits while this is set, or until it is cancelled
    QStringList calls;                   // "create SOURCE", "test ARCHIVE", "extract ARCHIVE"

    QCoro::Task<Result<ArchiveOutcome>> create(ArchiveRequest request) override
    {
        calls << u"create "_s + request.source;
        co_await _answer.after();
        if (failure)
            co_return velbrix::failure(*failure);
        if (QFileInfo::exists(request.archive))
            co_return ArchiveOutcome{.exitStatus = 15, .problem = u"已经存在："_s + request.archive};
        if (!QFileInfo(request.source).isDir())
            co_return ArchiveOutcome{.exitStatus = 18, .problem = u"无法读取源文件夹"_s};
        if (!write(request.archive, content.first(content.size() / 2)))
            co_return ArchiveOutcome{.exitStatus = 15, .problem = u"无法创建归档："_s + request.archive};
        if (co_await isCancelled(request.cancellation))
            co_return ArchiveOutcome{.exitStatus = 9, .problem = u"已取消"_s, .cancelled = true};
        if (outcome.exitStatus == 0 && !tears)
            write(request.archive, content);
        co_return std::as_const(outcome);
    }

    QCoro::Task<Result<void>> test(const QString archive, Cancellation cancellation) override
    {
        calls << u"test "_s + archive;
        co_await _answer.after();
        if (co_await isCancelled(cancellation))
            co_return velbrix::failure(u"已取消"_s);
        co_return isWhole(archive) ? Result<void>() : velbrix::failure(u"归档已损坏"_s);
    }

    QCoro::Task<Result<void>> extract(ExtractRequest request) override
    {
        calls << u"extract "_s + request.archive;
        co_await _answer.after();
        if (co_await isCancelled(request.cancellation))
            co_return velbrix::failure(u"已取消"_s);
        if (extractProblem)
            co_return velbrix::failure(*extractProblem);
        if (!isWhole(request.archive))
            co_return velbrix::failure(u"归档已损坏"_s);
        const QDir folder(request.folder);
        for (const QString &entry : entries) {
            if (folder.exists(entry))
                co_return velbrix::failure(u"已经存在："_s + folder.filePath(entry));
        }
        for (const QString &entry : entries) {
            if (!write(folder.filePath(entry), content))
                co_return velbrix::failure(u"无法写入目标文件夹"_s);
        }
        co_return Result<void>();
    }

private:
    // Goes on when nothing holds it any more.
    QCoro::Task<bool> isCancelled(Cancellation cancellation)
    {
        while (holds && !cancellation.isCancelled())
            co_await _answer.after(turn);
        co_return cancellation.isCancelled();
    }
    static bool write(const QString &path, const QByteArray &bytes)
    {
        QFile file(path);
        return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
    }
    // Whatever its comment.
    static bool isWhole(const QString &path)
    {
        const QByteArray bytes = readFile(path);
        return bytes.size() >= content.size() && bytes.startsWith(content.chopped(2)) &&
               qFromLittleEndian<quint16>(bytes.constData() + 20) == bytes.size() - content.size();
    }

    AnswerTime _answer;
};

// Files and folders as large as the test says, told in the order asked for.
class FakeDiskUsage final : public DiskUsage {
public:
    explicit FakeDiskUsage(Clock &clock) : _answer(clock) {}

    QHash<QByteArray, qint64> sizes;    // by path; 0 for the others
    std::chrono::milliseconds delay{0}; // before each answer
    QList<QList<QByteArray>> calls;     // the paths of each

    QCoro::Task<> measure(const QList<QByteArray> paths, Measured measured,
                          Cancellation cancellation) override
    {
        calls.append(paths);
        for (qsizetype index = 0; index < paths.size(); ++index) {
            co_await _answer.after(delay);
            if (cancellation.isCancelled())
                co_return;
            measured(index, sizes.value(paths[index]));
        }
    }

private:
    AnswerTime _answer;
};

// Really moves what it is given, into a folder of its own.
class FakeTrashCan final : public TrashCan {
public:
    QHash<QString, QString> refused; // why a path cannot be moved, or a trashed one not put back
    std::optional<Result<RemovalReport>> emptyAnswer; // instead of emptying it
    QStringList calls;                                // "trash …", "put back …", "empty"

    QCoro::Task<Result<QString>> moveToTrash(const QString path) override
    {
        calls << u"trash "_s + path;
        co_await _answer.after();
        if (refused.contains(path))
            co_return failure(refused.value(path));
        QString item = path;
        while (item.endsWith(u'/'))
            item.chop(1);
        const QString name = item.section(u'/', -1);
        if (!item.startsWith(u'/') || name == u"." || name == u".." || !isThere(item))
            co_return failure(u"文件不存在"_s);
        if (item == _folder.path() || isTrashed(item))
            co_return failure(u"已经在废纸篓里"_s);
        const QString place = u"%1/%2"_s.arg(_folder.path()).arg(++_count);
        const QString trashed = place + u'/' + name;
        if (!QDir().mkpath(place) || !move(item, trashed))
            co_return failure(u"不能移到废纸篓"_s);
        co_return QString(trashed);
    }
    QCoro::Task<Result<void>> putBack(const QString trashed, const QString original) override
    {
        calls << u"put back "_s + original;
        co_await _answer.after();
        if (refused.contains(trashed))
            co_return failure(refused.value(trashed));
        if (!isThere(trashed))
            co_return failure(u"废纸篓里已经没有它了"_s);
        if (!isTrashed(trashed))
            co_return failure(u"不在废纸篓里"_s);
        if (isThere(original))
            co_return failure(u"原来的位置已经有同名的项目"_s);
        if (!QDir().mkpath(QFileInfo(original).path()) || !move(trashed, original))
            co_return failure(u"不能放回原处"_s);
        co_return Result<void>();
    }
    QCoro::Task<Result<RemovalReport>> empty(RemovalRules, Cancellation cancellation) override
    {
        calls << u"empty"_s;
        co_await _answer.after();
        if (emptyAnswer)
            co_return std::as_const(*emptyAnswer);
        RemovalReport report;
        const QDir folder(_folder.path());
        const QStringList places = folder.entryList(QDir::Dirs | QDir::NoDotAndDotDot);
        for (const QString &place : places) {
            if (cancellation.isCancelled())
                break;
            QDir(folder.filePath(place)).removeRecursively();
            ++report.removedFiles;
        }
        co_return report;
    }
    QStringList folders() const override { return {_folder.path()}; }
    QStringList itemFolders() const override { return folders(); }

private:
    bool isTrashed(const QString &path) const { return path.startsWith(_folder.path() + u'/'); }
    static bool isThere(const QString &path)
    {
        const QFileInfo item(path);
        return item.exists() || item.isSymLink();
    }
    static bool move(const QString &from, const QString &to)
    {
        return std::rename(QFile::encodeName(from).constData(), QFile::encodeName(to).constData()) == 0;
    }

    AnswerTime _answer;
    QTemporaryDir _folder;
    int _count = 0;
};

} // namespace velbrix::test
