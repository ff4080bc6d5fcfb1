#include "platform/macos/media/CoreAudioDevices.h"

#include "platform/macos/media/AudioObject.h"
#include "platform/macos/media/MicrophoneList.h"
#include "platform/macos/system/Completion.h"
#include "platform/macos/system/FoundationBridge.h"

#import <AVFoundation/AVFoundation.h>

#include <array>
#include <utility>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

constexpr std::array watchedProperties = {
    AudioObjectPropertySelector(kAudioHardwarePropertyDevices),
    AudioObjectPropertySelector(kAudioHardwarePropertyDefaultOutputDevice),
    AudioObjectPropertySelector(kAudioHardwarePropertyDefaultInputDevice),
};

QList<AudioDeviceItem> speakerList()
{
    const AudioObjectID defaultDevice = defaultAudioDevice(kAudioHardwarePropertyDefaultOutputDevice);
    QList<AudioDeviceItem> items;
    for (const AudioObjectID device : audioObjects(kAudioHardwarePropertyDevices)) {
        if (audioChannelCount(device, kAudioObjectPropertyScopeOutput) == 0)
            continue;
        items.append({audioDeviceText(device, kAudioDevicePropertyDeviceUID),
                      audioDeviceText(device, kAudioObjectPropertyName), device == defaultDevice});
    }
    return items;
}

QList<CaptureMicrophone> captureMicrophones()
{
    AVCaptureDeviceDiscoverySession *discovery = [AVCaptureDeviceDiscoverySession
        discoverySessionWithDeviceTypes:@[ AVCaptureDeviceTypeMicrophone, AVCaptureDeviceTypeExternal ]
                              mediaType:AVMediaTypeAudio
                               position:AVCaptureDevicePositionUnspecified];
    QList<CaptureMicrophone> devices;
    for (AVCaptureDevice *device in discovery.devices)
        devices.append({toQString(device.uniqueID), toQString(device.localizedName)});
    return devices;
}

QList<SoundInput> soundInputs()
{
    QList<SoundInput> inputs;
    for (const AudioObjectID device : audioObjects(kAudioHardwarePropertyDevices)) {
        if (audioChannelCount(device, kAudioObjectPropertyScopeInput) == 0)
            continue;
        inputs.append({device, audioDeviceText(device, kAudioDevicePropertyDeviceUID),
                       audioDeviceText(device, kAudioObjectPropertyName)});
    }
    return inputs;
}

Result<void> switchSpeaker(const QString &uid)
{
    for (const AudioObjectID device : audioObjects(kAudioHardwarePropertyDevices)) {
        if (audioChannelCount(device, kAudioObjectPropertyScopeOutput) == 0 ||
            audioDeviceText(device, kAudioDevicePropertyDeviceUID) != uid)
            continue;
        const OSStatus status = setDefaultAudioDevice(kAudioHardwarePropertyDefaultOutputDevice, device);
        if (status != noErr)
            return failure(u"无法切换系统默认输出（%1）"_s.arg(status));
        return {};
    }
    return failure(u"没有找到所选扬声器"_s);
}

void inBackground(dispatch_block_t work)
{
    dispatch_async(dispatch_get_global_queue(QOS_CLASS_USER_INITIATED, 0), work);
}

class ChangeListener {
public:
    explicit ChangeListener(std::function<void()> changed)
        : _changed(std::make_shared<std::function<void()>>(std::move(changed)))
    {
        const std::weak_ptr<std::function<void()>> target = _changed;
        _block = ^(UInt32, const AudioObjectPropertyAddress *) {
            onMainThread([target] {
                if (const auto alive = target.lock())
                    (*alive)();
            });
        };
        for (const AudioObjectPropertySelector selector : watchedProperties) {
            const AudioObjectPropertyAddress address = globalProperty(selector);
            AudioObjectAddPropertyListenerBlock(kAudioObjectSystemObject, &address, dispatch_get_main_queue(),
                                                _block);
        }
    }
    ~ChangeListener()
    {
        for (const AudioObjectPropertySelector selector : watchedProperties) {
            const AudioObjectPropertyAddress address = globalProperty(selector);
            AudioObjectRemovePropertyListenerBlock(kAudioObjectSystemObject, &address,
                                                   dispatch_get_main_queue(), _block);
        }
    }
    ChangeListener(const ChangeListener &) = delete;
    ChangeListener &operator=(const ChangeListener &) = delete;

private:
    std::shared_ptr<std::function<void()>> _changed;
    AudioObjectPropertyListenerBlock _block;
};

} // namespace

QCoro::Task<Result<QList<AudioDeviceItem>>> CoreAudioDevices::speakers()
{
    const Completion<Result<QList<AudioDeviceItem>>> listed;
    inBackground(^{
        listed.answer(speakerList());
    });
    return answerOf(listed);
}

QCoro::Task<Result<QList<AudioDeviceItem>>> CoreAudioDevices::microphones()
{
    const Completion<Result<QList<AudioDeviceItem>>> listed;
    inBackground(^{
        const QString defaultId =
            toQString([AVCaptureDevice defaultDeviceWithMediaType:AVMediaTypeAudio].uniqueID);
        listed.answer(microphoneList(captureMicrophones(), soundInputs(), defaultId));
    });
    return answerOf(listed);
}

QCoro::Task<Result<void>> CoreAudioDevices::setDefaultSpeaker(const QString id)
{
    const Completion<Result<void>> switched;
    inBackground(^{
        switched.answer(switchSpeaker(id));
    });
    return answerOf(switched);
}

Observation CoreAudioDevices::observeChanges(std::function<void()> changed)
{
    return Observation::keeping(std::make_shared<ChangeListener>(std::move(changed)));
}

} // namespace velbrix
