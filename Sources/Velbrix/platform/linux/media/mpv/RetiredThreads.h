#pragma once

#include <chrono>
#include <memory>
#include <semaphore>
#include <thread>
#include <utility>
#include <vector>

namespace velbrix {

// Threads on their way out, for which nobody waits but the last owner of the
// list, and it only for a moment: one that hangs with its file is left behind.
// Main thread.
class RetiredThreads {
public:
    RetiredThreads() = default;
    RetiredThreads(const RetiredThreads &) = delete;
    RetiredThreads &operator=(const RetiredThreads &) = delete;
    ~RetiredThreads()
    {
        std::chrono::seconds patience(2);
        for (Entry &entry : _entries) {
            if (entry.hasEnded->try_acquire_for(patience)) {
                entry.thread.join();
            } else {
                entry.thread.detach();
                patience = {};
            }
        }
    }

    // The thread releases the semaphore as the last thing it does.
    void add(std::thread thread, std::shared_ptr<std::binary_semaphore> hasEnded)
    {
        std::erase_if(_entries, [](Entry &entry) {
            if (!entry.hasEnded->try_acquire())
                return false;
            entry.thread.join();
            return true;
        });
        _entries.push_back({std::move(thread), std::move(hasEnded)});
    }

private:
    struct Entry {
        std::thread thread;
        std::shared_ptr<std::binary_semaphore> hasEnded;
    };
    std::vector<Entry> _entries;
};

} // namespace velbrix
