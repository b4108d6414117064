// The view as the client of the system's input methods.
#include "app/log/guarded_call.h"
#include "platform/mac/view/client_opengl_view.h"
#include "platform/mac/view/client_opengl_view_parts.h"

using zantrio::guardedCall;

namespace {

CefCompositionUnderline underlineOf(NSRange range, NSInteger style) {
  CefCompositionUnderline underline;
  underline.range =
      CefRange(static_cast<uint32_t>(range.location), static_cast<uint32_t>(NSMaxRange(range)));
  underline.thick = style > 1 ? 1 : 0;  // the active clause
  return underline;
}

// `string`: an NSString or NSAttributedString.
std::u16string textOf(id string) {
  NSString* const text =
      [string isKindOfClass:[NSAttributedString class]] ? [string string] : (NSString*)string;
  std::u16string units([text length], u'\0');
  [text getCharacters:reinterpret_cast<unichar*>(units.data()) range:NSMakeRange(0, units.size())];
  return units;
}

// The underlines that the attributes request, else one under the whole text.
client::TextInput::Underlines underlinesOf(id string) {
  const NSUInteger length = [string length];
  if (![string isKindOfClass:[NSAttributedString class]]) {
    return {underlineOf(NSMakeRange(0, length), 1)};
  }
  client::TextInput::Underlines underlines;
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

NSRange toNSRange(const CefRange& range) {
  return NSMakeRange(range.from, range.to - range.from);
}

CefRange toCefRange(NSRange range) {
  return {static_cast<uint32_t>(range.location), static_cast<uint32_t>(NSMaxRange(range))};
}

std::optional<CefRange> replacedBy(NSRange range) {
  return range.location == NSNotFound ? std::nullopt : std::optional(toCefRange(range));
}

}  // namespace

@implementation ClientOpenGLView (Text)

- (void)insertText:(id)string replacementRange:(NSRange)replaced {
  guardedCall("insertText", [&] { parts_->presses.insert(textOf(string), replacedBy(replaced)); });
}

- (void)setMarkedText:(id)string
        selectedRange:(NSRange)selected
     replacementRange:(NSRange)replaced {
  guardedCall("setMarkedText", [&] {
    parts_->presses.mark(textOf(string), underlinesOf(string), toCefRange(selected),
                         replacedBy(replaced));
  });
}

- (void)unmarkText {
  guardedCall("unmarkText", [&] { parts_->presses.unmark(); });
}

// The key press itself is sent to the page.
- (void)doCommandBySelector:(SEL)selector {
  (void)selector;
  parts_->presses.command();
}

- (BOOL)hasMarkedText {
  return parts_->osr->textInput().isComposing();
}

- (NSRange)markedRange {
  const client::TextInput& text = parts_->osr->textInput();
  return text.isComposing() ? toNSRange(text.composedRange()) : NSMakeRange(NSNotFound, 0);
}

- (NSRange)selectedRange {
  return toNSRange(parts_->osr->textInput().selectedRange());
}

- (NSArray*)validAttributesForMarkedText {
  return [NSArray arrayWithObject:NSUnderlineStyleAttributeName];
}

// Only the selected part of the field's text is known.
- (NSAttributedString*)attributedSubstringForProposedRange:(NSRange)range
                                               actualRange:(NSRangePointer)actual {
  if (range.length == 0 || !NSEqualRanges(range, [self selectedRange])) {
    return nil;
  }
  if (actual != nullptr) {
    *actual = range;
  }
  const std::u16string text = parts_->osr->textInput().selectedText().ToString16();
  NSString* const selected =
      [NSString stringWithCharacters:reinterpret_cast<const unichar*>(text.data())
                              length:text.size()];
  return [[[NSAttributedString alloc] initWithString:selected] autorelease];
}

- (NSUInteger)characterIndexForPoint:(NSPoint)point {
  (void)point;
  return NSNotFound;
}

// On the screen.
- (NSRect)firstRectForCharacterRange:(NSRange)range actualRange:(NSRangePointer)actual {
  if (actual != nullptr) {
    *actual = range;
  }
  const client::TextInput& text = parts_->osr->textInput();
  const NSUInteger start = text.composedRange().from;
  const CefRect place = text.boundsOf(range.location > start ? range.location - start : 0);
  const NSRect upright = NSMakeRect(place.x, NSHeight([self bounds]) - place.y - place.height,
                                    place.width, place.height);
  return [[self window] convertRectToScreen:[self convertRect:upright toView:nil]];
}

@end
