#pragma once

#include "platform/Programs.h"

#include <csignal>

#include <sys/resource.h>

namespace velbrix::test {

// Has ffmpeg make a file in a folder.
inline void ffmpeg(const QString &folder, const QString &arguments)
{
    const QByteArray errors = shell(u"cd '%1' && ffmpeg -v error -y %2 2>&1"_s.arg(folder, arguments));
    if (!errors.isEmpty())
        qWarning("%s: %s", qUtf8Printable(arguments), errors.constData());
}

inline QByteArray probed(const QString &path, const QString &entries, const QString &stream)
{
    return shell(u"ffprobe -v error -select_streams %1 -show_entries %2 -of csv=p=0 '%3'"_s.arg(
        stream, entries, path));
}

// One line for each decoded picture: its time on the movie's clock and its
// hash. What is wrong with the movie stands among them.
inline QByteArray pictures(const QString &path)
{
    return output(
        u"ffmpeg -v error -copyts -i '%1' -map 0:v -fps_mode passthrough -f framemd5 - 2>&1"_s.arg(path));
}

// How many there are; none where anything is wrong with the movie.
inline qsizetype playablePictures(const QString &path)
{
    const QByteArray lines = '\n' + pictures(path).trimmed();
    const qsizetype found = lines.count("\n0, ");
    return found + lines.count("\n#") == lines.count('\n') ? found : 0;
}

// The decoded sound from the movie's time zero on, interleaved floats. What
// stands before (the encoder's delay, where a reader does not hide it) is cut.
inline QByteArray sound(const QString &path, const QString &stream = u"a:0"_s)
{
    const int start = probed(path, u"stream=start_pts"_s, stream).split('\n').first().toInt();
    const QByteArray all = output(u"ffmpeg -v error -i '%1' -map 0:%2 -f f32le -"_s.arg(path, stream));
    return all.mid(start < 0 ? -start * 8 : 0);
}

// Stands for a full disk: no file of this program grows beyond that size.
class LargestFile {
public:
    explicit LargestFile(qint64 bytes)
    {
        ::getrlimit(RLIMIT_FSIZE, &_before);
        const rlimit tight{.rlim_cur = static_cast<rlim_t>(bytes), .rlim_max = _before.rlim_max};
        ::setrlimit(RLIMIT_FSIZE, &tight);
    }
    ~LargestFile()
    {
        ::setrlimit(RLIMIT_FSIZE, &_before);
        std::signal(SIGXFSZ, _handler);
    }
    Q_DISABLE_COPY_MOVE(LargestFile)

private:
    rlimit _before{};
    void (*const _handler)(int) = std::signal(SIGXFSZ, SIG_IGN);
};

} // namespace velbrix::test
