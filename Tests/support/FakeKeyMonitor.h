#pragma once

#include "platform/KeyMonitor.h"

#include <QList>
#include <QString>

#include <optional>
#include <utility>

namespace velbrix::test {

// Keys that the test presses. Must outlive its watches.
class FakeKeyMonitor final : public KeyMonitor {
public:
    std::optional<QString> globalFailure; // what watchGlobal fails with

    std::unique_ptr<KeyWatch> watchLocal(std::function<bool(const KeyPress &)> pressed) override
    {
        return std::make_unique<Watch<bool>>(_local, std::move(pressed));
    }

    Result<std::unique_ptr<KeyWatch>> watchGlobal(std::function<void(const KeyPress &)> pressed) override
    {
        if (globalFailure)
            return failure(*globalFailure);
        return std::make_unique<Watch<void>>(_global, std::move(pressed));
    }

    qsizetype localCount() const { return _local.size(); }
    qsizetype globalCount() const { return _global.size(); }

    // A key for one of the program's own windows. True: swallowed.
    bool pressLocal(const KeyPress &key)
    {
        const auto watches = _local;
        for (auto it = watches.crbegin(); it != watches.crend(); ++it) {
            // An earlier call may have ended this watch.
            if (_local.contains(*it) && (*it)->pressed(key))
                return true;
        }
        return false;
    }
    // A key for any program.
    void pressGlobal(const KeyPress &key)
    {
        const auto watches = _global;
        for (Watch<void> *watch : watches) {
            if (_global.contains(watch))
                watch->pressed(key);
        }
    }

private:
    template <typename Answer> class Watch final : public KeyWatch {
    public:
        Watch(QList<Watch *> &list, std::function<Answer(const KeyPress &)> call)
            : pressed(std::move(call)), _list(list)
        {
            _list.append(this);
        }
        ~Watch() override { _list.removeOne(this); }

        const std::function<Answer(const KeyPress &)> pressed;

    private:
        QList<Watch *> &_list;
    };

    QList<Watch<bool> *> _local;
    QList<Watch<void> *> _global;
};

} // namespace velbrix::test
