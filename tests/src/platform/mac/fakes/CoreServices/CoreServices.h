// The part of CoreServices that the client uses, declared with the system's names.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

extern "C" {

enum : OSType {
  gestaltSystemVersionMajor = 'sys1',
  gestaltSystemVersionMinor = 'sys2',
  gestaltSystemVersionBugFix = 'sys3',
};
// The system marks it as deprecated, and so does this.
OSErr Gestalt(OSType selector, SInt32* response) __attribute__((deprecated));

extern const CFStringRef kUTTagClassMIMEType;
// Null when the tag is unknown; else to be released.
CFStringRef UTTypeCreatePreferredIdentifierForTag(CFStringRef tagClass, CFStringRef tag,
                                                  CFStringRef conformingTo)
    __attribute__((deprecated));

OSStatus LSOpenCFURLRef(CFURLRef url, CFURLRef* launchedURL);

}  // extern "C"
