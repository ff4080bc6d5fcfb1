#pragma once

#include <QByteArray>
#include <QList>

#include <atomic>
#include <condition_variable>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <vector>

namespace velbrix {

// What trees take up on disk, with the figures of `du -sk`. The folders of all
// trees are shared out among whichever threads call work().
class TreeSizes {
public:
    using Told = std::function<void(qsizetype index, qint64 bytes)>;

    // Paths are native bytes. `told` gets each path's bytes once, from one of
    // the working threads.
    TreeSizes(const QList<QByteArray> &paths, Told told);
    ~TreeSizes();
    TreeSizes(const TreeSizes &) = delete;
    TreeSizes &operator=(const TreeSizes &) = delete;

    // Returns when all is told, or soon after the cancelling.
    void work();
    void cancel();
    bool isCancelled() const { return _isCancelled; }

private:
    struct Tree;
    struct Folder {
        Tree *tree = nullptr;
        QByteArray path;
        bool isRoot = false; // not looked at yet, may be a file
    };
    class Listing;

    bool take(std::vector<Folder> &own, Folder &folder);
    void share(std::vector<Folder> &own);
    void measure(const Folder &folder, Listing &listing, std::vector<Folder> &found);
    void finish(Tree &tree, qsizetype found);

    const Told _told;
    std::vector<std::unique_ptr<Tree>> _trees;
    std::mutex _lock; // of the queue
    std::condition_variable _changed;
    std::deque<Folder> _queue;
    qsizetype _unfinished;                  // trees
    std::atomic_bool _isQueueEmpty = false; // lets those who are busy look without the lock
    std::atomic_bool _isCancelled = false;
};

} // namespace velbrix
