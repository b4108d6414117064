#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>
#include <functional>

#include "stored_queue_fixture.h"

namespace zt_transfers::test {
namespace {

namespace fs = std::filesystem;
using ::testing::HasSubstr;

struct Damage {
  const char* name;
  std::function<void(const std::string& path)> inflict;
};

void overwrite(const std::string& path, std::uintmax_t from, std::uintmax_t count, char byte) {
  std::fstream file(path, std::ios::in | std::ios::out | std::ios::binary);
  file.seekp(static_cast<std::streamoff>(from));
  file << std::string(count, byte);
}

void execute(const std::string& path, const char* sql) {
  CSqliteConnection(path).execute(sql);
}

const Damage kDamages[] = {
    {"Zeroed", [](const auto& path) { overwrite(path, 0, fs::file_size(path), '\0'); }},
    {"NoDatabase", [](const auto& path) { std::ofstream(path) << std::string(5000, 'x'); }},
    {"Short", [](const auto& path) { std::ofstream(path) << "SQLite"; }},
    {"Truncated", [](const auto& path) { fs::resize_file(path, fs::file_size(path) / 2); }},
    {"TruncatedWithinAPage", [](const auto& path) { fs::resize_file(path, 5000); }},
    {"Malformed",
     [](const auto& path) { overwrite(path, 4096, fs::file_size(path) - 4096, '\x5A'); }},
    {"MalformedAtItsEnd",
     [](const auto& path) { overwrite(path, fs::file_size(path) - 3000, 3000, '\x7F'); }},
    {"Newer", [](const auto& path) { execute(path, "PRAGMA user_version = 999"); }},
    {"OfAnotherProgram", [](const auto& path) { execute(path, "PRAGMA application_id = 7"); }},
    {"WithoutATable", [](const auto& path) { execute(path, "DROP TABLE specs"); }},
    {"WithAnotherTable",
     [](const auto& path) {
       execute(path, "DROP TABLE files; CREATE TABLE files(id INTEGER PRIMARY KEY, other TEXT)");
     }},
};

void PrintTo(const Damage& damage, std::ostream* out) {
  *out << damage.name;
}

class CDamageTest : public CStoredQueueTest {
 protected:
  std::vector<fs::path> setAside() const {
    std::vector<fs::path> files;
    for (const auto& entry : fs::directory_iterator(sandbox.folder())) {
      if (entry.path().filename().string().find(".db.unusable-") != std::string::npos) {
        files.push_back(entry.path());
      }
    }
    return files;
  }
  void fill(int files = 2000) {
    auto queue = opened();
    queue->store().saveGroup(group(1));
    for (int number = 0; number < files; ++number) {
      queue->store().append(1, spec("file" + std::to_string(number)), {});
    }
    ASSERT_TRUE(queue->close());
  }
};

class DamagedDatabase : public CDamageTest, public ::testing::WithParamInterface<Damage> {};

TEST_P(DamagedDatabase, IsSetAsideAsItIsAndReplaced) {
  fill();
  GetParam().inflict(path());
  const std::string before = contentOf(path());
  {
    auto queue = opened();
    EXPECT_TRUE(found.groups.empty());
    EXPECT_THAT(log.text(), HasSubstr("was renamed to"));
    const auto aside = setAside();
    ASSERT_EQ(aside.size(), 1U);
    EXPECT_TRUE(contentOf(aside[0]) == before);
    queue->store().saveGroup(group(4));
    queue->store().append(4, spec("new"), {});
    EXPECT_TRUE(queue->close());
  }
  opened();
  ASSERT_EQ(found.groups.size(), 1U);
  EXPECT_EQ(found.groups[0].files.size(), 1U);
  EXPECT_EQ(setAside().size(), 1U);
}

INSTANTIATE_TEST_SUITE_P(Kinds, DamagedDatabase, ::testing::ValuesIn(kDamages),
                         [](const auto& damage) { return std::string(damage.param.name); });

class UnreadableDescriptions : public CDamageTest {};

TEST_F(UnreadableDescriptions, SetTheDatabaseAsideWhenItIsClosed) {
  constexpr std::uint32_t kFiles = 60'000;  // more than SQLite keeps in memory
  fill(kFiles);
  auto queue = opened();
  ASSERT_EQ(found.groups.size(), 1U);
  const auto size = fs::file_size(path());
  overwrite(path(), size / 4, size / 2, '\x5A');
  bool allRead = true;
  for (std::uint32_t index = 0; index < kFiles && allRead; index += 100) {
    allRead = fetched(queue->store(), {1, index}).has_value();
  }
  EXPECT_FALSE(allRead);
  EXPECT_THAT(log.text(), HasSubstr("cannot be read from the queue"));
  queue->close();
  queue.reset();
  EXPECT_EQ(setAside().size(), 1U);
  opened();
  EXPECT_TRUE(found.groups.empty());
}

// Where checking all of it would take too long, damage shows when a page is read.
TEST_F(UnreadableDescriptions, AreToldAndCanBeReplaced) {
  fill();
  auto queue = made();
  {
    CQueueDatabase database(path());
    database.connection().execute("UPDATE specs SET spec = x'FFFFFF' WHERE id & 4294967295 = 1999");
    database.connection().execute("DELETE FROM specs WHERE id & 4294967295 = 1998");
  }
  queue->open(path());
  IQueueStore& store = queue->store();
  EXPECT_EQ(fetched(store, {1, 1997})->url, "http://host/file1997");
  EXPECT_FALSE(fetched(store, {1, 1998}).has_value());
  EXPECT_FALSE(fetched(store, {1, 1999}).has_value());
  store.replace({1, 1998}, spec("file1998"));
  EXPECT_EQ(fetched(store, {1, 1998})->url, "http://host/file1998");
}

}  // namespace
}  // namespace zt_transfers::test
