#pragma once

#include <CoreFoundation/CoreFoundation.h>

typedef FourCharCode AEEventClass;
typedef FourCharCode AEEventID;
enum : AEEventClass { kCoreEventClass = 0x61657674 };   // 'aevt'
enum : AEEventID { kAEReopenApplication = 0x72617070 }; // 'rapp'
