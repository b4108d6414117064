#pragma once

#include <CoreFoundation/CoreFoundation.h>
#import <Foundation/Foundation.h>

#include <memory>
#include <optional>
#include <string>
#include <type_traits>
#include <vector>

namespace zantrio {

struct CfReleaser {
  void operator()(CFTypeRef object) const { CFRelease(object); }
};

// Owns a CoreFoundation object returned by a Create or Copy function.
template <class Ref>
using CfOwned = std::unique_ptr<std::remove_pointer_t<Ref>, CfReleaser>;

// Decodes `text`; null if it is invalid in `encoding`.
CfOwned<CFStringRef> createSystemString(const std::string& text, CFStringEncoding encoding);

// Encodes the string in a single-byte `encoding`, from its own buffer if it offers one. Returns
// false and leaves `text` unchanged if it cannot be encoded.
bool readSystemString(CFStringRef string, CFStringEncoding encoding, std::string& text);

// Encodes a string in UTF-8; nothing for nil or an unpaired surrogate.
std::optional<std::string> toUtf8(NSString* text);

// Encodes the strings of a list in UTF-8. Other items are skipped and logged with NSLog.
std::vector<std::string> toUtf8List(NSArray* list);

}  // namespace zantrio
