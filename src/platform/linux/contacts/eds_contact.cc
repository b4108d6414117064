#include "platform/linux/contacts/eds_contact.h"

#include "app/text/utf8_text.h"

namespace zantrio {
namespace {

std::string readText(EContact* record, EContactField field) {
  const void* const text = e_contact_get_const(record, field);
  return text == nullptr ? std::string() : toValidUtf8(static_cast<const char*>(text));
}

std::optional<std::vector<std::string>> readEmails(EContact* record) {
  auto* const values = static_cast<GList*>(e_contact_get(record, E_CONTACT_EMAIL));
  if (values == nullptr) {
    return std::nullopt;
  }
  std::vector<std::string> emails;
  for (const GList* value = values; value != nullptr; value = value->next) {
    const auto* const text = static_cast<const char*>(value->data);
    // A line without text is an e-mail property that holds nothing.
    if (text != nullptr && *text != '\0') {
      emails.push_back(toValidUtf8(text));
    }
  }
  g_list_free_full(values, g_free);
  return emails;
}

}  // namespace

std::optional<Contact> readContact(EContact* record) {
  if (e_contact_get(record, E_CONTACT_IS_LIST) != nullptr) {
    return std::nullopt;
  }
  Contact contact;
  contact.firstName = readText(record, E_CONTACT_GIVEN_NAME);
  contact.lastName = readText(record, E_CONTACT_FAMILY_NAME);
  if (contact.firstName.empty() && contact.lastName.empty()) {
    contact.firstName = readText(record, E_CONTACT_FULL_NAME);
  }
  contact.emails = readEmails(record);
  return contact;
}

}  // namespace zantrio
