#pragma once

#import <Foundation/Foundation.h>
#include <gtest/gtest.h>

// "/" and half of a surrogate pair, which the strings of the system here refuse to be made of.
@interface HalfPair : NSString
@end

namespace zantrio::mac_test {

// Starts every test with fresh fakes and a recorded system log, and ends it by looking whether all
// that the system gave was released.
class MacTest : public ::testing::Test {
 protected:
  void SetUp() override;
  void TearDown() override;

 private:
  NSAutoreleasePool* pool_ = nil;
};

}  // namespace zantrio::mac_test
