#include "platform/mac/base/system_text.h"

#include <vector>

namespace zantrio {

CfOwned<CFStringRef> createSystemString(const std::string& text, CFStringEncoding encoding) {
  return CfOwned<CFStringRef>(
      CFStringCreateWithBytes(nullptr, reinterpret_cast<const UInt8*>(text.data()),
                              static_cast<CFIndex>(text.size()), encoding, false));
}

bool readSystemString(CFStringRef string, CFStringEncoding encoding, std::string& text) {
  if (const char* own = CFStringGetCStringPtr(string, encoding)) {
    text = own;
    return true;
  }
  std::vector<char> copy(static_cast<std::size_t>(CFStringGetLength(string)) + 1);
  if (!CFStringGetCString(string, copy.data(), static_cast<CFIndex>(copy.size()), encoding)) {
    return false;
  }
  text = copy.data();
  return true;
}

std::optional<std::string> toUtf8(NSString* text) {
  // UTF8String returns null or raises an exception if the conversion fails.
  NSData* const bytes = [text dataUsingEncoding:NSUTF8StringEncoding allowLossyConversion:NO];
  if (bytes == nil) {
    return std::nullopt;
  }
  return std::string(static_cast<const char*>([bytes bytes]), [bytes length]);
}

std::vector<std::string> toUtf8List(NSArray* list) {
  std::vector<std::string> texts;
  texts.reserve([list count]);
  for (id item in list) {
    if (auto text = [item isKindOfClass:[NSString class]] ? toUtf8(item) : std::nullopt) {
      texts.push_back(std::move(*text));
    } else {
      NSLog(@"An item of a list was left out, as it is no text in Unicode.");
    }
  }
  return texts;
}

}  // namespace zantrio
