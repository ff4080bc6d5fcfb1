#pragma once

#include "platform/KeyMonitor.h"

#include <memory>
#include <utility>
#include <vector>

namespace velbrix {

// The calls of several watches. A call may end any watch, its own included,
// and a watch may outlive the list. Main thread.
template <typename Answer> class WatchList {
public:
    using Call = std::function<Answer(const KeyPress &)>;

    // `ended` runs after the watch has left the list.
    std::unique_ptr<KeyWatch> add(Call call, std::function<void()> ended)
    {
        auto entry = std::make_shared<Entry>(std::move(call));
        _entries.push_back(entry);
        return std::make_unique<Watch>(std::move(entry), std::move(ended));
    }

    bool isEmpty()
    {
        std::erase_if(_entries, [](const auto &entry) { return !entry->isWatched; });
        return _entries.empty();
    }

    // Hands each call to `use`, newest first, until that answers true.
    template <typename Use> void forEachUntil(Use use)
    {
        const auto entries = _entries;
        for (auto it = entries.crbegin(); it != entries.crend(); ++it) {
            if ((*it)->isWatched && use((*it)->call))
                return;
        }
    }

private:
    struct Entry {
        explicit Entry(Call pressed) : call(std::move(pressed)) {}
        const Call call;
        bool isWatched = true;
    };

    class Watch final : public KeyWatch {
    public:
        Watch(std::shared_ptr<Entry> entry, std::function<void()> ended)
            : _entry(std::move(entry)), _ended(std::move(ended))
        {
        }
        ~Watch() override
        {
            _entry->isWatched = false;
            _ended();
        }

    private:
        std::shared_ptr<Entry> _entry;
        std::function<void()> _ended;
    };

    std::vector<std::shared_ptr<Entry>> _entries;
};

} // namespace velbrix
