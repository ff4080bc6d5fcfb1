#include "platform/linux/archive/FolderScan.h"

#include "platform/linux/files/FileDescriptor.h"

#include <algorithm>
#include <cerrno>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>

namespace velbrix {
namespace {

struct CloseFolder {
    void operator()(DIR *folder) const { ::closedir(folder); }
};

FolderItem itemOf(QByteArray path, const struct stat &facts)
{
    return {std::move(path), facts.st_mode, static_cast<std::uint64_t>(facts.st_size), facts.st_mtime};
}

bool isKept(mode_t mode)
{
    return S_ISDIR(mode) || S_ISREG(mode) || S_ISLNK(mode);
}

class Scan {
public:
    Scan(int source, const ExcludeRules &excludes, FileIdentity except, const Cancellation &cancellation,
         NotedFiles &skipped)
        : _source(source),
          _excludes(excludes),
          _except(except),
          _cancellation(cancellation),
          _skipped(skipped)
    {
    }

    std::vector<FolderItem> run()
    {
        struct stat facts = {};
        if (::fstat(_source, &facts) == 0)
            _pending.push_back(itemOf({}, facts));
        while (!_pending.empty() && !_cancellation.isCancelled()) {
            _found.push_back(std::move(_pending.back()));
            _pending.pop_back();
            if (S_ISDIR(_found.back().mode))
                list(QByteArray(_found.back().path));
        }
        return std::move(_found);
    }

private:
    void list(const QByteArray &path)
    {
        FileDescriptor opened = openBelow(_source, path, O_RDONLY | O_DIRECTORY | O_NOFOLLOW);
        if (!opened && errno == ENOENT)
            return;
        const std::unique_ptr<DIR, CloseFolder> folder(opened ? ::fdopendir(::dup(opened.number()))
                                                              : nullptr);
        if (!folder) {
            _skipped.add(path);
            return;
        }
        const std::size_t first = _pending.size();
        while (const dirent *entry = nextEntry(folder.get(), path))
            look(opened.number(), path, entry->d_name);
        std::sort(_pending.begin() + static_cast<std::ptrdiff_t>(first), _pending.end(),
                  [](const FolderItem &a, const FolderItem &b) { return a.path > b.path; });
    }

    const dirent *nextEntry(DIR *folder, const QByteArray &path)
    {
        errno = 0;
        const dirent *entry = _cancellation.isCancelled() ? nullptr : ::readdir(folder);
        if (!entry && errno != 0)
            _skipped.add(path);
        return entry;
    }

    void look(int folder, const QByteArray &folderPath, const char *name)
    {
        if (std::string_view(name) == "." || std::string_view(name) == "..")
            return;
        QByteArray path = folderPath.isEmpty() ? QByteArray(name) : folderPath + '/' + name;
        struct stat facts = {};
        if (::fstatat(folder, name, &facts, AT_SYMLINK_NOFOLLOW) != 0) {
            if (errno != ENOENT)
                _skipped.add(path);
            return;
        }
        if (!isKept(facts.st_mode) || FileIdentity::of(facts) == _except ||
            _excludes.excludes(path, S_ISDIR(facts.st_mode)))
            return;
        _pending.push_back(itemOf(std::move(path), facts));
    }

    int _source;
    const ExcludeRules &_excludes;
    FileIdentity _except;
    const Cancellation &_cancellation;
    NotedFiles &_skipped;
    std::vector<FolderItem> _found;
    std::vector<FolderItem> _pending; // the next one last
};

} // namespace

std::vector<FolderItem> scanFolder(int source, const ExcludeRules &excludes, FileIdentity except,
                                   const Cancellation &cancellation, NotedFiles &skipped)
{
    return Scan(source, excludes, except, cancellation, skipped).run();
}

} // namespace velbrix
