#include "platform/mac/base/system_string.h"

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

}  // namespace zantrio
