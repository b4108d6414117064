#include "services/contacts/contact_search.h"

#include <gtest/gtest.h>

namespace zantrio {
namespace {

bool matches(const Contact& contact, const std::string& query) {
  return ContactQuery(query).matches(searchText(contact));
}

const Contact kAnn{"Ann", "Lee", std::vector<std::string>{"first@example.org", "2nd@test.net"}};

TEST(ContactSearch, LooksIntoEveryTextButNotFromOneIntoTheNext) {
  for (const char* query : {"", "Ann", "nn", "Lee", "first@", "example.org", "2nd@test.net"}) {
    EXPECT_TRUE(matches(kAnn, query)) << query;
  }
  for (const char* query : {"Bob", "Ann Lee", "AnnLee", "Leefirst", "org2nd", "n\xFFL"}) {
    EXPECT_FALSE(matches(kAnn, query)) << query;
  }
  EXPECT_TRUE(matches({}, ""));
}

TEST(ContactSearch, IgnoresCaseAndCompositionButNotAccents) {
  const struct {
    const char* query;
    const char* name;
    bool isContained;
  } kCases[] = {
      {"aNN", "Ann", true},
      {"АННА", "Анна", true},
      {"γιώργος", "ΓΙΏΡΓΟΣ", true},
      {"STRASSE", "Straße", true},
      {"田", "山田", true},
      {"Ъ", "объявление", true},
      {"E\u0301", "Ren\u00E9", true},
      {"\u00C9", "Rene\u0301", true},
      {"rene", "Ren\u00E9", false},
      {"é", "Rene", false},
      // No wildcards, and bytes that are not UTF-8.
      {"A*", "Ann", false},
      {"A%", "Ann", false},
      {"\")(", "x\")(y", true},
      {"\xC3", "Ann", false},
      {"nn", "\xC3 Ann", true},
  };
  for (const auto& [query, name, isContained] : kCases) {
    EXPECT_EQ(matches({name, "", std::nullopt}, query), isContained) << query << " in " << name;
  }
}

}  // namespace
}  // namespace zantrio
