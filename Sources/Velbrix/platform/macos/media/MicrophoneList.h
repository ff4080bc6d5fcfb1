#pragma once

#include "platform/AudioDevices.h"

#include <QList>
#include <QString>

namespace velbrix {

// A device that the capture system can record from.
struct CaptureMicrophone {
    QString uniqueId; // equals the sound system's UID of the same device
    QString name;
};

// A device of the sound system with at least one input channel.
struct SoundInput {
    quint32 objectId = 0;
    QString uid;
    QString name;
};

// The capture devices in their order, then the sound inputs that are none of
// them under ids "in-" + object number, which no stream accepts.
QList<AudioDeviceItem> microphoneList(const QList<CaptureMicrophone> &captureDevices,
                                      const QList<SoundInput> &soundInputs, const QString &defaultUniqueId);

} // namespace velbrix
