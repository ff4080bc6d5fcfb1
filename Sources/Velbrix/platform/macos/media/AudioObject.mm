#include "platform/macos/media/AudioObject.h"

#include "platform/macos/system/FoundationBridge.h"

#include <cstdlib>
#include <memory>

namespace velbrix {
namespace {

struct FreeMemory {
    void operator()(void *memory) const { std::free(memory); }
};
using AudioBuffers = std::unique_ptr<AudioBufferList, FreeMemory>;

} // namespace

AudioObjectPropertyAddress globalProperty(AudioObjectPropertySelector selector)
{
    return {selector, kAudioObjectPropertyScopeGlobal, kAudioObjectPropertyElementMain};
}

QList<AudioObjectID> audioObjects(AudioObjectPropertySelector selector)
{
    const AudioObjectPropertyAddress address = globalProperty(selector);
    UInt32 size = 0;
    if (AudioObjectGetPropertyDataSize(kAudioObjectSystemObject, &address, 0, nullptr, &size) != noErr)
        return {};
    QList<AudioObjectID> ids(static_cast<qsizetype>(size / sizeof(AudioObjectID)));
    if (AudioObjectGetPropertyData(kAudioObjectSystemObject, &address, 0, nullptr, &size, ids.data()) !=
        noErr)
        return {};
    // One may have gone between the two calls.
    ids.resize(static_cast<qsizetype>(size / sizeof(AudioObjectID)));
    return ids;
}

QString audioDeviceText(AudioObjectID device, AudioObjectPropertySelector selector)
{
    const AudioObjectPropertyAddress address = globalProperty(selector);
    CFStringRef text = nullptr;
    UInt32 size = sizeof text;
    if (AudioObjectGetPropertyData(device, &address, 0, nullptr, &size, &text) != noErr || !text)
        return {};
    NSString *owned = CFBridgingRelease(text);
    return toQString(owned);
}

UInt32 audioChannelCount(AudioObjectID device, AudioObjectPropertyScope scope)
{
    const AudioObjectPropertyAddress address = {kAudioDevicePropertyStreamConfiguration, scope,
                                                kAudioObjectPropertyElementMain};
    UInt32 size = 0;
    if (AudioObjectGetPropertyDataSize(device, &address, 0, nullptr, &size) != noErr || size == 0)
        return 0;
    const AudioBuffers list(static_cast<AudioBufferList *>(std::calloc(1, size)));
    if (!list || AudioObjectGetPropertyData(device, &address, 0, nullptr, &size, list.get()) != noErr)
        return 0;
    UInt32 channels = 0;
    for (UInt32 i = 0; i < list->mNumberBuffers; ++i)
        channels += list->mBuffers[i].mNumberChannels;
    return channels;
}

AudioObjectID defaultAudioDevice(AudioObjectPropertySelector selector)
{
    const AudioObjectPropertyAddress address = globalProperty(selector);
    AudioObjectID device = 0;
    UInt32 size = sizeof device;
    if (AudioObjectGetPropertyData(kAudioObjectSystemObject, &address, 0, nullptr, &size, &device) != noErr)
        return 0;
    return device;
}

OSStatus setDefaultAudioDevice(AudioObjectPropertySelector selector, AudioObjectID device)
{
    const AudioObjectPropertyAddress address = globalProperty(selector);
    return AudioObjectSetPropertyData(kAudioObjectSystemObject, &address, 0, nullptr, sizeof device, &device);
}

} // namespace velbrix
