#include "store/sqlite.h"

namespace zt_transfers {
namespace {

[[noreturn]] void failOf(sqlite3* connection, const std::string& doing) {
  const int code = sqlite3_extended_errcode(connection);
  throw CSqliteError(code,
                     doing + ": " + sqlite3_errmsg(connection) + " (" + std::to_string(code) + ")");
}

}  // namespace

CSqliteStatement::CSqliteStatement(sqlite3* connection, const char* sql) {
  sqlite3_stmt* statement = nullptr;
  if (sqlite3_prepare_v3(connection, sql, -1, SQLITE_PREPARE_PERSISTENT, &statement, nullptr) !=
      SQLITE_OK) {
    failOf(connection, std::string("preparing \"") + sql + '"');
  }
  statement_.reset(statement);
}

CSqliteStatement& CSqliteStatement::bind(int parameter, std::int64_t value) {
  if (sqlite3_bind_int64(statement_.get(), parameter, value) != SQLITE_OK) {
    fail();
  }
  return *this;
}

CSqliteStatement& CSqliteStatement::bindBytes(int parameter, std::string_view bytes) {
  // Without a pointer SQLite would take it for NULL.
  const char* data = bytes.data() == nullptr ? "" : bytes.data();
  if (sqlite3_bind_blob64(statement_.get(), parameter, data, bytes.size(), SQLITE_STATIC) !=
      SQLITE_OK) {
    fail();
  }
  return *this;
}

CSqliteStatement& CSqliteStatement::bindNull(int parameter) {
  if (sqlite3_bind_null(statement_.get(), parameter) != SQLITE_OK) {
    fail();
  }
  return *this;
}

bool CSqliteStatement::step() {
  switch (sqlite3_step(statement_.get())) {
    case SQLITE_ROW:
      return true;
    case SQLITE_DONE:
      sqlite3_reset(statement_.get());
      return false;
    default:
      fail();
  }
}

void CSqliteStatement::run() {
  while (step()) {
  }
}

void CSqliteStatement::reset() noexcept {
  sqlite3_reset(statement_.get());
}

std::int64_t CSqliteStatement::number(int column) const {
  return sqlite3_column_int64(statement_.get(), column);
}

std::string_view CSqliteStatement::bytes(int column) const {
  const auto* data = static_cast<const char*>(sqlite3_column_blob(statement_.get(), column));
  const auto size = static_cast<std::size_t>(sqlite3_column_bytes(statement_.get(), column));
  return {data, data == nullptr ? 0 : size};
}

bool CSqliteStatement::isNull(int column) const {
  return sqlite3_column_type(statement_.get(), column) == SQLITE_NULL;
}

void CSqliteStatement::fail() const {
  sqlite3* connection = sqlite3_db_handle(statement_.get());
  const int code = sqlite3_extended_errcode(connection);
  const std::string message = sqlite3_errmsg(connection);
  sqlite3_reset(statement_.get());
  throw CSqliteError(code, message + " (" + std::to_string(code) + ")");
}

CSqliteConnection::CSqliteConnection(const std::string& path, std::chrono::milliseconds patience) {
  sqlite3* connection = nullptr;
  const int code = sqlite3_open_v2(
      path.c_str(), &connection,
      SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOMUTEX | SQLITE_OPEN_EXRESCODE,
      nullptr);
  connection_.reset(connection);
  if (code != SQLITE_OK) {
    throw CSqliteError(code, std::string("opening it: ") + sqlite3_errstr(code) + " (" +
                                 std::to_string(code) + ")");
  }
  sqlite3_busy_timeout(connection, static_cast<int>(patience.count()));
}

void CSqliteConnection::execute(const char* sql) {
  if (sqlite3_exec(connection_.get(), sql, nullptr, nullptr, nullptr) != SQLITE_OK) {
    failOf(connection_.get(), "running \"" + std::string(sql).substr(0, 60) + '"');
  }
}

std::int64_t CSqliteConnection::number(const char* sql) {
  CSqliteStatement statement(connection_.get(), sql);
  return statement.step() ? statement.number(0) : 0;
}

std::string CSqliteConnection::text(const char* sql) {
  CSqliteStatement statement(connection_.get(), sql);
  return statement.step() ? std::string(statement.bytes(0)) : std::string();
}

CSqliteTransaction::~CSqliteTransaction() {
  // Some failures have rolled it back already.
  if (sqlite3_get_autocommit(connection_.get()) == 0) {
    sqlite3_exec(connection_.get(), "ROLLBACK", nullptr, nullptr, nullptr);
  }
}

}  // namespace zt_transfers
