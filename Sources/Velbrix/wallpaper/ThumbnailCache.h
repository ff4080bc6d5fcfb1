#pragma once

#include <QImage>
#include <QString>

#include <optional>

namespace velbrix {

struct VideoThumbnail {
    QImage picture;
    double length = 0; // of the video, seconds; 0 where it is not known
};

// Small pictures of videos with the videos' lengths, kept on disk until the file
// changes. Any thread; all of it touches the disk.
class ThumbnailCache {
public:
    static constexpr int mostPictures = 2000;

    explicit ThumbnailCache(QString folder) : _folder(std::move(folder)) {}

    // Nothing when there is none of the file as it is now.
    std::optional<VideoThumbnail> find(const QString &file) const;
    void store(const QString &file, const VideoThumbnail &thumbnail) const;
    // Leaves the most recently made ones.
    void prune() const;

private:
    QString entry(const QString &file) const;

    QString _folder;
};

} // namespace velbrix
