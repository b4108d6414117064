#include "src/platform/mac/fakes/system_fake.h"

#include <IOKit/pwr_mgt/IOPMLib.h>
#include <mach-o/dyld.h>

#include <cstring>

#include "include/cef_parser.h"

namespace zantrio::mac_test {

SystemRecord& fakeSystem() {
  static SystemRecord fake;
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
  fakeSystem().ownedObjects += object == nil ? 0 : 1;
  return (Ref)object;
}

NSString* decoded(const UInt8* bytes, CFIndex length, CFStringEncoding encoding) {
  return [[NSString alloc] initWithBytes:bytes
                                  length:static_cast<NSUInteger>(length)
                                encoding:foundationEncoding(encoding)];
}

// The value, or nothing.
template <class Map>
const typename Map::mapped_type* find(const Map& map, const typename Map::key_type& key) {
  const auto known = map.find(key);
  return known == map.end() ? nullptr : &known->second;
}

}  // namespace
}  // namespace zantrio::mac_test

using namespace zantrio::mac_test;

CFTypeRef CFRetain(CFTypeRef object) {
  return given<CFTypeRef>([(id)object retain]);
}

void CFRelease(CFTypeRef object) {
  --fakeSystem().ownedObjects;
  [(id)object release];
}

CFTypeID CFGetTypeID(CFTypeRef object) {
  return [(id)object isKindOfClass:[NSString class]] ? CFStringGetTypeID() : 0;
}

CFTypeID CFStringGetTypeID() {
  return 7;
}

CFStringEncoding CFStringGetSystemEncoding() {
  return fakeSystem().systemEncoding;
}

CFStringRef CFStringCreateWithBytes(CFAllocatorRef, const UInt8* bytes, CFIndex length,
                                    CFStringEncoding encoding, Boolean) {
  return given<CFStringRef>(decoded(bytes, length, encoding));
}

CFIndex CFStringGetLength(CFStringRef string) {
  return static_cast<CFIndex>([(NSString*)string length]);
}

const char* CFStringGetCStringPtr(CFStringRef string, CFStringEncoding encoding) {
  return fakeSystem().offersOwnBuffer
             ? [(NSString*)string cStringUsingEncoding:foundationEncoding(encoding)]
             : nullptr;
}

Boolean CFStringGetCString(CFStringRef string, char* buffer, CFIndex bufferSize,
                           CFStringEncoding encoding) {
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
  return fakeSystem().hasMainBundle ? (CFBundleRef)bundle : nullptr;
}

CFBundleRef CFBundleCreate(CFAllocatorRef, CFURLRef bundleURL) {
  fakeSystem().createdBundle = textOf([(NSURL*)bundleURL path]);
  return given<CFBundleRef>([[NSObject alloc] init]);
}

CFTypeRef CFBundleGetValueForInfoDictionaryKey(CFBundleRef, CFStringRef key) {
  return [fakeSystem().information objectForKey:(NSString*)key];
}

SInt32 CFUserNotificationDisplayNotice(CFTimeInterval timeout, CFOptionFlags flags, CFURLRef icon,
                                       CFURLRef sound, CFURLRef localization, CFStringRef header,
                                       CFStringRef message, CFStringRef button) {
  recordCall("notice of level " + std::to_string(flags) + " '" + textOf(header) + "' '" +
             textOf(message) + "' button " + textOf(button) +
             (timeout != 0 || icon || sound || localization ? " and more" : ""));
  return 0;
}

SInt32 CFUserNotificationDisplayAlert(CFTimeInterval timeout, CFOptionFlags flags, CFURLRef icon,
                                      CFURLRef sound, CFURLRef localization, CFStringRef header,
                                      CFStringRef message, CFStringRef button,
                                      CFStringRef secondButton, CFStringRef thirdButton,
                                      CFOptionFlags* response) {
  recordCall("question of level " + std::to_string(flags) + " '" + textOf(header) + "' '" +
             textOf(message) + "' buttons " + textOf(button) + ", " + textOf(secondButton) +
             (timeout != 0 || icon || sound || localization || thirdButton ? " and more" : ""));
  if (!fakeSystem().showsQuestions) {
    return -1;
  }
  *response = fakeSystem().response;
  return 0;
}

OSStatus PasteboardCreate(CFStringRef name, PasteboardRef* pasteboard) {
  recordCall("use " + textOf(name));
  // Written also on failure, as by the system; only the status shows the failure.
  static NSObject* const kUnusable = [[NSObject alloc] init];
  const OSStatus status = fakeSystem().pasteboardCreation;
  *pasteboard =
      status == noErr ? given<PasteboardRef>([[NSObject alloc] init]) : (PasteboardRef)kUnusable;
  return status;
}

OSStatus PasteboardClear(PasteboardRef) {
  recordCall("clear");
  return noErr;
}

PasteboardSyncFlags PasteboardSynchronize(PasteboardRef) {
  recordCall("synchronize");
  return 0;
}

OSStatus PasteboardPutItemFlavor(PasteboardRef, PasteboardItemID item, CFStringRef flavorType,
                                 CFDataRef flavorData, PasteboardFlavorFlags flavorFlags) {
  NSData* const data = (NSData*)flavorData;
  recordCall("put item " + std::to_string(reinterpret_cast<std::uintptr_t>(item)) + " of " +
             textOf(flavorType) + " flags " + std::to_string(flavorFlags) + ": " +
             std::string(static_cast<const char*>([data bytes]), [data length]));
  return fakeSystem().pasteboardPut;
}

OSStatus LSOpenCFURLRef(CFURLRef url, CFURLRef* launchedURL) {
  recordCall((launchedURL == nullptr ? "open " : "open and tell ") +
             textOf([(NSURL*)url absoluteString]));
  if (fakeSystem().launchServicesRaise) {
    [NSException raise:NSGenericException format:@"Launch Services"];
  }
  return fakeSystem().launchResult;
}

CefString CefGetMimeType(const CefString& extension) {
  const std::string* const type = find(fakeSystem().mimeTypes, extension.ToString());
  return type == nullptr ? CefString() : CefString(*type);
}

const CFStringRef kUTTagClassMIMEType = CFSTR("public.mime-type");

CFStringRef UTTypeCreatePreferredIdentifierForTag(CFStringRef tagClass, CFStringRef tag,
                                                  CFStringRef) {
  const std::string* const type = find(fakeSystem().typeIdentifiers, textOf(tag));
  return tagClass == kUTTagClassMIMEType && type != nullptr
             ? given<CFStringRef>([[NSString alloc] initWithUTF8String:type->c_str()])
             : nullptr;
}

OSErr Gestalt(OSType selector, SInt32* response) {
  const SInt32* const known = find(fakeSystem().gestalt, selector);
  if (known == nullptr) {
    return -5551;
  }
  *response = *known;
  return noErr;
}

const CFStringRef kIOPMAssertionTypePreventUserIdleSystemSleep =
    CFSTR("PreventUserIdleSystemSleep");

IOReturn IOPMAssertionCreateWithName(CFStringRef type, IOPMAssertionLevel level, CFStringRef name,
                                     IOPMAssertionID* assertion) {
  recordCall("assert " + textOf(type) + " at level " + std::to_string(level) + " '" + textOf(name) +
             "'");
  // Written also on failure; only the result shows the failure.
  *assertion = fakeSystem().assertionsTaken + 1;
  fakeSystem().assertionsTaken += fakeSystem().assertionResult == kIOReturnSuccess ? 1 : 0;
  return fakeSystem().assertionResult;
}

IOReturn IOPMAssertionRelease(IOPMAssertionID assertion) {
  recordCall("end assertion " + std::to_string(assertion));
  return kIOReturnSuccess;
}

int _NSGetExecutablePath(char* buffer, std::uint32_t* bufferSize) {
  const std::string& path = fakeSystem().executablePath;
  if (path.empty() || *bufferSize < path.size() + 1) {
    *bufferSize = static_cast<std::uint32_t>(path.size() + 1);
    return -1;
  }
  std::memcpy(buffer, path.c_str(), path.size() + 1);
  return 0;
}
