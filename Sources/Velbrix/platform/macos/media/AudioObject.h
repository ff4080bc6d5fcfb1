#pragma once

#import <CoreAudio/CoreAudio.h>

#include <QList>
#include <QString>

namespace velbrix {

// The properties of CoreAudio objects that the device lists are made of. Any
// thread. What cannot be read is empty or zero.
AudioObjectPropertyAddress globalProperty(AudioObjectPropertySelector selector);
// Those that one of the system object's lists names.
QList<AudioObjectID> audioObjects(AudioObjectPropertySelector selector);
QString audioDeviceText(AudioObjectID device, AudioObjectPropertySelector selector);
// The channels of all streams of the device in this scope.
UInt32 audioChannelCount(AudioObjectID device, AudioObjectPropertyScope scope);
// The device behind one of the system object's default-device properties.
AudioObjectID defaultAudioDevice(AudioObjectPropertySelector selector);
OSStatus setDefaultAudioDevice(AudioObjectPropertySelector selector, AudioObjectID device);

} // namespace velbrix
