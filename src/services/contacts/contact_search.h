#pragma once

#include <string>
#include <string_view>

#include "services/contacts/contact.h"

namespace zantrio {

// The text in which a contact is searched: its folded names and addresses. Made once and used for
// any number of queries. Thread: any.
std::string searchText(const Contact& contact);

// Searches contacts for a text: a person matches when the first name, the last name or an e-mail
// address contains it. Case and the composition of letters are ignored; accents are not. The empty
// text matches everything. Thread: any.
class ContactQuery {
 public:
  explicit ContactQuery(std::string_view query);

  bool matches(const std::string& searchText) const;

 private:
  const std::string folded_;
};

}  // namespace zantrio
