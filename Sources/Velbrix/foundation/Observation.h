#pragma once

#include <algorithm>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

namespace velbrix {

// Keeps one observer registered and ends that with itself. It may outlive
// what it observes. Main thread only.
class [[nodiscard]] Observation {
public:
    Observation() = default; // of nothing
    explicit Observation(std::function<void()> end) : _end(std::move(end)) {}
    // Of what lasts as long as that object.
    template <typename Object> static Observation keeping(std::shared_ptr<Object> object)
    {
        return Observation([kept = std::move(object)]() mutable { kept.reset(); });
    }
    ~Observation() { reset(); }
    Observation(Observation &&other) noexcept : _end(std::exchange(other._end, nullptr)) {}
    Observation &operator=(Observation &&other) noexcept
    {
        // The former observation ends after this one is in place: its end may
        // let go of whatever holds this.
        const Observation former(std::exchange(_end, std::exchange(other._end, nullptr)));
        return *this;
    }

    void reset()
    {
        if (const auto end = std::exchange(_end, nullptr))
            end();
    }
    explicit operator bool() const { return bool(_end); }

private:
    std::function<void()> _end;
};

template <typename Signature> class ObserverList;

// Those who want to be called. A call may end any observation, its own
// included, add observers, who wait for the next time, and destroy the list.
// Main thread only.
template <typename Answer, typename... Arguments> class ObserverList<Answer(Arguments...)> {
public:
    using Observer = std::function<Answer(Arguments...)>;

    ObserverList() = default;
    ~ObserverList() { const Entries leaving = std::exchange(*_entries, {}); }
    ObserverList(const ObserverList &) = delete;
    ObserverList &operator=(const ObserverList &) = delete;

    // `ended` is called when the observation ends, after the observer has left
    // the list; also when the list is gone by then.
    Observation add(Observer observer, std::function<void()> ended = {})
    {
        const auto entry = std::make_shared<Observer>(std::move(observer));
        _entries->push_back(entry);
        return Observation(
            [entries = std::weak_ptr(_entries), entry = std::weak_ptr(entry), ended = std::move(ended)] {
                // What the observer holds goes after it has left.
                const auto leaving = entry.lock();
                if (const auto list = entries.lock())
                    std::erase(*list, leaving);
                if (ended)
                    ended();
            });
    }

    bool isEmpty() const { return _entries->empty(); }

    // Calls all, oldest first.
    void notify(Arguments... arguments) const
    {
        const auto all = _entries;
        for (const auto &entry : Entries(*all)) {
            if (std::ranges::find(*all, entry) != all->end())
                (*entry)(arguments...);
        }
    }

    // Calls them, newest first, until one answers true.
    bool ask(Arguments... arguments) const
    {
        const auto all = _entries;
        const Entries asked(all->rbegin(), all->rend());
        return std::ranges::any_of(asked, [&](const auto &entry) {
            return std::ranges::find(*all, entry) != all->end() && (*entry)(arguments...);
        });
    }

private:
    using Entries = std::vector<std::shared_ptr<Observer>>;
    std::shared_ptr<Entries> _entries = std::make_shared<Entries>();
};

} // namespace velbrix
