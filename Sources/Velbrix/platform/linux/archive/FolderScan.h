#pragma once

#include "foundation/Cancellation.h"
#include "foundation/ExcludeRules.h"
#include "foundation/FolderHandle.h"

#include <QByteArray>
#include <QStringList>

#include <cstdint>
#include <mutex>
#include <sys/types.h>
#include <vector>

namespace velbrix {

// A folder, a regular file or a symbolic link.
struct FolderItem {
    QByteArray path; // below the source, as the disk has it; empty for the source itself
    mode_t mode = 0; // with its kind
    std::uint64_t size = 0;
    std::int64_t time = 0; // of the last change, seconds since 1970
};

// Files to be told of; any thread.
class NotedFiles {
public:
    void add(const QByteArray &path)
    {
        const std::lock_guard lock(_mutex);
        if (++_count <= listed)
            _first.append(QString::fromUtf8(path));
    }
    QStringList first() const { return _first; }
    qint64 count() const { return _count; }

private:
    static constexpr qint64 listed = 100;

    std::mutex _mutex;
    QStringList _first;
    qint64 _count = 0;
};

// Everything below an open folder, the folder itself first and each folder
// before what is in it, by name, without what is neither file, folder nor link
// and without the file `except`. Folders that cannot be read count as skipped.
std::vector<FolderItem> scanFolder(int source, const ExcludeRules &excludes, FileIdentity except,
                                   const Cancellation &cancellation, NotedFiles &skipped);

} // namespace velbrix
