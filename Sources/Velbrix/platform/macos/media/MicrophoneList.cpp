#include "platform/macos/media/MicrophoneList.h"

#include <QHash>

using namespace Qt::StringLiterals;

namespace velbrix {

QList<AudioDeviceItem> microphoneList(const QList<CaptureMicrophone> &captureDevices,
                                      const QList<SoundInput> &soundInputs, const QString &defaultUniqueId)
{
    QHash<QString, quint32> objectIds;
    for (const SoundInput &input : soundInputs)
        objectIds.insert(input.uid, input.objectId);

    QList<AudioDeviceItem> items;
    for (const CaptureMicrophone &device : captureDevices) {
        std::optional<quint32> objectId;
        if (const auto found = objectIds.constFind(device.uniqueId); found != objectIds.cend())
            objectId = *found;
        items.append({device.uniqueId, device.name, objectId,
                      !defaultUniqueId.isEmpty() && device.uniqueId == defaultUniqueId});
        objectIds.remove(device.uniqueId);
    }
    for (const SoundInput &input : soundInputs) {
        if (objectIds.contains(input.uid))
            items.append({u"in-%1"_s.arg(input.objectId), input.name, input.objectId, false});
    }
    return items;
}

} // namespace velbrix
