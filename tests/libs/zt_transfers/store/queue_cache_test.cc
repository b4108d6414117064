#include "store/queue_cache.h"

#include <gtest/gtest.h>

namespace zt_transfers::test {
namespace {

FileSpec specOf(const std::string& fileId) {
  FileSpec spec;
  spec.fileId = fileId;
  spec.location = std::string(300, 'p') + fileId;
  spec.url = "http://host/" + fileId;
  spec.headers = {{"A", ""}, {"B", std::string("nul\0inside", 10)}};
  spec.size = 1ULL << 63;
  spec.modified = 127;
  spec.expires = 128;
  spec.contentMd5 = "digest";
  return spec;
}

// A store with the groups 1 and 2, without a disk.
class QueueStore : public ::testing::Test {
 protected:
  QueueStore() {
    for (const std::int32_t id : {1, 2}) {
      StoredGroup group;
      group.identity.id = id;
      store.saveGroup(group);
    }
  }

  CQueueCache store;
};

TEST_F(QueueStore, GivesBackWhatItKeeps) {
  store.append(1, specOf("a"), {});
  store.append(1, specOf("b"), {});
  const FileSpec kept = store.spec({1, 1}).value();
  const FileSpec given = specOf("b");
  EXPECT_EQ(kept.fileId, given.fileId);
  EXPECT_EQ(kept.location, given.location);
  EXPECT_EQ(kept.url, given.url);
  EXPECT_EQ(kept.headers, given.headers);
  EXPECT_EQ(kept.size, given.size);
  EXPECT_EQ(kept.modified, given.modified);
  EXPECT_EQ(kept.expires, given.expires);
  EXPECT_EQ(kept.contentMd5, given.contentMd5);
  EXPECT_EQ(store.fileId({1, 0}), "a");
  EXPECT_EQ(store.location({1, 0}), specOf("a").location);
}

TEST_F(QueueStore, FindsFilesByTheirIdInTheirGroup) {
  store.append(1, specOf("a"), {});
  store.append(2, specOf("b"), {});
  EXPECT_EQ(store.find(1, "a"), 0U);
  EXPECT_FALSE(store.find(1, "b").has_value());
  EXPECT_FALSE(store.find(3, "a").has_value());
  FileSpec other = specOf("a");
  other.url = "http://other/";
  store.replace({1, 0}, other);
  EXPECT_EQ(store.find(1, "a"), 0U);
  EXPECT_EQ(store.spec({1, 0})->url, "http://other/");
  store.remove({1, 0});
  EXPECT_FALSE(store.find(1, "a").has_value());
  store.removeGroup(2);
  EXPECT_FALSE(store.find(2, "b").has_value());
}

TEST_F(QueueStore, FindsEveryFileAmongManyThatComeAndGo) {
  constexpr std::uint32_t kFiles = 5000;
  FileSpec spec;
  for (std::uint32_t number = 0; number < kFiles; ++number) {
    spec.fileId = "file-" + std::to_string(number);
    store.append(1, spec, {});
    if (number % 3 == 0) {
      store.remove({1, number / 2});
    }
  }
  std::uint32_t found = 0;
  for (std::uint32_t number = 0; number < kFiles; ++number) {
    const auto index = store.find(1, "file-" + std::to_string(number));
    if (index) {
      EXPECT_EQ(*index, number);
      ++found;
    }
  }
  // Every third step has removed a file of its own.
  EXPECT_EQ(found, kFiles - (kFiles + 2) / 3);
}

}  // namespace
}  // namespace zt_transfers::test
