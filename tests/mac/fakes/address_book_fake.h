#pragma once

#import <Foundation/Foundation.h>

#include <memory>

#include "mac/fakes/method_swap.h"

namespace zantrio::mac_test {

// What the address book that stands in for the system's answers.
struct AddressBookFake {
  bool exists = true;
  NSArray* records = nil;  // dictionaries from property to value; not owned
};

AddressBookFake& addressBook();

// While the result lives, the shared address book is the one above.
std::unique_ptr<ClassMethodSwap> putAddressBookInPlace();

}  // namespace zantrio::mac_test
