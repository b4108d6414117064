#pragma once

#include <memory>
#include <stdexcept>
#include <string>

#include "services/contacts/contact.h"

namespace zantrio {

// The address book of the system. Ownership: the caller's. Thread: UI.
class IAddressBook {
 public:
  // The system has no address book, or denies access to it.
  class CAddressBookObtainError : public std::runtime_error {
   public:
    CAddressBookObtainError()
        : std::runtime_error("Failed to obtain system address book reference!") {}
  };

  virtual ~IAddressBook() = default;

  // Appends an entry for each e-mail address of every person whose first name, last name or e-mail
  // address contains `query`, ignoring case. Contacts that cannot be read are skipped; a failed
  // search finds nothing.
  virtual void search(const std::string& query, ContactEntries& results) = 0;
};

// Null when memory runs out. Throws IAddressBook::CAddressBookObtainError. Implemented by each
// platform.
std::unique_ptr<IAddressBook> createAddressBook();

}  // namespace zantrio
