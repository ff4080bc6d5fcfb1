#pragma once

#include <QImage>
#include <QString>

namespace velbrix {

// Small pictures of files, kept on disk until the file changes. Any thread;
// all of it touches the disk.
class ThumbnailCache {
public:
    static constexpr int mostPictures = 2000;

    explicit ThumbnailCache(QString folder) : _folder(std::move(folder)) {}

    // Null when there is none of the file as it is now.
    QImage find(const QString &file) const;
    void store(const QString &file, const QImage &picture) const;
    // Leaves the most recently made ones.
    void prune() const;

private:
    QString entry(const QString &file) const;

    QString _folder;
};

} // namespace velbrix
