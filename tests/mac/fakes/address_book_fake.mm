#include "mac/fakes/address_book_fake.h"

#import <AddressBook/AddressBook.h>

namespace zantrio::mac_test {

AddressBookFake& addressBook() {
  static AddressBookFake fake;
  return fake;
}

}  // namespace zantrio::mac_test

using namespace zantrio::mac_test;

@interface AnsweringRecord : NSObject {
  NSDictionary* _values;
}
- (id)initWithValues:(NSDictionary*)values;
@end

@implementation AnsweringRecord
- (id)initWithValues:(NSDictionary*)values {
  self = [super init];
  _values = [values retain];
  return self;
}

- (void)dealloc {
  [_values release];
  [super dealloc];
}

- (id)valueForProperty:(NSString*)property {
  return [_values objectForKey:property];
}
@end

@interface AnsweringAddressBook : NSObject
@end

@implementation AnsweringAddressBook
+ (id)sharedAddressBook {
  return addressBook().exists ? [[[AnsweringAddressBook alloc] init] autorelease] : nil;
}

- (NSArray*)recordsMatchingSearchElement:(ABSearchElement*)search {
  if (addressBook().records == nil) {
    return nil;
  }
  NSMutableArray* const records = [NSMutableArray array];
  for (NSDictionary* values in addressBook().records) {
    [records addObject:[[[AnsweringRecord alloc] initWithValues:values] autorelease]];
  }
  return records;
}
@end

std::unique_ptr<ClassMethodSwap> zantrio::mac_test::putAddressBookInPlace() {
  return std::make_unique<ClassMethodSwap>([ABAddressBook class], [AnsweringAddressBook class],
                                           @selector(sharedAddressBook));
}
