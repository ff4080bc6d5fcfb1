#pragma once

#include "foundation/Result.h"

#include <QByteArray>
#include <QList>
#include <QString>

namespace velbrix {

struct PulseDevice {
    QString name; // the server's own, stable
    QString description;
    bool isDefault = false;
    bool isMonitor = false; // a source that only repeats what a speaker plays
};

// One question to the sound server each, over a connection of its own, so that
// a server that went and came back makes no difference. Blocks, for seconds at
// worst: not on the main thread.
namespace pulse {
Result<QList<PulseDevice>> listSinks();
Result<QList<PulseDevice>> listSources();
Result<void> setDefaultSink(const QByteArray &name);
} // namespace pulse

} // namespace velbrix
