#include "src/platform/mac/fakes/core_foundation_fake.h"

#include "src/platform/mac/fakes/calls.h"

namespace zantrio::mac_test {

CoreFoundationRecord& coreFoundation() {
  static CoreFoundationRecord fake;
  return fake;
}

std::string textOf(NSString* string) {
  return string == nil ? "(null)" : std::string([string UTF8String]);
}

namespace {

std::string textOf(CFStringRef string) {
  return mac_test::textOf((NSString*)string);
}

NSStringEncoding foundationEncoding(CFStringEncoding encoding) {
  switch (encoding) {
    case kCFStringEncodingMacRoman:
      return NSMacOSRomanStringEncoding;
    case kCFStringEncodingASCII:
      return NSASCIIStringEncoding;
    default:
      return NSUTF8StringEncoding;
  }
}

// Returns an object that the caller must release.
template <class Ref>
Ref given(id object) {
  coreFoundation().ownedObjects += object == nil ? 0 : 1;
  return (Ref)object;
}

NSString* decoded(const UInt8* bytes, CFIndex length, CFStringEncoding encoding) {
  coreFoundation().encodings.push_back(encoding);
  return [[NSString alloc] initWithBytes:bytes
                                  length:static_cast<NSUInteger>(length)
                                encoding:foundationEncoding(encoding)];
}

void recordDialog(const char* function, CFTimeInterval timeout, CFOptionFlags flags,
                  CFStringRef header, CFStringRef message, CFStringRef defaultButton,
                  bool hasOtherParts) {
  CoreFoundationRecord& fake = coreFoundation();
  recordCall(function);
  fake.timeout = timeout;
  fake.flags = flags;
  fake.header = textOf(header);
  fake.message = textOf(message);
  fake.defaultButton = textOf(defaultButton);
  fake.hasOtherParts = hasOtherParts;
}

}  // namespace
}  // namespace zantrio::mac_test

using namespace zantrio::mac_test;

CFTypeRef CFRetain(CFTypeRef object) {
  ++coreFoundation().ownedObjects;
  return (CFTypeRef)[(id)object retain];
}

void CFRelease(CFTypeRef object) {
  --coreFoundation().ownedObjects;
  [(id)object release];
}

CFTypeID CFGetTypeID(CFTypeRef object) {
  return [(id)object isKindOfClass:[NSString class]] ? CFStringGetTypeID() : 0;
}

CFTypeID CFStringGetTypeID() {
  return 7;
}

CFStringEncoding CFStringGetSystemEncoding() {
  return coreFoundation().systemEncoding;
}

CFStringRef CFStringCreateWithBytes(CFAllocatorRef, const UInt8* bytes, CFIndex length,
                                    CFStringEncoding encoding, Boolean) {
  return given<CFStringRef>(decoded(bytes, length, encoding));
}

CFIndex CFStringGetLength(CFStringRef string) {
  return static_cast<CFIndex>([(NSString*)string length]);
}

const char* CFStringGetCStringPtr(CFStringRef string, CFStringEncoding encoding) {
  coreFoundation().ownBufferAskedIn.push_back(encoding);
  return coreFoundation().offersOwnBuffer
             ? [(NSString*)string cStringUsingEncoding:foundationEncoding(encoding)]
             : nullptr;
}

Boolean CFStringGetCString(CFStringRef string, char* buffer, CFIndex bufferSize,
                           CFStringEncoding encoding) {
  coreFoundation().copiedIn.push_back(encoding);
  // GNUstep raises an exception where the system returns false.
  return [(NSString*)string canBeConvertedToEncoding:foundationEncoding(encoding)] &&
         [(NSString*)string getCString:buffer
                             maxLength:static_cast<NSUInteger>(bufferSize)
                              encoding:foundationEncoding(encoding)];
}

CFDataRef CFDataCreate(CFAllocatorRef, const UInt8* bytes, CFIndex length) {
  return given<CFDataRef>([[NSData alloc] initWithBytes:bytes
                                                 length:static_cast<NSUInteger>(length)]);
}

CFURLRef CFURLCreateWithBytes(CFAllocatorRef, const UInt8* bytes, CFIndex length,
                              CFStringEncoding encoding, CFURLRef baseURL) {
  NSString* const text = [decoded(bytes, length, encoding) autorelease];
  if ([text length] == 0) {
    return nullptr;
  }
  return given<CFURLRef>([[NSURL alloc] initWithString:text relativeToURL:(NSURL*)baseURL]);
}

CFURLRef CFURLCreateFromFileSystemRepresentation(CFAllocatorRef, const UInt8* buffer,
                                                 CFIndex length, Boolean isDirectory) {
  NSString* const path = [decoded(buffer, length, kCFStringEncodingUTF8) autorelease];
  return given<CFURLRef>([[NSURL alloc] initFileURLWithPath:path isDirectory:isDirectory]);
}

CFBundleRef CFBundleGetMainBundle() {
  static NSObject* const bundle = [[NSObject alloc] init];
  return coreFoundation().hasMainBundle ? (CFBundleRef)bundle : nullptr;
}

CFBundleRef CFBundleCreate(CFAllocatorRef, CFURLRef bundleURL) {
  coreFoundation().createdBundle = textOf([(NSURL*)bundleURL path]);
  return given<CFBundleRef>([[NSObject alloc] init]);
}

CFTypeRef CFBundleGetValueForInfoDictionaryKey(CFBundleRef, CFStringRef key) {
  return [coreFoundation().information objectForKey:(NSString*)key];
}

SInt32 CFUserNotificationDisplayNotice(CFTimeInterval timeout, CFOptionFlags flags,
                                       CFURLRef iconURL, CFURLRef soundURL,
                                       CFURLRef localizationURL, CFStringRef alertHeader,
                                       CFStringRef alertMessage, CFStringRef defaultButtonTitle) {
  recordDialog("CFUserNotificationDisplayNotice", timeout, flags, alertHeader, alertMessage,
               defaultButtonTitle, iconURL || soundURL || localizationURL);
  return coreFoundation().displayResult;
}

SInt32 CFUserNotificationDisplayAlert(CFTimeInterval timeout, CFOptionFlags flags, CFURLRef iconURL,
                                      CFURLRef soundURL, CFURLRef localizationURL,
                                      CFStringRef alertHeader, CFStringRef alertMessage,
                                      CFStringRef defaultButtonTitle,
                                      CFStringRef alternateButtonTitle,
                                      CFStringRef otherButtonTitle, CFOptionFlags* responseFlags) {
  recordDialog("CFUserNotificationDisplayAlert", timeout, flags, alertHeader, alertMessage,
               defaultButtonTitle, iconURL || soundURL || localizationURL || otherButtonTitle);
  CoreFoundationRecord& fake = coreFoundation();
  fake.alternateButton = textOf(alternateButtonTitle);
  if (fake.writesResponse) {
    *responseFlags = fake.response;
  }
  return fake.displayResult;
}
