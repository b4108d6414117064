#include "src/platform/mac/fakes/pasteboard_fake.h"

@implementation MemoryPasteboard
+ (MemoryPasteboard*)drag {
  static MemoryPasteboard* const pasteboard = [[MemoryPasteboard alloc] init];
  return pasteboard;
}

+ (NSPasteboard*)system {
  return (NSPasteboard*)[MemoryPasteboard drag];
}

+ (id)pasteboardWithName:(NSString*)name {
  return [name isEqualToString:NSDragPboard] ? [MemoryPasteboard drag] : nil;
}

- (id)init {
  self = [super init];
  _types = [[NSMutableArray alloc] init];
  _contents = [[NSMutableDictionary alloc] init];
  return self;
}

- (void)clear {
  _raises = NO;
  [self declareTypes:[NSArray array] owner:nil];
}

- (void)setRaises:(BOOL)raises {
  _raises = raises;
}

- (void)used {
  if (_raises) {
    [NSException raise:NSGenericException format:@"pasteboard"];
  }
}

- (id)owner {
  return _owner;
}

- (NSInteger)changeCount {
  [self used];
  return _changeCount;
}

- (NSArray*)types {
  [self used];
  return _types;
}

- (void)declareTypes:(NSArray*)types owner:(id)owner {
  [self used];
  [_types removeAllObjects];
  [_contents removeAllObjects];
  ++_changeCount;
  [self addTypes:types owner:owner];
}

- (void)addTypes:(NSArray*)types owner:(id)owner {
  [_types addObjectsFromArray:types];
  _owner = owner;
}

- (BOOL)setPropertyList:(id)list forType:(NSString*)type {
  [self used];
  [_contents setObject:list forKey:type];
  return YES;
}

- (BOOL)setData:(NSData*)data forType:(NSString*)type {
  return [self setPropertyList:data forType:type];
}

- (BOOL)setString:(NSString*)string forType:(NSString*)type {
  return [self setPropertyList:string forType:type];
}

- (id)contentsOf:(NSString*)type {
  [self used];
  if ([_types containsObject:type] && [_contents objectForKey:type] == nil) {
    [_owner pasteboard:(NSPasteboard*)self provideDataForType:type];
  }
  return [_contents objectForKey:type];
}

- (NSString*)stringForType:(NSString*)type {
  return [self contentsOf:type];
}

- (NSData*)dataForType:(NSString*)type {
  return [self contentsOf:type];
}

- (id)propertyListForType:(NSString*)type {
  return [self contentsOf:type];
}
@end

// Only the part of the protocol that the view uses.
#pragma clang diagnostic push
#pragma clang diagnostic ignored "-Wprotocol"

@implementation DragOver
- (NSPoint)draggingLocation {
  return _location;
}

- (NSPasteboard*)draggingPasteboard {
  return [MemoryPasteboard system];
}

- (NSDragOperation)draggingSourceOperationMask {
  return _operations;
}
@end

#pragma clang diagnostic pop

std::unique_ptr<zantrio::mac_test::ClassMethodSwap> zantrio::mac_test::putDragPasteboardInPlace() {
  return std::make_unique<ClassMethodSwap>([NSPasteboard class], [MemoryPasteboard class],
                                           @selector(pasteboardWithName:));
}
