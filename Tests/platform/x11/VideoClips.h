#pragma once

#include "platform/media/MediaTools.h"

namespace velbrix::test {

// Small videos, made when they are asked for the first time.
class VideoClips {
public:
    // Something that moves, one second long.
    QString moving() { return made(u"moving.mp4"_s, u"testsrc2=s=320x180:r=30:d=1"_s); }
    // Red between two blue stripes, which take a quarter of its width.
    QString striped()
    {
        return made(u"striped.mkv"_s, u"color=red:s=320x180:r=30:d=1,drawbox=0:0:40:180:blue:fill,"
                                      "drawbox=280:0:40:180:blue:fill"_s);
    }
    QString green() { return made(u"green.mp4"_s, u"color=0x00ff00:s=320x180:r=30:d=1"_s); }
    QString withSound()
    {
        return made(u"sound.mp4"_s, u"testsrc2=s=320x180:r=30:d=2 -f lavfi -i sine=440:d=2"_s);
    }
    QString large() { return made(u"large.mp4"_s, u"testsrc2=s=3840x2160:r=10:d=0.5"_s); }
    QString soundOnly() { return made(u"tone.m4a"_s, u"sine=440:d=1"_s); }

    QString file(const QString &name, const QByteArray &bytes) const { return writeFile(path(name), bytes); }
    QString path(const QString &name) const { return _folder.filePath(name); }

private:
    QString made(const QString &name, const QString &sources) const
    {
        if (!QFile::exists(path(name)))
            ffmpeg(_folder.path(),
                   u"-f lavfi -i %1 -pix_fmt yuv420p -preset ultrafast %2"_s.arg(sources, name));
        return path(name);
    }

    QTemporaryDir _folder;
};

} // namespace velbrix::test
