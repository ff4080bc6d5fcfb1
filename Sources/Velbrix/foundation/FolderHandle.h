#pragma once

#include <QByteArray>
#include <QList>

#include <compare>
#include <optional>

#include <sys/stat.h>

namespace velbrix {

// Which file it is, whatever it is called.
struct FileIdentity {
    dev_t device = 0;
    ino_t number = 0;

    static FileIdentity of(const struct stat &facts) { return {facts.st_dev, facts.st_ino}; }
    auto operator<=>(const FileIdentity &) const = default;
};

// An open folder; acts on its entries reach them there wherever the folder is
// moved to. Closed when empty.
class FolderHandle {
public:
    FolderHandle() = default;
    // The folder of a canonical path; errno tells why it is not open. No link
    // is followed, not even one that takes a folder's place meanwhile.
    static FolderHandle open(const QByteArray &canonicalPath);
    ~FolderHandle() { close(); }
    FolderHandle(FolderHandle &&other) noexcept;
    FolderHandle &operator=(FolderHandle &&other) noexcept;

    bool isOpen() const { return _descriptor >= 0; }
    void close();

    // A folder in this one, with errno; never through a link.
    FolderHandle folder(const QByteArray &name) const;
    // Of the entry itself, also when it is a link; with errno.
    std::optional<struct stat> facts(const QByteArray &name) const;
    std::optional<struct stat> ownFacts() const;
    // Sorted; nothing with errno when it cannot be listed.
    std::optional<QList<QByteArray>> names() const;
    // Whether it worked, with errno.
    bool removeFile(const QByteArray &name) const;
    bool removeFolder(const QByteArray &name) const;
    // What has the new name already is replaced.
    bool rename(const QByteArray &from, const QByteArray &to) const;
    // The mount it lies on, where the host tells. Unlike the device it also
    // tells a folder mounted in a second place.
    std::optional<qint64> mount() const;

private:
    explicit FolderHandle(int descriptor) : _descriptor(descriptor) {}

    int _descriptor = -1;
};

} // namespace velbrix
