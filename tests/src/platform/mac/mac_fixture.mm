#include "src/platform/mac/mac_fixture.h"

#include "src/platform/mac/fakes/appkit_fake.h"
#include "src/platform/mac/fakes/system_fake.h"

@implementation HalfPair
+ (id)string {
  return [[[HalfPair alloc] init] autorelease];
}

- (NSUInteger)length {
  return 2;
}

- (unichar)characterAtIndex:(NSUInteger)index {
  return index == 0 ? '/' : 0xD800;
}

- (id)copyWithZone:(NSZone*)zone {
  (void)zone;
  return [self retain];
}
@end

namespace zantrio::mac_test {

void MacTest::SetUp() {
  pool_ = [[NSAutoreleasePool alloc] init];
  calls().clear();
  fakeSystem() = {};
  appKit() = {};
  recordSystemLog();
}

void MacTest::TearDown() {
  [pool_ drain];
  EXPECT_EQ(fakeSystem().ownedObjects, 0) << "CoreFoundation objects leaked or over-released";
}

}  // namespace zantrio::mac_test
