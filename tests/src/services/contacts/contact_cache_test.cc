#include "services/contacts/contact_cache.h"

#include <gtest/gtest.h>

#include <string>
#include <thread>

namespace zantrio {
namespace {

Contact named(const std::string& firstName) {
  return {firstName, "", std::nullopt};
}

std::string found(const CContactCache& cache, const std::string& query = "") {
  ContactEntries entries;
  cache.search(query, entries);
  std::string names;
  for (const ContactEntry& entry : entries) {
    names += displayName(entry) + ";";
  }
  return names;
}

TEST(ContactCache, FindsContactsOfAllBooksInTheirOrder) {
  CContactCache cache;
  cache.put("work", "1", named("Zoe"));
  cache.put("work", "2", named("Ann"));
  cache.put("home", "1", named("Bob"));
  EXPECT_EQ(found(cache), "Bob;Zoe;Ann;");
  EXPECT_EQ(found(cache, "o"), "Bob;Zoe;");
  EXPECT_EQ(found(cache, "x"), "");
}

TEST(ContactCache, FindsWhatAContactHasBecomeAtItsOldPlace) {
  CContactCache cache;
  cache.put("home", "1", named("Ann"));
  cache.put("home", "2", named("Bob"));
  cache.put("home", "1", named("Anna"));
  EXPECT_EQ(found(cache), "Anna;Bob;");
  cache.put("home", "1", named("Maria"));
  EXPECT_EQ(found(cache, "ann"), "");
}

TEST(ContactCache, ForgetsWhatWasRemoved) {
  CContactCache cache;
  cache.put("home", "1", named("Ann"));
  cache.put("home", "2", named("Bob"));
  cache.put("work", "1", named("Carl"));
  cache.remove("home", "1");
  cache.remove("home", "never there");
  cache.remove("never there", "1");
  EXPECT_EQ(found(cache), "Bob;Carl;");
  cache.removeBook("home");
  EXPECT_EQ(found(cache), "Carl;");
  cache.put("home", "1", named("Ann"));
  EXPECT_EQ(found(cache), "Ann;Carl;");
}

TEST(ContactCache, IsSearchedWhileItIsFilled) {
  constexpr int kCount = 2000;
  CContactCache cache;
  std::thread filling([&] {
    for (int number = 0; number < kCount; ++number) {
      cache.put("home", std::to_string(number), named("Ann"));
    }
  });
  std::size_t before = 0;
  while (before < kCount) {
    ContactEntries entries;
    cache.search("ann", entries);
    ASSERT_GE(entries.size(), before);
    before = entries.size();
  }
  filling.join();
}

}  // namespace
}  // namespace zantrio
