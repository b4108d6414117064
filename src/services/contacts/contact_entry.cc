#include "services/contacts/contact_entry.h"

namespace zantrio {

std::string displayName(const ContactEntry& entry) {
  if (entry.firstName.empty()) {
    return entry.lastName;
  }
  return entry.lastName.empty() ? entry.firstName : entry.firstName + " " + entry.lastName;
}

}  // namespace zantrio
