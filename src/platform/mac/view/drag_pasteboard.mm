#include "platform/mac/view/drag_pasteboard.h"

#include <CoreServices/CoreServices.h>

#include <filesystem>

#include "include/cef_parser.h"
#include "platform/mac/base/system_text.h"

// The pasteboard types and the ways to type identifiers are those that all systems have.
#pragma clang diagnostic ignored "-Wdeprecated-declarations"

namespace client {
namespace {

NSString* const kUrlNamePboardType = @"public.url-name";
// Fallback for unknown contents.
NSString* const kUnknownFileType = @"public.data";

NSString* toNSString(const CefString& text) {
  const std::u16string units = text.ToString16();
  return [NSString stringWithCharacters:reinterpret_cast<const unichar*>(units.data())
                                 length:units.size()];
}

void provideLink(NSPasteboard* pasteboard, CefDragData& data) {
  if (NSURL* const url = [NSURL URLWithString:toNSString(data.GetLinkURL())]) {
    [url writeToPasteboard:pasteboard];
  }
}

void provideContents(NSPasteboard* pasteboard, CefDragData& data, NSString* fileType) {
  if (const CefRefPtr<BytesWriteHandler> bytes = fileContentsOf(data)) {
    [pasteboard setData:[NSData dataWithBytes:bytes->data()
                                       length:static_cast<NSUInteger>(bytes->size())]
                forType:fileType];
  }
}

}  // namespace

NSString* const kDragDummyPboardType = @"org.CEF.drag-dummy-type";

DroppedItems droppedItemsOf(NSPasteboard* pasteboard) {
  DroppedItems items;
  if ([[pasteboard types] containsObject:NSStringPboardType]) {
    items.text = zantrio::toUtf8([pasteboard stringForType:NSStringPboardType]);
  }
  if ([[pasteboard types] containsObject:NSFilenamesPboardType]) {
    NSArray* const filenames = [pasteboard propertyListForType:NSFilenamesPboardType];
    if ([filenames isKindOfClass:[NSArray class]]) {
      items.paths = zantrio::toUtf8List(filenames);
    }
  }
  return items;
}

NSString* fileTypeOf(CefDragData& data) {
  const std::string extension =
      std::filesystem::path(data.GetFileName().ToString()).extension().string();
  const std::string mimeType =
      extension.empty() ? "" : CefGetMimeType(extension.substr(1)).ToString();
  if (mimeType.empty()) {
    return kUnknownFileType;
  }
  const auto tag = zantrio::createSystemString(mimeType, kCFStringEncodingUTF8);
  const zantrio::CfOwned<CFStringRef> type(
      UTTypeCreatePreferredIdentifierForTag(kUTTagClassMIMEType, tag.get(), nullptr));
  return type ? [[(NSString*)type.get() copy] autorelease] : kUnknownFileType;
}

void declareKinds(NSPasteboard* pasteboard, CefDragData& data, NSString* fileType, id owner) {
  const DragKinds kinds = kindsOf(data);
  [pasteboard declareTypes:[NSArray arrayWithObject:kDragDummyPboardType] owner:owner];
  if (kinds.link) {
    [pasteboard addTypes:[NSArray arrayWithObjects:NSURLPboardType, kUrlNamePboardType, nil]
                   owner:owner];
  }
  if (fileType != nil) {
    [pasteboard addTypes:[NSArray arrayWithObjects:fileType, NSFilesPromisePboardType, nil]
                   owner:owner];
    [pasteboard setPropertyList:[NSArray arrayWithObject:fileType]
                        forType:NSFilesPromisePboardType];
  }
  if (kinds.text) {
    [pasteboard addTypes:[NSArray arrayWithObject:NSStringPboardType] owner:owner];
  }
}

void provideKind(NSPasteboard* pasteboard, NSString* type, CefDragData& data, NSString* fileType) {
  if ([type isEqualToString:NSURLPboardType]) {
    provideLink(pasteboard, data);
  } else if ([type isEqualToString:kUrlNamePboardType]) {
    [pasteboard setString:toNSString(data.GetLinkTitle()) forType:type];
  } else if ([type isEqualToString:NSStringPboardType]) {
    [pasteboard setString:toNSString(data.GetFragmentText()) forType:type];
  } else if (fileType != nil && [type isEqualToString:fileType]) {
    provideContents(pasteboard, data, fileType);
  } else if ([type isEqualToString:kDragDummyPboardType]) {
    [pasteboard setData:[NSData data] forType:type];
  }
}

}  // namespace client
