#pragma once

#include <atomic>
#include <memory>
#include <thread>
#include <utility>
#include <vector>

namespace velbrix {

// Threads on their way out, for which nobody waits but the last owner of the
// list. Main thread.
class RetiredThreads {
public:
    RetiredThreads() = default;
    RetiredThreads(const RetiredThreads &) = delete;
    RetiredThreads &operator=(const RetiredThreads &) = delete;
    ~RetiredThreads()
    {
        for (Entry &entry : _entries)
            entry.thread.join();
    }

    // The thread sets the flag as the last thing it does.
    void add(std::thread thread, std::shared_ptr<const std::atomic<bool>> isDone)
    {
        std::erase_if(_entries, [](Entry &entry) {
            if (!*entry.isDone)
                return false;
            entry.thread.join();
            return true;
        });
        _entries.push_back({std::move(thread), std::move(isDone)});
    }

private:
    struct Entry {
        std::thread thread;
        std::shared_ptr<const std::atomic<bool>> isDone;
    };
    std::vector<Entry> _entries;
};

} // namespace velbrix
