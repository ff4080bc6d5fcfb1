#include "platform/macos/files/DuDiskUsage.h"

#include <QFile>

#include <memory>
#include <utility>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

constexpr int programsAtOnce = 4;

struct Measuring {
    QList<QByteArray> paths;
    DiskUsage::Measured measured;
    Cancellation cancellation;
    qsizetype next = 0;
};

// Takes one path after another.
QCoro::Task<> measureNext(ProcessRunner runner, QString program, std::shared_ptr<Measuring> measuring)
{
    while (measuring->next < measuring->paths.size() && !measuring->cancellation.isCancelled()) {
        const qsizetype index = measuring->next++;
        ProcessRequest request;
        request.program = program;
        request.arguments = {u"-sk"_s, QFile::decodeName(measuring->paths[index])};
        request.cancellation = measuring->cancellation;
        const auto outcome = co_await runner.run(std::move(request));
        // It fails on what it cannot read and tells the rest.
        if (!measuring->cancellation.isCancelled())
            measuring->measured(index, outcome ? duBytes(outcome->output) : 0);
    }
}

} // namespace

qint64 duBytes(const QByteArray &output)
{
    const QString text = QString::fromUtf8(output).simplified();
    return text.section(u' ', 0, 0).toLongLong() * 1024;
}

DuDiskUsage::DuDiskUsage(Clock &clock, const QString &program) : _runner(clock), _program(program) {}

QCoro::Task<> DuDiskUsage::measure(const QList<QByteArray> paths, Measured measured,
                                   Cancellation cancellation)
{
    const auto measuring = std::make_shared<Measuring>(paths, std::move(measured), cancellation);
    std::vector<QCoro::Task<>> tasks;
    tasks.reserve(programsAtOnce);
    for (int i = 0; i < programsAtOnce; ++i)
        tasks.push_back(measureNext(_runner, _program, measuring));
    for (QCoro::Task<> &task : tasks)
        co_await task;
}

} // namespace velbrix
