#include "services/contacts/contact.h"

namespace zantrio {

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
