#pragma once

#include <QString>
#include <QStringList>
#include <QTemporaryFile>

#include <cstdio>
#include <unistd.h>

namespace velbrix::test {

// What the program prints while this lives; it is printed in the end.
class CapturedLog {
public:
    CapturedLog()
    {
        if (!_file.open())
            qFatal("no temporary file");
        std::fflush(stdout);
        _stdout = ::dup(STDOUT_FILENO);
        ::dup2(_file.handle(), STDOUT_FILENO);
    }
    ~CapturedLog()
    {
        std::fflush(stdout);
        ::dup2(_stdout, STDOUT_FILENO);
        ::close(_stdout);
        // A failed check has spoken into the file, too.
        QFile all(_file.fileName());
        if (all.open(QIODevice::ReadOnly))
            std::fputs(all.readAll().constData(), stdout);
    }
    Q_DISABLE_COPY_MOVE(CapturedLog)

    // The lines with the tag since the last call, without it.
    QStringList take(const QString &tag)
    {
        std::fflush(stdout);
        QFile all(_file.fileName());
        if (!all.open(QIODevice::ReadOnly))
            return {};
        all.seek(_taken);
        QStringList lines;
        const QString start = u'[' + tag + QStringLiteral("] ");
        for (const QString &line : QString::fromUtf8(all.readAll()).split(u'\n', Qt::SkipEmptyParts)) {
            if (line.startsWith(start))
                lines.append(line.sliced(start.size()));
        }
        _taken = all.pos();
        return lines;
    }

private:
    QTemporaryFile _file;
    int _stdout = -1;
    qint64 _taken = 0;
};

} // namespace velbrix::test
