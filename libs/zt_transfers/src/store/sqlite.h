#pragma once

#include <sqlite3.h>

#include <chrono>
#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>

namespace zt_transfers {

// SQLite refused something. `code` is its extended result code.
class CSqliteError : public std::runtime_error {
 public:
  CSqliteError(int code, const std::string& what) : std::runtime_error(what), code_(code) {}

  int code() const { return code_; }
  // The file is damaged or not a database.
  bool isDamage() const {
    const int primary = code_ & 0xFF;
    return primary == SQLITE_CORRUPT || primary == SQLITE_NOTADB;
  }

 private:
  const int code_;
};

// A prepared statement for repeated use. As in SQLite, columns count from 0 and parameters from 1.
// Texts are stored byte by byte.
//
// Thread: that of its connection.
class CSqliteStatement {
 public:
  CSqliteStatement(sqlite3* connection, const char* sql);

  CSqliteStatement& bind(int parameter, std::int64_t value);
  // The bytes must stay valid until the statement has run.
  CSqliteStatement& bindBytes(int parameter, std::string_view bytes);
  CSqliteStatement& bindNull(int parameter);

  // True when there is a row. After the last row the statement can be run again.
  bool step();
  // Runs it to its end.
  void run();
  // Skips the remaining rows.
  void reset() noexcept;

  std::int64_t number(int column) const;
  // Valid until the next step.
  std::string_view bytes(int column) const;
  bool isNull(int column) const;

 private:
  struct Finalizer {
    void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
  };

  [[noreturn]] void fail() const;

  std::unique_ptr<sqlite3_stmt, Finalizer> statement_;
};

// A connection to a database file.
//
// Thread: one at a time.
class CSqliteConnection {
 public:
  // Creates the file if it does not exist. Waits up to `patience` for each lock of another program.
  explicit CSqliteConnection(const std::string& path, std::chrono::milliseconds patience = {});

  sqlite3* get() const { return connection_.get(); }
  void execute(const char* sql);
  // The first column of the first row.
  std::int64_t number(const char* sql);
  std::string text(const char* sql);

 private:
  struct Closer {
    void operator()(sqlite3* connection) const { sqlite3_close_v2(connection); }
  };

  std::unique_ptr<sqlite3, Closer> connection_;
};

// Rolls back unless `commit` was called.
class CSqliteTransaction {
 public:
  explicit CSqliteTransaction(CSqliteConnection& connection) : connection_(connection) {
    connection_.execute("BEGIN IMMEDIATE");
  }
  ~CSqliteTransaction();
  CSqliteTransaction(const CSqliteTransaction&) = delete;
  CSqliteTransaction& operator=(const CSqliteTransaction&) = delete;

  void commit() { connection_.execute("COMMIT"); }

 private:
  CSqliteConnection& connection_;
};

}  // namespace zt_transfers
