#include "services/contacts/contact_search.h"

#include <gtest/gtest.h>

namespace zantrio {
namespace {

bool matches(const Contact& contact, const std::string& query) {
  return ContactQuery(query).matches(searchText(contact));
}

bool isContained(const std::string& query, const std::string& name) {
  return matches({name, "", std::nullopt}, query);
}

const Contact kAnn{"Ann", "Lee", std::vector<std::string>{"first@example.org", "2nd@test.net"}};

TEST(ContactSearch, LooksIntoFirstNameLastNameAndEveryAddress) {
  for (const char* query : {"Ann", "nn", "Lee", "first@", "example.org", "2nd@test.net"}) {
    EXPECT_TRUE(matches(kAnn, query)) << query;
  }
  EXPECT_FALSE(matches(kAnn, "Bob"));
}

TEST(ContactSearch, DoesNotReachFromOneTextIntoTheNext) {
  for (const char* query : {"Ann Lee", "AnnLee", "Leefirst", "org2nd", "n\xFFL"}) {
    EXPECT_FALSE(matches(kAnn, query)) << query;
  }
}

TEST(ContactSearch, TakesUpperAndLowerCaseForTheSameInEveryScript) {
  EXPECT_TRUE(isContained("aNN", "Ann"));
  EXPECT_TRUE(isContained("АННА", "Анна"));
  EXPECT_TRUE(isContained("γιώργος", "ΓΙΏΡΓΟΣ"));
  EXPECT_TRUE(isContained("STRASSE", "Straße"));
  EXPECT_TRUE(isContained("田", "山田"));
  EXPECT_TRUE(isContained("Ъ", "объявление"));
}

TEST(ContactSearch, TakesComposedAndDecomposedLettersForTheSame) {
  EXPECT_TRUE(isContained("E\u0301", "Ren\u00E9"));
  EXPECT_TRUE(isContained("\u00C9", "Rene\u0301"));
}

TEST(ContactSearch, TellsAccentedLettersFromPlainOnes) {
  EXPECT_FALSE(isContained("rene", "Ren\u00E9"));
  EXPECT_FALSE(isContained("é", "Rene"));
}

TEST(ContactSearch, FindsTheEmptyTextInEverything) {
  EXPECT_TRUE(matches(kAnn, ""));
  EXPECT_TRUE(matches({}, ""));
  EXPECT_FALSE(matches({}, " "));
}

TEST(ContactSearch, TakesWildcardsAndBrokenTextForWhatTheyAre) {
  EXPECT_FALSE(isContained("A*", "Ann"));
  EXPECT_FALSE(isContained("A%", "Ann"));
  EXPECT_TRUE(isContained("\")(", "x\")(y"));
  EXPECT_FALSE(isContained("\xC3", "Ann"));
  EXPECT_TRUE(isContained("nn", "\xC3 Ann"));
}

}  // namespace
}  // namespace zantrio
