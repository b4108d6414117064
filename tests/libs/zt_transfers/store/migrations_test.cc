#include "store/migrations.h"

#include <gtest/gtest.h>

#include "sandbox.h"

namespace zt_transfers::test {
namespace {

const std::vector<Migration> kTwoSteps{{1, "CREATE TABLE a(x); INSERT INTO a VALUES(7);"},
                                       {2, "CREATE TABLE b(x); INSERT INTO b SELECT x FROM a;"}};

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

}  // namespace
}  // namespace zt_transfers::test
