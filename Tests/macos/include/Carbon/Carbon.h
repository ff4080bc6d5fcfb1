#pragma once

#include <CoreFoundation/CoreFoundation.h>

#pragma clang assume_nonnull begin

typedef struct OpaqueEventRef *EventRef;
typedef struct OpaqueEventTargetRef *EventTargetRef;
typedef struct OpaqueEventHandlerRef *EventHandlerRef;
typedef struct OpaqueEventHandlerCallRef *EventHandlerCallRef;
typedef struct EventHotKeyRef__ *EventHotKeyRef;
typedef OSType EventParamName;
typedef OSType EventParamType;

struct EventTypeSpec {
    OSType eventClass;
    UInt32 eventKind;
};
struct EventHotKeyID {
    OSType signature;
    UInt32 id;
};

typedef OSStatus (*EventHandlerProcPtr)(EventHandlerCallRef _Nullable next, EventRef _Nullable event,
                                        void *_Nullable userData);
typedef EventHandlerProcPtr EventHandlerUPP;

enum : OSType {
    kEventClassKeyboard = 0x6B657962,     // 'keyb'
    kEventParamDirectObject = 0x2D2D2D2D, // '----'
    typeEventHotKeyID = 0x686B6964,       // 'hkid'
};
enum : UInt32 { kEventHotKeyPressed = 5 };
enum : OSStatus {
    eventNotHandledErr = -9874,
    eventHotKeyExistsErr = -9878,
    eventHotKeyInvalidErr = -9879,
};

extern "C" {
EventTargetRef _Nullable GetApplicationEventTarget(void);
OSStatus InstallEventHandler(EventTargetRef _Nullable target, EventHandlerUPP _Nullable handler,
                             ItemCount typeCount, const EventTypeSpec *_Nullable types,
                             void *_Nullable userData, EventHandlerRef _Nullable *_Nullable handlerRef);
OSStatus RemoveEventHandler(EventHandlerRef _Nullable handler);
OSStatus GetEventParameter(EventRef _Nullable event, EventParamName name, EventParamType desiredType,
                           EventParamType *_Nullable actualType, ByteCount bufferSize,
                           ByteCount *_Nullable actualSize, void *_Nullable data);
OSStatus RegisterEventHotKey(UInt32 keyCode, UInt32 modifiers, EventHotKeyID hotKeyId,
                             EventTargetRef _Nullable target, OptionBits options,
                             EventHotKeyRef _Nullable *_Nullable hotKey);
OSStatus UnregisterEventHotKey(EventHotKeyRef _Nullable hotKey);
}

#pragma clang assume_nonnull end
