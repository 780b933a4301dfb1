#pragma once

#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>

// SQLite's; never seen outside .cpp files.
struct sqlite3;
struct sqlite3_stmt;

namespace kestrova::sandbox {

// What SQLite refused. All that stands here throws it.
class SqlError : public std::runtime_error {
 public:
  using runtime_error::runtime_error;
};

// Statements without parameters and rows.
void execute(sqlite3* database, const char* sql);

// One prepared statement: parameters bound from left to right, then rows.
class Statement {
 public:
  Statement(sqlite3* database, std::string_view sql);

  Statement& operator<<(std::string_view text);
  Statement& operator<<(std::int64_t number);

  // The next row; false after the last.
  bool next();
  void run();

  // Columns of the row, from 0.
  std::string text(int column) const;
  std::int64_t number(int column) const;

 private:
  struct Finalize {
    void operator()(sqlite3_stmt* statement) const;
  };

  void check(int result) const;

  sqlite3* database_;
  std::unique_ptr<sqlite3_stmt, Finalize> statement_;
  int bound_ = 0;
};

// Rolled back at its end unless committed.
class Transaction {
 public:
  explicit Transaction(sqlite3* database);
  Transaction(const Transaction&) = delete;
  Transaction& operator=(const Transaction&) = delete;
  Transaction(Transaction&&) = delete;
  Transaction& operator=(Transaction&&) = delete;
  ~Transaction();

  void commit();

 private:
  sqlite3* database_;
};

}  // namespace kestrova::sandbox
