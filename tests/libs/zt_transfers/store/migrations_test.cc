#include "store/migrations.h"

#include <gtest/gtest.h>

#include "sandbox.h"
#include "stored_queue_fixture.h"

namespace zt_transfers::test {
namespace {

const std::vector<Migration> kTwoSteps{{1, "CREATE TABLE a(x); INSERT INTO a VALUES(7);"},
                                       {2, "CREATE TABLE b(x); INSERT INTO b SELECT x FROM a;"}};

using MigratedQueue = CStoredQueueTest;

class Migrations : public ::testing::Test {
 protected:
  CSqliteConnection opened() const { return CSqliteConnection((sandbox.folder() / "db").string()); }
  static std::int64_t version(CSqliteConnection& connection) {
    return connection.number("PRAGMA user_version");
  }

  CSandbox sandbox;
};

TEST_F(Migrations, RunOnlyTheStepsThatAreMissing) {
  auto connection = opened();
  EXPECT_TRUE(migrate(connection, {kTwoSteps[0]}));
  EXPECT_EQ(version(connection), 1);
  connection.execute("UPDATE a SET x = 8");
  EXPECT_TRUE(migrate(connection, kTwoSteps));
  EXPECT_EQ(version(connection), 2);
  EXPECT_EQ(connection.number("SELECT x FROM b"), 8);
  EXPECT_TRUE(migrate(connection, kTwoSteps));
  EXPECT_EQ(connection.number("SELECT count(*) FROM b"), 1);
}

TEST_F(Migrations, LeaveEverythingAsItWasWhenAStepFails) {
  auto connection = opened();
  ASSERT_TRUE(migrate(connection, {kTwoSteps[0]}));
  auto broken = kTwoSteps;
  broken.push_back({3, "DROP TABLE a; INSERT INTO missing VALUES(1);"});
  EXPECT_THROW(migrate(connection, broken), CSqliteError);
  EXPECT_EQ(version(connection), 1);
  EXPECT_EQ(connection.number("SELECT x FROM a"), 7);
  EXPECT_EQ(connection.number("SELECT count(*) FROM sqlite_schema WHERE name = 'b'"), 0);
  EXPECT_TRUE(migrate(connection, kTwoSteps));
}

TEST_F(Migrations, TouchNoNewerDatabaseAndNoneOfAnotherProgram) {
  auto connection = opened();
  ASSERT_TRUE(migrate(connection, kTwoSteps));
  EXPECT_FALSE(migrate(connection, {kTwoSteps[0]}));
  EXPECT_EQ(version(connection), 2);
  connection.execute("PRAGMA application_id = 5");
  EXPECT_FALSE(migrate(connection, kTwoSteps));
}

// Every version that was ever given out must lead to today's.
TEST_F(Migrations, OfTheQueueCountUpFromOne) {
  std::int64_t expected = 1;
  for (const Migration& step : queueMigrations()) {
    EXPECT_EQ(step.version, expected++);
    auto connection = opened();
    EXPECT_TRUE(migrate(connection,
                        {queueMigrations().begin(), queueMigrations().begin() + (step.version)}));
    EXPECT_EQ(version(connection), step.version);
  }
}

TEST_F(MigratedQueue, KnowsThePartialFilesOfVersion4AndGetsASaltOnce) {
  {
    CSqliteConnection connection(path());
    ASSERT_TRUE(migrate(connection, {queueMigrations().begin(), queueMigrations().begin() + 4}));
    connection.execute(
        "INSERT INTO groups VALUES(1, x'', x'', x'', 0, x'', 0, 0);"
        "INSERT INTO files VALUES(1 << 32, 0, 100, x'61');"
        // The path, an inode number, the validator, the size, and one range.
        "INSERT INTO resumes VALUES(1 << 32, x'052e70617274' || x'ac02' || x'03226522'"
        " || x'64' || x'010032');");
  }
  const std::string salt = opened()->store().salt();
  EXPECT_EQ(salt.size(), 16U);
  ASSERT_EQ(found.groups.at(0).resumes.size(), 1U);
  const DownloadResume expected{.partialPath = ".part",
                                .validator = "\"e\"",
                                .size = 100,
                                .written = {{0, 50}},
                                .durable = {{0, 50}},
                                .finalName = ""};
  EXPECT_EQ(found.groups[0].resumes[0].second, TransferResume(expected));
  EXPECT_EQ(opened()->store().salt(), salt);
}

}  // namespace
}  // namespace zt_transfers::test
