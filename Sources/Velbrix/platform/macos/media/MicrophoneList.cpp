#include "platform/macos/media/MicrophoneList.h"

#include <QSet>

using namespace Qt::StringLiterals;

namespace velbrix {

QList<AudioDeviceItem> microphoneList(const QList<CaptureMicrophone> &captureDevices,
                                      const QList<SoundInput> &soundInputs, const QString &defaultUniqueId)
{
    QList<AudioDeviceItem> items;
    QSet<QString> captured;
    for (const CaptureMicrophone &device : captureDevices) {
        items.append(
            {device.uniqueId, device.name, !defaultUniqueId.isEmpty() && device.uniqueId == defaultUniqueId});
        captured.insert(device.uniqueId);
    }
    for (const SoundInput &input : soundInputs) {
        if (!captured.contains(input.uid))
            items.append({u"in-%1"_s.arg(input.objectId), input.name, false});
    }
    return items;
}

} // namespace velbrix
