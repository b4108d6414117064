#pragma once

#include <memory>
#include <stdexcept>
#include <string>

#include "services/contacts/contact.h"

namespace zantrio {

// The user's contacts, as the system keeps them. Ownership: the caller's. Thread: UI.
class IAddressBook {
 public:
  // The system has no address book, or does not let us at it.
  class CAddressBookObtainError : public std::runtime_error {
   public:
    CAddressBookObtainError()
        : std::runtime_error("Failed to obtain system address book reference!") {}
  };

  virtual ~IAddressBook() = default;

  // Appends an entry for each e-mail address of every person whose first name, last name or e-mail
  // address contains `query`, upper and lower case being the same. What cannot be read is left
  // out: a failure is a search that finds nothing.
  virtual void search(const std::string& query, ContactEntries& results) = 0;
};

// Null when there was no memory for it. Throws IAddressBook::CAddressBookObtainError.
std::unique_ptr<IAddressBook> createAddressBook();

}  // namespace zantrio
