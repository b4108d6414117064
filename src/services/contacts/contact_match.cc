#include "services/contacts/contact_match.h"

#include "services/contacts/folded_text.h"

namespace zantrio {
namespace {

// Stands in no folded text, so that no query matches across two of a contact's texts.
constexpr char kSeparator = '\xFF';

}  // namespace

std::string searchText(const Contact& contact) {
  std::string text = foldedText(contact.firstName) + kSeparator + foldedText(contact.lastName);
  if (contact.emails) {
    for (const std::string& email : *contact.emails) {
      text += kSeparator + foldedText(email);
    }
  }
  return text;
}

ContactQuery::ContactQuery(std::string_view query) : folded_(foldedText(query)) {}

bool ContactQuery::matches(const std::string& searchText) const {
  return searchText.find(folded_) != std::string::npos;
}

}  // namespace zantrio
