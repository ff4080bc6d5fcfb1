#pragma once

#include "support/Test.h"

#include <QProcess>

#include <cstdio>

namespace velbrix::test {

// What a line of the shell printed; complaints are dropped. Through a pipe: the
// thread sanitizer does not survive QProcess.
inline QByteArray output(const QString &line)
{
    FILE *const pipe = ::popen(("exec 2>/dev/null; " + line.toUtf8()).constData(), "r");
    if (!pipe)
        return {};
    QByteArray printed;
    char buffer[4096];
    while (const std::size_t got = std::fread(buffer, 1, sizeof buffer, pipe))
        printed.append(buffer, static_cast<qsizetype>(got));
    ::pclose(pipe);
    return printed;
}

// The same without the white space around it.
inline QByteArray shell(const QString &line)
{
    return output(line).trimmed();
}

// Runs a program with its arguments to its end.
inline bool run(const QString &line)
{
    const QStringList words = line.split(u' ');
    return QProcess::execute(words.first(), words.sliced(1)) == 0;
}

// Runs as long as this lives.
class RunningProgram {
public:
    explicit RunningProgram(const QString &program, const QStringList &arguments = {},
                            const QProcessEnvironment &environment = QProcessEnvironment::systemEnvironment())
    {
        _process.setProcessEnvironment(environment);
        _process.start(program, arguments);
        _process.waitForStarted();
    }
    ~RunningProgram() { kill(); }
    Q_DISABLE_COPY_MOVE(RunningProgram)

    void kill()
    {
        _process.kill();
        _process.waitForFinished();
    }

private:
    QProcess _process;
};

} // namespace velbrix::test
