#include "src/platform/mac/fakes/system_services_fake.h"

#import <Foundation/Foundation.h>
#include <mach-o/dyld.h>

#include <cstring>

#include "include/cef_parser.h"
#include "src/platform/mac/fakes/calls.h"
#include "src/platform/mac/fakes/core_foundation_fake.h"

namespace zantrio::mac_test {

SystemServicesRecord& systemServices() {
  static SystemServicesRecord fake;
  return fake;
}

}  // namespace zantrio::mac_test

using namespace zantrio::mac_test;

OSStatus PasteboardCreate(CFStringRef name, PasteboardRef* pasteboard) {
  systemServices().pasteboardName = textOf((NSString*)name);
  // Also when it fails: only the status tells.
  static NSObject* const kUnusable = [[NSObject alloc] init];
  *pasteboard = (PasteboardRef)kUnusable;
  if (systemServices().pasteboardCreation == noErr) {
    ++coreFoundation().ownedObjects;
    *pasteboard = (PasteboardRef)[[NSObject alloc] init];
  }
  return systemServices().pasteboardCreation;
}

OSStatus PasteboardClear(PasteboardRef) {
  recordCall("PasteboardClear");
  return noErr;
}

PasteboardSyncFlags PasteboardSynchronize(PasteboardRef) {
  recordCall("PasteboardSynchronize");
  return 0;
}

OSStatus PasteboardPutItemFlavor(PasteboardRef, PasteboardItemID item, CFStringRef flavorType,
                                 CFDataRef flavorData, PasteboardFlavorFlags flavorFlags) {
  recordCall("PasteboardPutItemFlavor");
  SystemServicesRecord& fake = systemServices();
  fake.item = reinterpret_cast<std::uintptr_t>(item);
  fake.flavor = textOf((NSString*)flavorType);
  NSData* const data = (NSData*)flavorData;
  fake.data.assign(static_cast<const char*>([data bytes]), [data length]);
  fake.flavorFlags = flavorFlags;
  return fake.pasteboardPut;
}

OSStatus LSOpenCFURLRef(CFURLRef url, CFURLRef* launchedURL) {
  recordCall(launchedURL == nullptr ? "LSOpenCFURLRef" : "LSOpenCFURLRef asking for a URL");
  systemServices().openedUrl = textOf([(NSURL*)url absoluteString]);
  if (systemServices().launchServicesRaise) {
    [NSException raise:NSGenericException format:@"Launch Services"];
  }
  return systemServices().launchResult;
}

CefString CefGetMimeType(const CefString& extension) {
  const auto known = systemServices().mimeTypes.find(extension.ToString());
  return known == systemServices().mimeTypes.end() ? CefString() : CefString(known->second);
}

const CFStringRef kUTTagClassMIMEType = CFSTR("public.mime-type");

CFStringRef UTTypeCreatePreferredIdentifierForTag(CFStringRef tagClass, CFStringRef tag,
                                                  CFStringRef) {
  const auto known = systemServices().typeIdentifiers.find(textOf((NSString*)tag));
  if (tagClass != kUTTagClassMIMEType || known == systemServices().typeIdentifiers.end()) {
    return nullptr;
  }
  ++coreFoundation().ownedObjects;
  return (CFStringRef)[[NSString alloc] initWithUTF8String:known->second.c_str()];
}

OSErr Gestalt(OSType selector, SInt32* response) {
  const auto known = systemServices().gestalt.find(selector);
  if (known == systemServices().gestalt.end()) {
    return -5551;
  }
  *response = known->second;
  return noErr;
}

int _NSGetExecutablePath(char* buffer, std::uint32_t* bufferSize) {
  const std::string& path = systemServices().executablePath;
  if (path.empty() || *bufferSize < path.size() + 1) {
    *bufferSize = static_cast<std::uint32_t>(path.size() + 1);
    return -1;
  }
  std::memcpy(buffer, path.c_str(), path.size() + 1);
  return 0;
}
