#pragma once

#include <CoreFoundation/CoreFoundation.h>
#import <Foundation/Foundation.h>

#include <string>
#include <vector>

namespace zantrio::mac_test {

// The calls of CoreFoundation's functions, and their results.
struct CoreFoundationRecord {
  // Created and retained objects that nothing has released yet.
  int ownedObjects = 0;
  // Of the strings and URLs made, in order.
  std::vector<CFStringEncoding> encodings;

  bool offersOwnBuffer = false;  // CFStringGetCStringPtr
  std::vector<CFStringEncoding> ownBufferAskedIn;
  std::vector<CFStringEncoding> copiedIn;  // CFStringGetCString
  CFStringEncoding systemEncoding = kCFStringEncodingMacRoman;

  bool hasMainBundle = true;
  NSDictionary* information = nil;  // of every bundle; not owned
  std::string createdBundle;        // the folder of the last one

  // The last notice or alert.
  CFTimeInterval timeout = -1;
  CFOptionFlags flags = 99;
  std::string header;
  std::string message;
  std::string defaultButton;
  std::string alternateButton;
  bool hasOtherParts = false;  // icon, sound, localization, third button
  SInt32 displayResult = 0;
  bool writesResponse = true;
  CFOptionFlags response = kCFUserNotificationDefaultResponse;
};

CoreFoundationRecord& coreFoundation();

// Text of a string in UTF-8; "(null)" for none.
std::string textOf(NSString* string);

}  // namespace zantrio::mac_test
