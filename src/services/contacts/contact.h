#pragma once

#include <optional>
#include <string>
#include <vector>

#include "services/contacts/contact_entry.h"

namespace zantrio {

// A person as an address book keeps it.
struct Contact {
  std::string firstName;
  std::string lastName;
  // In the address book's order. Nothing: the person has no such property at all, which is not the
  // same as a property without values.
  std::optional<std::vector<std::string>> emails;
};

// Appends what the person is in a search's result: an entry for each e-mail address, none for an
// e-mail property without values, one without address for a person without that property.
void appendEntries(const Contact& contact, ContactEntries& results);

}  // namespace zantrio
