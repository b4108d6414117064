// The part of IOKit that the transfer library uses, declared with the system's names.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

extern "C" {

typedef int IOReturn;
enum : IOReturn { kIOReturnSuccess = 0 };

typedef std::uint32_t IOPMAssertionID;
typedef std::uint32_t IOPMAssertionLevel;
enum : IOPMAssertionID { kIOPMNullAssertionID = 0 };
enum : IOPMAssertionLevel { kIOPMAssertionLevelOn = 255 };

extern const CFStringRef kIOPMAssertionTypePreventUserIdleSystemSleep;

IOReturn IOPMAssertionCreateWithName(CFStringRef type, IOPMAssertionLevel level, CFStringRef name,
                                     IOPMAssertionID* assertion);
IOReturn IOPMAssertionRelease(IOPMAssertionID assertion);

}  // extern "C"
