#pragma once

#include "support/Test.h"

#include <QTemporaryFile>

#include <cstdio>

namespace velbrix::test {

// What a program printed; its complaints go into `errors`. Through a pipe: the
// thread sanitizer does not survive QProcess.
inline QByteArray output(const QString &program, const QStringList &arguments, QByteArray *errors = nullptr)
{
    const auto quoted = [](const QString &word) {
        return QByteArray("'") + word.toLocal8Bit().replace("'", "'\\''") + "' ";
    };
    QTemporaryFile complaints;
    if (!complaints.open())
        return {};
    QByteArray command = quoted(program);
    for (const QString &argument : arguments)
        command += quoted(argument);
    command += "2>" + quoted(complaints.fileName());
    FILE *pipe = ::popen(command.constData(), "r");
    if (!pipe)
        return {};
    QByteArray printed;
    char buffer[4096];
    while (const std::size_t got = std::fread(buffer, 1, sizeof buffer, pipe))
        printed.append(buffer, static_cast<qsizetype>(got));
    ::pclose(pipe);
    if (errors)
        *errors = complaints.readAll();
    return printed;
}

// What a line of the shell printed, without the white space around it.
inline QByteArray shell(const QString &line)
{
    return output(u"sh"_s, {u"-c"_s, line}).trimmed();
}

// Has ffmpeg make a file in a folder.
inline void ffmpeg(const QString &folder, const QString &arguments)
{
    const QByteArray errors = shell(u"cd '%1' && ffmpeg -v error -y %2 2>&1"_s.arg(folder, arguments));
    if (!errors.isEmpty())
        qWarning("%s: %s", qUtf8Printable(arguments), errors.constData());
}

inline QByteArray probed(const QString &path, const QString &entries, const QString &stream)
{
    return output(u"ffprobe"_s, {u"-v"_s, u"error"_s, u"-select_streams"_s, stream, u"-show_entries"_s,
                                 entries, u"-of"_s, u"csv=p=0"_s, path})
        .trimmed();
}

// One line for each decoded picture: its time on the movie's clock and its hash.
inline QByteArray pictures(const QString &path, QByteArray *errors = nullptr)
{
    return output(u"ffmpeg"_s,
                  {u"-v"_s, u"error"_s, u"-copyts"_s, u"-i"_s, path, u"-map"_s, u"0:v"_s, u"-fps_mode"_s,
                   u"passthrough"_s, u"-f"_s, u"framemd5"_s, u"-"_s},
                  errors);
}

// The decoded sound from the movie's time zero on, interleaved floats. What
// stands before (the encoder's delay, where a reader does not hide it) is cut.
inline QByteArray sound(const QString &path, const QString &stream = u"a:0"_s)
{
    const int start = probed(path, u"stream=start_pts"_s, stream).split('\n').first().toInt();
    const QByteArray all = output(u"ffmpeg"_s, {u"-v"_s, u"error"_s, u"-i"_s, path, u"-map"_s,
                                                u"0:"_s + stream, u"-f"_s, u"f32le"_s, u"-"_s});
    return all.mid(start < 0 ? -start * 8 : 0);
}

} // namespace velbrix::test
