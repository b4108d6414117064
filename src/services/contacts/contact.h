#pragma once

#include <optional>
#include <string>
#include <vector>

namespace zantrio {

// One result of a search: a person with one of the addresses. Any member may be empty.
struct ContactEntry {
  std::string firstName;
  std::string lastName;
  std::string email;

  bool operator==(const ContactEntry& other) const = default;
};

// In the order in which they were found.
using ContactEntries = std::vector<ContactEntry>;

// First and last name with one blank between them, or the only one that is set.
std::string displayName(const ContactEntry& entry);

// A person in an address book.
struct Contact {
  std::string firstName;
  std::string lastName;
  // In the address book's order. Unset: the person has no e-mail property, which differs from a
  // property without values.
  std::optional<std::vector<std::string>> emails;
};

// Appends the person's search results: one for each e-mail address, none for an e-mail property
// without values, one without address for a person without that property.
void appendEntries(const Contact& contact, ContactEntries& results);

}  // namespace zantrio
