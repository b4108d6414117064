#include "platform/mac/base/utf8_text.h"

namespace zantrio {

std::optional<std::string> toUtf8(NSString* text) {
  // Not UTF8String, which is null or raises an exception for what it cannot convert.
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
