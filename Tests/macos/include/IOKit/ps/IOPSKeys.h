#pragma once

#define kIOPSTypeKey "Type"
#define kIOPSPowerSourceStateKey "Power Source State"
