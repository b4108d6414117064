#pragma once

#include <ApplicationServices/ApplicationServices.h>

#include <cstdint>
#include <map>
#include <string>

namespace zantrio::mac_test {

// The calls of the pasteboard manager, Launch Services, Gestalt, the type registry and the loader,
// and their results.
struct SystemServicesRecord {
  OSStatus pasteboardCreation = noErr;
  OSStatus pasteboardPut = noErr;
  std::string pasteboardName;
  std::uintptr_t item = 0;
  std::string flavor;
  std::string data;
  PasteboardFlavorFlags flavorFlags = 99;

  std::string openedUrl;  // "(null)" when there was none
  bool launchServicesRaise = false;
  OSStatus launchResult = noErr;

  std::map<OSType, SInt32> gestalt;  // missing selectors are errors

  std::map<std::string, std::string> mimeTypes;        // by extension
  std::map<std::string, std::string> typeIdentifiers;  // by MIME type

  std::string executablePath;  // empty: the loader fails
};

SystemServicesRecord& systemServices();

}  // namespace zantrio::mac_test
