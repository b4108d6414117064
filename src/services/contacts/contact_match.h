#pragma once

#include <string>
#include <string_view>

#include "services/contacts/contact.h"

namespace zantrio {

// What a contact is searched by: its names and addresses, prepared once for any number of queries.
std::string searchText(const Contact& contact);

// A text that is looked for in contacts: a person matches when the first name, the last name or an
// e-mail address contains it, upper and lower case being the same. The empty text is contained in
// everything.
class ContactQuery {
 public:
  explicit ContactQuery(std::string_view query);

  bool matches(const std::string& searchText) const;

 private:
  const std::string folded_;
};

}  // namespace zantrio
