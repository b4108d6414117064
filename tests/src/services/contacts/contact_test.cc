#include "services/contacts/contact.h"

#include <gtest/gtest.h>

namespace zantrio {
namespace {

using Emails = std::vector<std::string>;

TEST(Contact, IsOneResultForEachAddressAndOneWithoutAnEmailProperty) {
  const ContactEntry before{"Bo", "Lee", ""};
  const std::pair<Contact, ContactEntries> cases[] = {
      {{"Ann", "Lee", Emails{"z@example.org", "a@example.org"}},
       {before, {"Ann", "Lee", "z@example.org"}, {"Ann", "Lee", "a@example.org"}}},
      {{"Ann", "Lee", Emails{}}, {before}},
      {{"Ann", "", std::nullopt}, {before, {"Ann", "", ""}}},
  };
  for (const auto& [contact, expected] : cases) {
    ContactEntries entries{before};
    appendEntries(contact, entries);
    EXPECT_EQ(entries, expected);
  }
}

TEST(DisplayName, JoinsTheNamesThatAreSet) {
  EXPECT_EQ(displayName({"Ann", "Lee", "a@example.org"}), "Ann Lee");
  EXPECT_EQ(displayName({"Ann", "", ""}), "Ann");
  EXPECT_EQ(displayName({"", "Lee", ""}), "Lee");
  EXPECT_EQ(displayName({"", "", "a@example.org"}), "");
}

}  // namespace
}  // namespace zantrio
