#pragma once

#include <string>
#include <vector>

namespace zantrio {

// One line of a search's result: a person with one of the addresses. Any member may be empty.
struct ContactEntry {
  std::string firstName;
  std::string lastName;
  std::string email;

  bool operator==(const ContactEntry& other) const = default;
};

// In the order in which they were found.
using ContactEntries = std::vector<ContactEntry>;

// First and last name with one blank between, or the one that there is.
std::string displayName(const ContactEntry& entry);

}  // namespace zantrio
