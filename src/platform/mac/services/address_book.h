#pragma once

#import <AddressBook/AddressBook.h>

#include "services/address_book.h"

// Uses the deprecated AddressBook framework.
#pragma clang diagnostic push
#pragma clang diagnostic ignored "-Wdeprecated-declarations"

namespace zantrio {

// Searches the user's shared address book. Query and names are in Mac Roman, the system's narrow
// encoding: other characters do not match, and names with them are returned empty.
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
