#pragma once

#include <QByteArray>
#include <QFile>
#include <QProcess>
#include <QString>
#include <QStringList>

namespace velbrix::test {

// What a program printed; its complaints go into `errors`.
inline QByteArray output(const QString &program, const QStringList &arguments, QByteArray *errors = nullptr)
{
    QProcess process;
    process.start(program, arguments);
    process.waitForFinished(60000);
    if (errors)
        *errors = process.readAllStandardError();
    return process.readAllStandardOutput();
}

// The decoded pictures (0:v) or sound (0:a:0 …), as they come to a player.
inline QByteArray decoded(const QString &path, const QString &stream, QByteArray *errors = nullptr)
{
    using namespace Qt::StringLiterals;
    const bool isVideo = stream.startsWith(u"0:v"_s);
    QStringList arguments{u"-v"_s, u"error"_s, u"-i"_s, path, u"-map"_s, stream};
    arguments += isVideo ? QStringList{u"-fps_mode"_s, u"passthrough"_s, u"-f"_s, u"framemd5"_s, u"-"_s}
                         : QStringList{u"-f"_s, u"f32le"_s, u"-"_s};
    return output(u"ffmpeg"_s, arguments, errors);
}

inline QByteArray probed(const QString &path, const QString &entries, const QString &stream)
{
    using namespace Qt::StringLiterals;
    return output(u"ffprobe"_s, {u"-v"_s, u"error"_s, u"-select_streams"_s, stream, u"-show_entries"_s,
                                 entries, u"-of"_s, u"csv=p=0"_s, path})
        .trimmed();
}

inline QByteArray contents(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

inline void writeFile(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    if (file.open(QIODevice::WriteOnly | QIODevice::Truncate))
        file.write(bytes);
}

} // namespace velbrix::test
