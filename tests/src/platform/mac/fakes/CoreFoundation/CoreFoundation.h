// The part of CoreFoundation that the client uses, declared with the system's names. As on the
// system, strings, data and URLs are the same objects as Foundation's.
#pragma once

#include <cstddef>
#include <cstdint>

#ifdef __OBJC__
#define CFSTR(text) ((CFStringRef) @"" text)
#endif

extern "C" {

typedef const void* CFTypeRef;
typedef const struct __CFAllocator* CFAllocatorRef;
typedef const struct __CFString* CFStringRef;
typedef const struct __CFData* CFDataRef;
typedef const struct __CFURL* CFURLRef;
typedef struct __CFBundle* CFBundleRef;

typedef unsigned char Boolean;
typedef std::uint8_t UInt8;
typedef std::int16_t SInt16;
typedef std::int32_t SInt32;
typedef std::uint32_t UInt32;
typedef UInt32 FourCharCode;
typedef FourCharCode OSType;
typedef SInt16 OSErr;
typedef SInt32 OSStatus;
enum { noErr = 0 };

typedef long CFIndex;
typedef unsigned long CFTypeID;
typedef unsigned long CFOptionFlags;
typedef double CFTimeInterval;
typedef UInt32 CFStringEncoding;

enum : CFStringEncoding {
  kCFStringEncodingMacRoman = 0,
  kCFStringEncodingASCII = 0x0600,
  kCFStringEncodingUTF8 = 0x08000100,
};

CFTypeRef CFRetain(CFTypeRef object);
void CFRelease(CFTypeRef object);
CFTypeID CFGetTypeID(CFTypeRef object);

CFTypeID CFStringGetTypeID(void);
CFStringEncoding CFStringGetSystemEncoding(void);
CFStringRef CFStringCreateWithBytes(CFAllocatorRef allocator, const UInt8* bytes, CFIndex length,
                                    CFStringEncoding encoding, Boolean isExternalRepresentation);
CFIndex CFStringGetLength(CFStringRef string);
const char* CFStringGetCStringPtr(CFStringRef string, CFStringEncoding encoding);
Boolean CFStringGetCString(CFStringRef string, char* buffer, CFIndex bufferSize,
                           CFStringEncoding encoding);

CFDataRef CFDataCreate(CFAllocatorRef allocator, const UInt8* bytes, CFIndex length);

CFURLRef CFURLCreateWithBytes(CFAllocatorRef allocator, const UInt8* bytes, CFIndex length,
                              CFStringEncoding encoding, CFURLRef baseURL);
CFURLRef CFURLCreateFromFileSystemRepresentation(CFAllocatorRef allocator, const UInt8* buffer,
                                                 CFIndex length, Boolean isDirectory);

CFBundleRef CFBundleGetMainBundle(void);
CFBundleRef CFBundleCreate(CFAllocatorRef allocator, CFURLRef bundleURL);
CFTypeRef CFBundleGetValueForInfoDictionaryKey(CFBundleRef bundle, CFStringRef key);

enum : CFOptionFlags {
  kCFUserNotificationStopAlertLevel = 0,
  kCFUserNotificationCautionAlertLevel = 2,
  kCFUserNotificationPlainAlertLevel = 3,
};
enum : CFOptionFlags {
  kCFUserNotificationDefaultResponse = 0,
  kCFUserNotificationAlternateResponse = 1,
  kCFUserNotificationOtherResponse = 2,
  kCFUserNotificationCancelResponse = 3,
};

SInt32 CFUserNotificationDisplayNotice(CFTimeInterval timeout, CFOptionFlags flags,
                                       CFURLRef iconURL, CFURLRef soundURL,
                                       CFURLRef localizationURL, CFStringRef alertHeader,
                                       CFStringRef alertMessage, CFStringRef defaultButtonTitle);
SInt32 CFUserNotificationDisplayAlert(CFTimeInterval timeout, CFOptionFlags flags, CFURLRef iconURL,
                                      CFURLRef soundURL, CFURLRef localizationURL,
                                      CFStringRef alertHeader, CFStringRef alertMessage,
                                      CFStringRef defaultButtonTitle,
                                      CFStringRef alternateButtonTitle,
                                      CFStringRef otherButtonTitle, CFOptionFlags* responseFlags);

}  // extern "C"
