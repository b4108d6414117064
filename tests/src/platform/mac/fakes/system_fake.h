#pragma once

#include <ApplicationServices/ApplicationServices.h>
#import <Foundation/Foundation.h>

#include <map>
#include <string>

#include "src/platform/mac/fakes/calls.h"

namespace zantrio::mac_test {

// The results of the system's C functions. Their calls are recorded among the calls.
struct SystemRecord {
  int ownedObjects = 0;  // created and retained objects that nothing has released yet

  bool offersOwnBuffer = false;  // CFStringGetCStringPtr
  CFStringEncoding systemEncoding = kCFStringEncodingMacRoman;
  bool hasMainBundle = true;
  NSDictionary* information = nil;  // of every bundle; not owned
  std::string createdBundle;        // the folder of the last one

  bool showsQuestions = true;
  CFOptionFlags response = kCFUserNotificationDefaultResponse;

  OSStatus pasteboardCreation = noErr;
  OSStatus pasteboardPut = noErr;
  bool launchServicesRaise = false;
  OSStatus launchResult = noErr;
  int assertionResult = 0;                             // of the power manager
  unsigned assertionsTaken = 0;                        // which also numbers them
  std::map<OSType, SInt32> gestalt;                    // missing selectors are errors
  std::map<std::string, std::string> mimeTypes;        // by extension
  std::map<std::string, std::string> typeIdentifiers;  // by MIME type
  std::string executablePath;                          // empty: the loader fails
};

SystemRecord& fakeSystem();

// Text of a string in UTF-8; "(null)" for none.
std::string textOf(NSString* string);

}  // namespace zantrio::mac_test
