#pragma once

#include "platform/Archiver.h"
#include "support/AnswerTime.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QList>
#include <QStringList>

#include <optional>
#include <utility>

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
    QStringList entries{QStringLiteral("extracted")}; // files that extract makes
    QList<ArchiveProgress> progress;                  // what create and extract report on the way
    bool holds = false; // every call waits while this is set, or until it is cancelled
    QStringList calls;  // "create SOURCE", "test ARCHIVE", "extract ARCHIVE"
    QList<ArchiveRequest> created;
    QList<ExtractRequest> extracted;

    QCoro::Task<Result<ArchiveOutcome>> create(ArchiveRequest request) override
    {
        calls.append(QStringLiteral("create ") + request.source);
        created.append(request);
        co_await _answer.after();
        if (failure)
            co_return velbrix::failure(*failure);
        if (QFileInfo::exists(request.archive))
            co_return ArchiveOutcome{.exitStatus = 15,
                                     .problem = QStringLiteral("已经存在：") + request.archive};
        if (!QFileInfo(request.source).isDir())
            co_return ArchiveOutcome{.exitStatus = 18, .problem = QStringLiteral("无法读取源文件夹")};
        if (!write(request.archive, content.first(content.size() / 2)))
            co_return ArchiveOutcome{.exitStatus = 15,
                                     .problem = QStringLiteral("无法创建归档：") + request.archive};
        report(request.progress);
        while (holds && !request.cancellation.isCancelled())
            co_await _answer.after(turn);
        if (request.cancellation.isCancelled())
            co_return ArchiveOutcome{.exitStatus = 9, .problem = QStringLiteral("已取消"), .cancelled = true};
        if (outcome.exitStatus == 0 && !tears)
            write(request.archive, content);
        co_return std::as_const(outcome);
    }

    QCoro::Task<Result<void>> test(const QString archive, Cancellation cancellation) override
    {
        calls.append(QStringLiteral("test ") + archive);
        co_await _answer.after();
        while (holds && !cancellation.isCancelled())
            co_await _answer.after(turn);
        if (cancellation.isCancelled())
            co_return velbrix::failure(QStringLiteral("已取消"));
        co_return isWhole(archive) ? Result<void>() : velbrix::failure(QStringLiteral("归档已损坏"));
    }

    QCoro::Task<Result<void>> extract(ExtractRequest request) override
    {
        calls.append(QStringLiteral("extract ") + request.archive);
        extracted.append(request);
        co_await _answer.after();
        report(request.progress);
        while (holds && !request.cancellation.isCancelled())
            co_await _answer.after(turn);
        if (request.cancellation.isCancelled())
            co_return velbrix::failure(QStringLiteral("已取消"));
        if (extractProblem)
            co_return velbrix::failure(*extractProblem);
        if (!isWhole(request.archive))
            co_return velbrix::failure(QStringLiteral("归档已损坏"));
        const QDir folder(request.folder);
        for (const QString &entry : entries) {
            if (QFileInfo::exists(folder.filePath(entry)))
                co_return velbrix::failure(QStringLiteral("已经存在：") + folder.filePath(entry));
        }
        for (const QString &entry : entries) {
            if (!write(folder.filePath(entry), content))
                co_return velbrix::failure(QStringLiteral("无法写入目标文件夹"));
        }
        co_return Result<void>();
    }

private:
    void report(const std::function<void(const ArchiveProgress &)> &listener) const
    {
        for (const ArchiveProgress &step : progress) {
            if (listener)
                listener(step);
        }
    }
    static bool write(const QString &path, const QByteArray &bytes)
    {
        QFile file(path);
        return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
    }
    static bool isWhole(const QString &path)
    {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) && file.readAll() == content;
    }

    AnswerTime _answer;
};

} // namespace velbrix::test
