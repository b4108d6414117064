#include "platform/mac/view/input_method_text.h"

namespace client {
namespace {

CefCompositionUnderline underlineOf(NSRange range, NSInteger style) {
  CefCompositionUnderline underline;
  underline.range =
      CefRange(static_cast<uint32_t>(range.location), static_cast<uint32_t>(NSMaxRange(range)));
  underline.thick = style > 1 ? 1 : 0;  // of the part that is being chosen
  return underline;
}

}  // namespace

std::u16string textOf(id string) {
  NSString* const text =
      [string isKindOfClass:[NSAttributedString class]] ? [string string] : (NSString*)string;
  std::u16string units([text length], u'\0');
  [text getCharacters:reinterpret_cast<unichar*>(units.data()) range:NSMakeRange(0, units.size())];
  return units;
}

TextInput::Underlines underlinesOf(id string) {
  const NSUInteger length = [string length];
  if (![string isKindOfClass:[NSAttributedString class]]) {
    return {underlineOf(NSMakeRange(0, length), 1)};
  }
  TextInput::Underlines underlines;
  for (NSUInteger at = 0; at < length;) {
    NSRange part;
    NSNumber* const style = [string attribute:NSUnderlineStyleAttributeName
                                      atIndex:at
                               effectiveRange:&part];
    underlines.push_back(underlineOf(part, [style integerValue]));
    at = NSMaxRange(part);
  }
  return underlines;
}

}  // namespace client
