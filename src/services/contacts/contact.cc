#include "services/contacts/contact.h"

namespace zantrio {

std::string displayName(const ContactEntry& entry) {
  if (entry.firstName.empty()) {
    return entry.lastName;
  }
  return entry.lastName.empty() ? entry.firstName : entry.firstName + " " + entry.lastName;
}

void appendEntries(const Contact& contact, ContactEntries& results) {
  if (!contact.emails) {
    results.push_back({contact.firstName, contact.lastName, {}});
    return;
  }
  for (const std::string& email : *contact.emails) {
    results.push_back({contact.firstName, contact.lastName, email});
  }
}

}  // namespace zantrio
