#include "store/migrations.h"

#include <string>

namespace zt_transfers {
namespace {

// SQLite's application id in the file's header.
constexpr std::int64_t kApplicationId = 0x5A545131;  // "ZTQ1"

// A file's id is its group's id times 2^32 plus its index in the group's queue.
constexpr const char* kFirstSchema = R"(
  CREATE TABLE groups(
    id            INTEGER PRIMARY KEY AUTOINCREMENT,
    bucket_id     BLOB NOT NULL,
    bucket_type   BLOB NOT NULL,
    token         BLOB NOT NULL,
    token_expires INTEGER NOT NULL,  -- seconds since 1970; 0: never
    folder        BLOB NOT NULL,     -- downloads only
    paused        INTEGER NOT NULL,
    marked        INTEGER NOT NULL
  );
  CREATE TABLE files(
    id      INTEGER PRIMARY KEY,
    state   INTEGER NOT NULL,  -- 0: to be done, 1: completed, 2: failed
    size    INTEGER,           -- bytes; null: not known yet
    file_id BLOB NOT NULL
  );
  -- What is to be done for a file, until that is done.
  CREATE TABLE specs(
    id   INTEGER PRIMARY KEY,
    spec BLOB NOT NULL
  );
  -- Groups that are gone and whose files are yet to be deleted.
  CREATE TABLE removed_groups(
    id INTEGER PRIMARY KEY
  );
)";

constexpr const char* kResumes = R"(
  -- What transfers that were begun have left for their next attempt.
  CREATE TABLE resumes(
    id     INTEGER PRIMARY KEY,
    resume BLOB NOT NULL
  );
)";

constexpr const char* kFailures = R"(
  -- Why files failed. What it says of a file in another state has passed.
  CREATE TABLE failures(
    id     INTEGER PRIMARY KEY,
    code   BLOB NOT NULL,
    reason BLOB NOT NULL
  );
)";

constexpr const char* kOrphans = R"(
  -- What was left behind and is yet to be cleared away: partial files, sessions on servers.
  CREATE TABLE leftovers(
    id       INTEGER PRIMARY KEY,
    leftover BLOB NOT NULL
  );
)";

constexpr const char* kSalt = R"(
  -- One row. Names of partial files contain it, so that no other queue uses them.
  CREATE TABLE salt(
    value BLOB NOT NULL
  );
  INSERT INTO salt VALUES(randomblob(16));
)";

}  // namespace

const std::vector<Migration>& queueMigrations() {
  static const std::vector<Migration> migrations{
      {1, kFirstSchema}, {2, kResumes}, {3, kFailures}, {4, kOrphans}, {5, kSalt}};
  return migrations;
}

bool migrate(CSqliteConnection& connection, const std::vector<Migration>& migrations) {
  const std::int64_t owner = connection.number("PRAGMA application_id");
  const std::int64_t version = connection.number("PRAGMA user_version");
  const bool fresh = connection.number("SELECT count(*) FROM sqlite_schema") == 0;
  const bool ours = owner == kApplicationId || (fresh && owner == 0 && version == 0);
  if (!ours || version > migrations.back().version) {
    return false;
  }
  if (version == migrations.back().version) {
    return true;
  }
  CSqliteTransaction transaction(connection);
  for (const Migration& step : migrations) {
    if (step.version > version) {
      connection.execute(step.sql);
    }
  }
  const std::string stamp = "PRAGMA application_id = " + std::to_string(kApplicationId) +
                            "; PRAGMA user_version = " + std::to_string(migrations.back().version);
  connection.execute(stamp.c_str());
  transaction.commit();
  return true;
}

}  // namespace zt_transfers
