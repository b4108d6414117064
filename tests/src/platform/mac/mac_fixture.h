#pragma once

#import <Foundation/Foundation.h>
#include <gtest/gtest.h>

// "/" and an unpaired surrogate, which GNUstep's strings reject.
@interface HalfPair : NSString
@end

namespace zantrio::mac_test {

// Resets the fakes and records the system log for each test; afterwards checks that every
// CoreFoundation object was released.
class MacTest : public ::testing::Test {
 protected:
  void SetUp() override;
  void TearDown() override;

 private:
  NSAutoreleasePool* pool_ = nil;
};

}  // namespace zantrio::mac_test
