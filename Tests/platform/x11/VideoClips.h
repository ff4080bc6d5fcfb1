#pragma once

#include "platform/media/MediaTools.h"

#include <QStringList>
#include <QTemporaryDir>

namespace velbrix::test {

// Small videos, made when they are asked for the first time.
class VideoClips {
public:
    // Something that moves, one second long.
    QString moving()
    {
        return made(QStringLiteral("moving.mp4"), {QStringLiteral("testsrc2=s=320x180:r=30:d=1")});
    }
    // Red between two blue stripes, which take a quarter of its width.
    QString striped()
    {
        return made(QStringLiteral("striped.mkv"),
                    {QStringLiteral("color=red:s=320x180:r=30:d=1,drawbox=0:0:40:180:blue:fill,"
                                    "drawbox=280:0:40:180:blue:fill")});
    }
    QString green()
    {
        return made(QStringLiteral("green.mp4"), {QStringLiteral("color=0x00ff00:s=320x180:r=30:d=1")});
    }
    QString withSound()
    {
        return made(QStringLiteral("sound.mp4"),
                    {QStringLiteral("testsrc2=s=320x180:r=30:d=2"), QStringLiteral("sine=440:d=2")});
    }
    QString large()
    {
        return made(QStringLiteral("large.mp4"), {QStringLiteral("testsrc2=s=3840x2160:r=10:d=0.5")});
    }
    QString soundOnly() { return made(QStringLiteral("tone.m4a"), {QStringLiteral("sine=440:d=1")}); }

    QString file(const QString &name, const QByteArray &bytes) const
    {
        writeFile(path(name), bytes);
        return path(name);
    }
    QString path(const QString &name) const { return _folder.filePath(name); }

private:
    QString made(const QString &name, const QStringList &sources) const
    {
        if (QFile::exists(path(name)))
            return path(name);
        QStringList arguments{QStringLiteral("-v"), QStringLiteral("error")};
        for (const QString &source : sources)
            arguments << QStringLiteral("-f") << QStringLiteral("lavfi") << QStringLiteral("-i") << source;
        arguments << QStringLiteral("-pix_fmt") << QStringLiteral("yuv420p") << QStringLiteral("-preset")
                  << QStringLiteral("ultrafast") << path(name);
        output(QStringLiteral("ffmpeg"), arguments);
        return path(name);
    }

    QTemporaryDir _folder;
};

} // namespace velbrix::test
