#pragma once

#include "foundation/Observation.h"
#include "foundation/Result.h"

#include <QCoroTask>
#include <QList>
#include <QString>

#include <functional>

namespace velbrix {

struct AudioDeviceItem {
    QString id; // stable between runs; ids beginning "in-" cannot be recorded from
    QString name;
    bool isDefault = false;

    bool operator==(const AudioDeviceItem &) const = default;
};

// The sound devices of this machine. Main thread.
class AudioDevices {
public:
    virtual ~AudioDevices() = default;

    virtual QCoro::Task<Result<QList<AudioDeviceItem>>> speakers() = 0;
    virtual QCoro::Task<Result<QList<AudioDeviceItem>>> microphones() = 0;
    // What the user hears from now on.
    virtual QCoro::Task<Result<void>> setDefaultSpeaker(const QString id) = 0;
    // Called after devices came, went or changed places; costs nothing until then.
    virtual Observation observeChanges(std::function<void()> changed) = 0;
};

} // namespace velbrix
