#include "foundation/ProcessRunner.h"

#include <QDir>
#include <QFileInfo>
#include <QMetaObject>
#include <QProcess>

#include <coroutine>
#include <csignal>
#include <unistd.h>
#include <utility>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace velbrix {
namespace {

// From the request to end to the kill: enough to remove what is half written.
constexpr auto grace = 2s;

void keep(QByteArray &kept, const QByteArray &piece, qsizetype limit)
{
    kept += piece.first(std::min(piece.size(), std::max<qsizetype>(limit - kept.size(), 0)));
}

// Runs the arguments in its own place, and beside them in their process group a
// shell that waits for the end of standard input, which ends with who holds it.
const QString tether = u"exec 3<&0; { trap '' TERM INT HUP; read -r _; kill -TERM 0; sleep 2; kill -KILL 0; "
                       u"} <&3 >/dev/null 2>&1 & "
                       "exec \"$@\" </dev/null 3<&-"_s;

// The program leads a process group of its own, so its children end with it.
class Run {
public:
    Run(Clock &clock, ProcessRequest request) : _clock(clock), _request(std::move(request))
    {
        if (_request.endsWithUs) {
            _process.setProgram(u"/bin/sh"_s);
            _process.setArguments(QStringList{u"-c"_s, tether, u"sh"_s, _request.program} +
                                  _request.arguments);
        } else {
            _process.setProgram(_request.program);
            _process.setArguments(_request.arguments);
            _process.setStandardInputFile(QProcess::nullDevice());
        }
        if (!_request.workingDirectory.isEmpty())
            _process.setWorkingDirectory(_request.workingDirectory);
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        for (auto it = _request.environment.cbegin(); it != _request.environment.cend(); ++it)
            environment.insert(it.key(), it.value());
        _process.setProcessEnvironment(environment);
        _process.setChildProcessModifier([] { ::setpgid(0, 0); });
        QObject::connect(&_process, &QProcess::finished, &_process, [this] { ended(); });
        QObject::connect(&_process, &QProcess::errorOccurred, &_process,
                         [this](QProcess::ProcessError error) {
                             if (error == QProcess::FailedToStart)
                                 ended();
                         });
        QObject::connect(&_process, &QProcess::readyReadStandardOutput, &_process, [this] { readOutput(); });
        QObject::connect(&_process, &QProcess::readyReadStandardError, &_process,
                         [this] { readErrorOutput(); });
    }
    ~Run()
    {
        QObject::disconnect(&_process, nullptr, nullptr, nullptr);
        if (_process.state() != QProcess::NotRunning)
            signalGroup(SIGKILL);
    }

    void start()
    {
        _process.start();
        if (_request.timeout.count() > 0)
            _timeout = _clock.after(_request.timeout, [this] { end(_outcome.timedOut); });
        _cancelling = _request.cancellation.onCancel([this] { end(_outcome.cancelled); });
    }

    // Resumes whoever waits once the program has ended or could not start.
    bool await_ready() const { return _hasEnded; }
    void await_suspend(std::coroutine_handle<> waiter) { _waiter = waiter; }
    void await_resume() const {}

    Result<ProcessOutcome> takeOutcome()
    {
        if (_process.error() == QProcess::FailedToStart)
            return failure(_process.errorString());
        _timeout.reset();
        _kill.reset();
        readOutput();
        readErrorOutput();
        _outcome.exitCode = _process.exitCode();
        _outcome.crashed = _process.exitStatus() == QProcess::CrashExit;
        return std::move(_outcome);
    }

private:
    void ended()
    {
        _hasEnded = true;
        // Queued: the process is still inside its own signal, and whoever
        // waits destroys it.
        if (_waiter)
            QMetaObject::invokeMethod(
                &_process, [waiter = std::exchange(_waiter, nullptr)] { waiter.resume(); },
                Qt::QueuedConnection);
    }
    void readOutput()
    {
        const QByteArray piece = _process.readAllStandardOutput();
        keep(_outcome.output, piece, _request.outputLimit);
        if (_request.onOutput && !piece.isEmpty())
            _request.onOutput(piece);
    }
    void readErrorOutput()
    {
        const QByteArray piece = _process.readAllStandardError();
        keep(_outcome.errorOutput, piece, _request.outputLimit);
        if (_request.onErrorOutput && !piece.isEmpty())
            _request.onErrorOutput(piece);
    }
    void end(bool &reason)
    {
        reason = true;
        signalGroup(SIGTERM);
        _kill = _clock.after(grace, [this] { signalGroup(SIGKILL); });
    }
    void signalGroup(int signal)
    {
        if (const qint64 pid = _process.processId(); pid > 0)
            ::kill(-static_cast<pid_t>(pid), signal);
    }

    Clock &_clock;
    ProcessRequest _request;
    QProcess _process;
    ProcessOutcome _outcome;
    std::unique_ptr<Alarm> _timeout;
    std::unique_ptr<Alarm> _kill;
    std::coroutine_handle<> _waiter;
    bool _hasEnded = false;
    Observation _cancelling;
};

} // namespace

QCoro::Task<Result<ProcessOutcome>> ProcessRunner::run(ProcessRequest request)
{
    if (!QDir::isAbsolutePath(request.program))
        co_return failure(u"程序路径不是绝对路径：%1"_s.arg(request.program));
    if (request.endsWithUs && !QFileInfo(request.program).isExecutable())
        co_return failure(u"没有这个程序：%1"_s.arg(request.program));
    Run run(_clock, std::move(request));
    run.start();
    co_await run;
    co_return run.takeOutcome();
}

} // namespace velbrix
