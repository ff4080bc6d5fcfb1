#pragma once

#include <CoreFoundation/CoreFoundation.h>
#include <dispatch/dispatch.h>

#pragma clang assume_nonnull begin

typedef UInt32 AudioObjectID;
typedef UInt32 AudioObjectPropertySelector;
typedef UInt32 AudioObjectPropertyScope;
typedef UInt32 AudioObjectPropertyElement;

struct AudioObjectPropertyAddress {
    AudioObjectPropertySelector mSelector;
    AudioObjectPropertyScope mScope;
    AudioObjectPropertyElement mElement;
};

struct AudioBuffer {
    UInt32 mNumberChannels;
    UInt32 mDataByteSize;
    void *_Nullable mData;
};
struct AudioBufferList {
    UInt32 mNumberBuffers;
    AudioBuffer mBuffers[1];
};

typedef void (^AudioObjectPropertyListenerBlock)(UInt32 addressCount,
                                                 const AudioObjectPropertyAddress *addresses);

enum { kAudioObjectSystemObject = 1 };
enum : UInt32 {
    kAudioHardwarePropertyDevices = 0x64657623,             // 'dev#'
    kAudioHardwarePropertyDefaultInputDevice = 0x64496E20,  // 'dIn '
    kAudioHardwarePropertyDefaultOutputDevice = 0x644F7574, // 'dOut'
    kAudioHardwarePropertyProcessObjectList = 0x70727323,   // 'prs#'
    kAudioProcessPropertyPID = 0x70706964,                  // 'ppid'
    kAudioProcessPropertyIsRunningOutput = 0x7069726F,      // 'piro'
    kAudioObjectPropertyName = 0x6C6E616D,                  // 'lnam'
    kAudioDevicePropertyDeviceUID = 0x75696420,             // 'uid '
    kAudioDevicePropertyStreamConfiguration = 0x736C6179,   // 'slay'
    kAudioObjectPropertyScopeGlobal = 0x676C6F62,           // 'glob'
    kAudioObjectPropertyScopeInput = 0x696E7074,            // 'inpt'
    kAudioObjectPropertyScopeOutput = 0x6F757470,           // 'outp'
    kAudioObjectPropertyElementMain = 0,
};

// Of CoreAudioTypes, which the system's umbrella header includes.
enum : UInt32 { kAudioFormatMPEG4AAC = 0x61616320 }; // 'aac '

extern "C" {
OSStatus AudioObjectGetPropertyDataSize(AudioObjectID object, const AudioObjectPropertyAddress *address,
                                        UInt32 qualifierSize, const void *_Nullable qualifier, UInt32 *size);
OSStatus AudioObjectGetPropertyData(AudioObjectID object, const AudioObjectPropertyAddress *address,
                                    UInt32 qualifierSize, const void *_Nullable qualifier, UInt32 *size,
                                    void *data);
OSStatus AudioObjectSetPropertyData(AudioObjectID object, const AudioObjectPropertyAddress *address,
                                    UInt32 qualifierSize, const void *_Nullable qualifier, UInt32 size,
                                    const void *data);
OSStatus AudioObjectAddPropertyListenerBlock(AudioObjectID object, const AudioObjectPropertyAddress *address,
                                             dispatch_queue_t _Nullable queue,
                                             AudioObjectPropertyListenerBlock listener);
OSStatus AudioObjectRemovePropertyListenerBlock(AudioObjectID object,
                                                const AudioObjectPropertyAddress *address,
                                                dispatch_queue_t _Nullable queue,
                                                AudioObjectPropertyListenerBlock listener);
}

#pragma clang assume_nonnull end
