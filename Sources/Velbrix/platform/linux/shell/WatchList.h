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
        auto shared = std::make_shared<Call>(std::move(call));
        _calls.push_back(shared);
        return std::make_unique<Watch>(std::move(shared), std::move(ended));
    }

    bool isEmpty() const
    {
        for (const auto &call : _calls) {
            if (!call.expired())
                return false;
        }
        return true;
    }

    // Newest first.
    std::vector<std::weak_ptr<Call>> calls()
    {
        std::erase_if(_calls, [](const auto &call) { return call.expired(); });
        return {_calls.rbegin(), _calls.rend()};
    }

private:
    class Watch final : public KeyWatch {
    public:
        Watch(std::shared_ptr<Call> call, std::function<void()> ended)
            : _call(std::move(call)), _ended(std::move(ended))
        {
        }
        ~Watch() override
        {
            _call.reset();
            _ended();
        }

    private:
        std::shared_ptr<Call> _call;
        std::function<void()> _ended;
    };

    std::vector<std::weak_ptr<Call>> _calls;
};

} // namespace velbrix
