#include "services/contacts/contact_cache.h"

#include <gtest/gtest.h>

#include <string>

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

TEST(ContactCache, FindsContactsOfAllBooksInTheirOrderAsTheyAreNow) {
  CContactCache cache;
  cache.put("work", "1", named("Zoe"));
  cache.put("work", "2", named("Ann"));
  cache.put("home", "1", named("Bob"));
  EXPECT_EQ(found(cache), "Bob;Zoe;Ann;");
  EXPECT_EQ(found(cache, "o"), "Bob;Zoe;");
  cache.put("work", "1", named("Maria"));
  EXPECT_EQ(found(cache), "Bob;Maria;Ann;");
  EXPECT_EQ(found(cache, "zoe"), "");
  cache.remove("work", "1");
  cache.remove("work", "never there");
  cache.remove("never there", "1");
  EXPECT_EQ(found(cache), "Bob;Ann;");
  cache.removeBook("work");
  EXPECT_EQ(found(cache), "Bob;");
  cache.put("work", "1", named("Zoe"));
  EXPECT_EQ(found(cache), "Bob;Zoe;");
}

}  // namespace
}  // namespace zantrio
