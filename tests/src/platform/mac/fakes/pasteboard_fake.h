#pragma once

#import <AppKit/AppKit.h>

#include <memory>

#include "src/platform/mac/fakes/method_swap.h"

// Replaces the system's drag pasteboard by one in memory. It lives as long as the process; `clear`
// empties it. It asks its owner for promised contents.
@interface MemoryPasteboard : NSObject {
 @private
  NSMutableArray* _types;
  NSMutableDictionary* _contents;
  id _owner;
  NSInteger _changeCount;
  BOOL _raises;
}
+ (MemoryPasteboard*)drag;
+ (NSPasteboard*)system;  // the same, as the system hands it out
- (void)clear;
- (void)setRaises:(BOOL)raises;  // in every call
- (id)owner;
- (void)declareTypes:(NSArray*)types owner:(id)owner;
@end

// A drag over a view.
@interface DragOver : NSObject <NSDraggingInfo> {
 @public
  NSPoint _location;
  NSDragOperation _operations;
}
@end

namespace zantrio::mac_test {

std::unique_ptr<ClassMethodSwap> putDragPasteboardInPlace();

}  // namespace zantrio::mac_test
