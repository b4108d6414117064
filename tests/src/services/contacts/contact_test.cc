#include "services/contacts/contact.h"

#include <gtest/gtest.h>

namespace zantrio {
namespace {

using Emails = std::vector<std::string>;

ContactEntries entriesOf(const Contact& contact) {
  ContactEntries entries;
  appendEntries(contact, entries);
  return entries;
}

TEST(Contact, IsAnEntryForEachOfItsAddressesInTheirOrder) {
  EXPECT_EQ(entriesOf({"Ann", "Lee", Emails{"z@example.org", "a@example.org"}}),
            (ContactEntries{{"Ann", "Lee", "z@example.org"}, {"Ann", "Lee", "a@example.org"}}));
}

TEST(Contact, IsNoEntryWhenItsEmailPropertyHoldsNothing) {
  EXPECT_EQ(entriesOf({"Ann", "Lee", Emails{}}), ContactEntries{});
}

TEST(Contact, IsOneEntryWithoutAddressWhenItHasNoEmailProperty) {
  EXPECT_EQ(entriesOf({"Ann", "", std::nullopt}), (ContactEntries{{"Ann", "", ""}}));
}

TEST(Contact, IsAppendedBehindWhatWasFoundBefore) {
  ContactEntries entries{{"Ann", "Lee", ""}};
  appendEntries({"Bo", "Lee", std::nullopt}, entries);
  EXPECT_EQ(entries, (ContactEntries{{"Ann", "Lee", ""}, {"Bo", "Lee", ""}}));
}

TEST(DisplayName, JoinsTheNamesThatThereAre) {
  EXPECT_EQ(displayName({"Ann", "Lee", "a@example.org"}), "Ann Lee");
  EXPECT_EQ(displayName({"Ann", "", ""}), "Ann");
  EXPECT_EQ(displayName({"", "Lee", ""}), "Lee");
  EXPECT_EQ(displayName({"", "", "a@example.org"}), "");
}

}  // namespace
}  // namespace zantrio
