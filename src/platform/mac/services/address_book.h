#pragma once

#import <AddressBook/AddressBook.h>

#include "services/address_book.h"

// The framework is deprecated, and its interface what the client was made for.
#pragma clang diagnostic push
#pragma clang diagnostic ignored "-Wdeprecated-declarations"

namespace zantrio {

// The user's shared address book. Query and names are in Mac Roman, the system's narrow encoding:
// what has other characters does not match, and names that have them come out empty.
class CAddressBookMac : public IAddressBook {
 public:
  CAddressBookMac();
  CAddressBookMac(const CAddressBookMac&) = delete;
  CAddressBookMac& operator=(const CAddressBookMac&) = delete;
  ~CAddressBookMac() override;

  void search(const std::string& query, ContactEntries& results) override;

 private:
  ABAddressBook* const book_;
};

}  // namespace zantrio

#pragma clang diagnostic pop
