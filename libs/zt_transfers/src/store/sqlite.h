#pragma once

#include <sqlite3.h>

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
  // The file is not, or no longer, a database as it should be.
  bool isDamage() const {
    const int primary = code_ & 0xFF;
    return primary == SQLITE_CORRUPT || primary == SQLITE_NOTADB;
  }

 private:
  const int code_;
};

// A prepared statement, to be used again and again. Columns and parameters count as in SQLite:
// columns from 0, parameters from 1. Texts are stored as they are, byte by byte.
//
// Thread: that of its connection.
class CSqliteStatement {
 public:
  CSqliteStatement(sqlite3* connection, const char* sql);

  CSqliteStatement& bind(int parameter, std::int64_t value);
  // The bytes must stay where they are until the statement has run.
  CSqliteStatement& bindBytes(int parameter, std::string_view bytes);
  CSqliteStatement& bindNull(int parameter);

  // True when there is a row. After the last one the statement is ready to be run again.
  bool step();
  // Runs it to its end.
  void run();
  // Leaves the rows that are left.
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
  // Makes the file when it is not there.
  explicit CSqliteConnection(const std::string& path);

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

// What is written while it lives becomes durable with `commit`, or not at all.
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
