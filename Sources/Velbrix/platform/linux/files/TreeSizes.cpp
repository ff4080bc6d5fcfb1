#include "platform/linux/files/TreeSizes.h"

#include "platform/linux/files/FileDescriptor.h"

#include <algorithm>
#include <cstring>
#include <set>
#include <utility>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>

namespace velbrix {
namespace {

constexpr qint64 blockSize = 512;
constexpr int folderFlags = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_NONBLOCK;

bool facts(int folder, const char *name, struct statx &facts)
{
    return ::statx(folder, name, AT_SYMLINK_NOFOLLOW | AT_NO_AUTOMOUNT,
                   STATX_TYPE | STATX_NLINK | STATX_INO | STATX_BLOCKS, &facts) == 0;
}

bool isFolder(const struct statx &facts)
{
    return S_ISDIR(facts.stx_mode);
}

} // namespace

struct TreeSizes::Tree {
    qsizetype index;
    std::atomic<qint64> blocks = 0;
    std::atomic<qsizetype> open = 1; // folders that are found and not measured
    std::mutex lock;
    std::set<std::pair<quint64, quint64>> seen; // files of several names

    // A file counts with the first of its names.
    bool isFirst(const struct statx &facts)
    {
        const std::scoped_lock guard(lock);
        return seen.emplace((quint64(facts.stx_dev_major) << 32) | facts.stx_dev_minor, facts.stx_ino).second;
    }
};

// The entries of one folder after another, through one buffer.
class TreeSizes::Listing {
public:
    // Calls `see` with each name; ends early when it says so.
    template <typename See> void read(int folder, See see)
    {
        for (;;) {
            const ssize_t size = ::getdents64(folder, _buffer.data(), _buffer.size());
            if (size <= 0)
                return;
            for (ssize_t at = 0; at < size;) {
                const char *record = _buffer.data() + at;
                unsigned short length = 0;
                std::memcpy(&length, record + offsetof(dirent64, d_reclen), sizeof length);
                at += length;
                const char *name = record + offsetof(dirent64, d_name);
                if (std::strcmp(name, ".") != 0 && std::strcmp(name, "..") != 0)
                    see(name);
            }
        }
    }

private:
    std::vector<char> _buffer = std::vector<char>(65'536);
};

TreeSizes::TreeSizes(const QList<QByteArray> &paths, Told told)
    : _told(std::move(told)), _unfinished(paths.size())
{
    for (const QByteArray &path : paths) {
        _trees.push_back(std::make_unique<Tree>(qsizetype(_trees.size())));
        _queue.push_back({.tree = _trees.back().get(), .path = path, .isRoot = true});
    }
}

TreeSizes::~TreeSizes() = default;

void TreeSizes::cancel()
{
    const std::scoped_lock guard(_lock);
    _isCancelled = true;
    _changed.notify_all();
}

void TreeSizes::work()
{
    Listing listing;
    std::vector<Folder> own;
    Folder folder;
    while (take(own, folder)) {
        const size_t before = own.size();
        measure(folder, listing, own);
        finish(*folder.tree, qsizetype(own.size() - before));
        share(own);
    }
}

// What was found last comes first, so that trees are finished one by one.
bool TreeSizes::take(std::vector<Folder> &own, Folder &folder)
{
    if (_isCancelled)
        return false;
    if (!own.empty()) {
        folder = std::move(own.back());
        own.pop_back();
        return true;
    }
    std::unique_lock guard(_lock);
    _changed.wait(guard, [this] { return !_queue.empty() || _unfinished == 0 || _isCancelled; });
    if (_queue.empty() || _isCancelled)
        return false;
    folder = std::move(_queue.front());
    _queue.pop_front();
    _isQueueEmpty = _queue.empty();
    return true;
}

// Gives half of one's own away when others have nothing to do.
void TreeSizes::share(std::vector<Folder> &own)
{
    if (own.size() < 2 || !_isQueueEmpty)
        return;
    const auto half = own.begin() + qsizetype(own.size() / 2);
    const std::scoped_lock guard(_lock);
    std::move(own.begin(), half, std::back_inserter(_queue));
    own.erase(own.begin(), half);
    _isQueueEmpty = false;
    _changed.notify_all();
}

void TreeSizes::measure(const Folder &folder, Listing &listing, std::vector<Folder> &found)
{
    struct statx entry{};
    qint64 blocks = 0;
    if (folder.isRoot) {
        if (!facts(AT_FDCWD, folder.path.constData(), entry))
            return;
        folder.tree->blocks += qint64(entry.stx_blocks);
        if (!isFolder(entry))
            return;
    }
    const FileDescriptor opened = openBelow(AT_FDCWD, folder.path, folderFlags);
    if (!opened)
        return;
    listing.read(opened.number(), [&](const char *name) {
        if (_isCancelled || !facts(opened.number(), name, entry))
            return;
        if (isFolder(entry))
            found.push_back({.tree = folder.tree, .path = folder.path + '/' + name});
        else if (entry.stx_nlink > 1 && !folder.tree->isFirst(entry))
            return;
        blocks += qint64(entry.stx_blocks);
    });
    folder.tree->blocks += blocks;
}

void TreeSizes::finish(Tree &tree, qsizetype found)
{
    if (_isCancelled)
        return;
    const qsizetype open = tree.open += found - 1;
    if (open > 0)
        return;
    // In whole kibibytes, as du says it.
    _told(tree.index, (tree.blocks * blockSize + 1023) / 1024 * 1024);
    const std::scoped_lock guard(_lock);
    if (--_unfinished == 0)
        _changed.notify_all();
}

} // namespace velbrix
