#pragma once

#include "foundation/Clock.h"
#include "platform/Archiver.h"

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
    explicit FakeArchiver(Clock &clock) : _clock(clock) {}

    static inline const QByteArray content = "PK\5\6" + QByteArray(18, 0);
    static constexpr auto turn = std::chrono::milliseconds(100); // how often a held call looks up

    ArchiveOutcome outcome;             // of create; half an archive is left when it is not 0
    std::optional<QString> failure;     // of create: it does not begin
    bool tears = false;                 // create says that all is well, with half an archive
    std::optional<QString> testProblem; // even of a whole archive
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
        if (failure)
            co_return velbrix::failure(*failure);
        if (QFileInfo::exists(request.archive))
            co_return ArchiveOutcome{.exitStatus = 15,
                                     .problem = QStringLiteral("已经存在：") + request.archive};
        write(request.archive, content.first(content.size() / 2));
        report(request.progress);
        while (holds && !request.cancellation.isCancelled())
            co_await Pause(_clock, turn);
        if (request.cancellation.isCancelled())
            co_return ArchiveOutcome{.exitStatus = 9, .problem = QStringLiteral("已取消"), .cancelled = true};
        if (outcome.exitStatus == 0 && !tears)
            write(request.archive, content);
        co_return std::as_const(outcome);
    }

    QCoro::Task<Result<void>> test(const QString archive, Cancellation cancellation) override
    {
        calls.append(QStringLiteral("test ") + archive);
        while (holds && !cancellation.isCancelled())
            co_await Pause(_clock, turn);
        if (cancellation.isCancelled())
            co_return velbrix::failure(QStringLiteral("已取消"));
        if (testProblem)
            co_return velbrix::failure(*testProblem);
        QFile file(archive);
        if (!file.open(QIODevice::ReadOnly) || file.readAll() != content)
            co_return velbrix::failure(QStringLiteral("归档已损坏"));
        co_return Result<void>();
    }

    QCoro::Task<Result<void>> extract(ExtractRequest request) override
    {
        calls.append(QStringLiteral("extract ") + request.archive);
        extracted.append(request);
        report(request.progress);
        while (holds && !request.cancellation.isCancelled())
            co_await Pause(_clock, turn);
        if (request.cancellation.isCancelled())
            co_return velbrix::failure(QStringLiteral("已取消"));
        if (extractProblem)
            co_return velbrix::failure(*extractProblem);
        for (const QString &entry : entries) {
            const QString made = QDir(request.folder).filePath(entry);
            if (QFileInfo::exists(made))
                co_return velbrix::failure(QStringLiteral("已经存在：") + made);
            write(made, content);
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
    static void write(const QString &path, const QByteArray &bytes)
    {
        QFile file(path);
        if (file.open(QIODevice::WriteOnly))
            file.write(bytes);
    }

    Clock &_clock;
};

} // namespace velbrix::test
