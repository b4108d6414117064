#pragma once

#include <libebook/libebook.h>

#include <optional>

#include "services/contacts/contact.h"

namespace zantrio {

// The person that the record describes; nothing for a list of persons. Texts become valid UTF-8.
// A record that knows a name only as a whole has it as the first name.
std::optional<Contact> readContact(EContact* record);

}  // namespace zantrio
