#pragma once

#include <CoreFoundation/CoreFoundation.h>

typedef FourCharCode AEEventClass;
typedef FourCharCode AEEventID;
typedef FourCharCode AEKeyword;
enum : AEEventClass { kCoreEventClass = 0x61657674 }; // 'aevt'
enum : AEEventID {
    kAEOpenApplication = 0x6f617070,   // 'oapp'
    kAEReopenApplication = 0x72617070, // 'rapp'
};
enum : AEKeyword { keyAEPropData = 0x70726474 };         // 'prdt'
enum : OSType { keyAELaunchedAsLogInItem = 0x6c676974 }; // 'lgit'
