#include "sandbox/Sql.h"

#include <sqlite3.h>

namespace kestrova::sandbox {

void execute(sqlite3* database, const char* sql) {
  if (sqlite3_exec(database, sql, nullptr, nullptr, nullptr) != SQLITE_OK) {
    throw SqlError(sqlite3_errmsg(database));
  }
}

Statement::Statement(sqlite3* database, std::string_view sql) : database_(database) {
  sqlite3_stmt* made = nullptr;
  check(sqlite3_prepare_v2(database, sql.data(), static_cast<int>(sql.size()), &made, nullptr));
  statement_.reset(made);
}

void Statement::Finalize::operator()(sqlite3_stmt* statement) const {
  sqlite3_finalize(statement);
}

void Statement::check(int result) const {
  if (result != SQLITE_OK) throw SqlError(sqlite3_errmsg(database_));
}

Statement& Statement::operator<<(std::string_view text) {
  // An empty view may have no address, which SQLite would take for NULL.
  check(sqlite3_bind_text64(statement_.get(), ++bound_, text.empty() ? "" : text.data(),
                            text.size(), SQLITE_TRANSIENT, SQLITE_UTF8));
  return *this;
}

Statement& Statement::operator<<(std::int64_t number) {
  check(sqlite3_bind_int64(statement_.get(), ++bound_, number));
  return *this;
}

bool Statement::next() {
  const int result = sqlite3_step(statement_.get());
  if (result != SQLITE_ROW && result != SQLITE_DONE) check(result);
  return result == SQLITE_ROW;
}

void Statement::run() {
  while (next()) {
  }
}

std::string Statement::text(int column) const {
  const auto* const bytes = static_cast<const char*>(sqlite3_column_blob(statement_.get(), column));
  const auto size = sqlite3_column_bytes(statement_.get(), column);
  return bytes == nullptr ? std::string() : std::string(bytes, static_cast<std::size_t>(size));
}

std::int64_t Statement::number(int column) const {
  return sqlite3_column_int64(statement_.get(), column);
}

Transaction::Transaction(sqlite3* database) : database_(database) {
  execute(database, "BEGIN");
}

Transaction::~Transaction() {
  if (sqlite3_get_autocommit(database_) == 0) {
    sqlite3_exec(database_, "ROLLBACK", nullptr, nullptr, nullptr);
  }
}

void Transaction::commit() {
  execute(database_, "COMMIT");
}

}  // namespace kestrova::sandbox
