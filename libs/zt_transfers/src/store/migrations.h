#pragma once

#include <cstdint>
#include <vector>

#include "store/sqlite.h"

namespace zt_transfers {

// A step from one version of the schema to the next: the database is at `version` after it.
struct Migration {
  std::int64_t version;
  const char* sql;
};

// The steps of the queue's database, from an empty one on; the last one is this program's version.
const std::vector<Migration>& queueMigrations();

// Migrates the database to the last of these versions: all missing steps, or none when one of them
// fails (CSqliteError). False, and nothing is changed, when the database is newer or another
// program's.
bool migrate(CSqliteConnection& connection, const std::vector<Migration>& migrations);

}  // namespace zt_transfers
