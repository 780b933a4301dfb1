// What pages ask the store for, and removal.

#include <system_error>
#include <utility>

#include <sqlite3.h>

#include "sandbox/Sql.h"
#include "sandbox/Store.h"

namespace kestrova::sandbox {

namespace {

constexpr std::int64_t mostFields = 60;
// Of a value that a page shows; and of the request's head.
constexpr std::int64_t shownBytes = 1024;
constexpr std::int64_t shownHead = 4096;

constexpr std::string_view summaryColumns =
    "SELECT position, key, api_key, opened, last_received, last_step, email, country, document,"
    " assessment, requests, deviations, faults, finished FROM authentications";

Summary readSummary(const Statement& row) {
  Summary summary;
  summary.position = row.number(0);
  summary.key = row.text(1);
  summary.apiKey = row.text(2);
  summary.opened = row.text(3);
  summary.lastReceived = row.text(4);
  summary.lastStep = row.text(5);
  summary.email = row.text(6);
  summary.country = row.text(7);
  summary.document = row.text(8);
  summary.assessment = row.text(9);
  summary.requests = row.number(10);
  summary.deviations = row.number(11);
  summary.faults = row.number(12);
  summary.finished = row.number(13) != 0;
  return summary;
}

std::string conditions(const SummaryQuery& query) {
  std::string sql = " WHERE position < ?";
  if (!query.email.empty()) sql += " AND email LIKE ? ESCAPE '\\'";
  if (!query.step.empty()) {
    sql += " AND EXISTS (SELECT 1 FROM requests WHERE step = ? AND authentication = key)";
  }
  return sql;
}

void bind(Statement& statement, const SummaryQuery& query, std::int64_t before) {
  statement << before;
  if (!query.email.empty()) {
    std::string pattern = "%";
    for (const char c : query.email) {
      if (c == '%' || c == '_' || c == '\\') pattern += '\\';
      pattern += c;
    }
    statement << (pattern += '%');
  }
  if (!query.step.empty()) statement << query.step;
}

constexpr std::string_view entryColumns =
    "SELECT id, received, method, substr(CAST(target AS BLOB), 1, ?),"
    " substr(CAST(head AS BLOB), 1, ?), substr(CAST(step AS BLOB), 1, ?), authentication, status,"
    " fault FROM requests";

void bindEntryColumns(Statement& statement) {
  statement << shownBytes << shownHead << shownBytes;
}

}  // namespace

std::vector<Summary> Store::summaries(const SummaryQuery& query) const {
  const std::lock_guard lock(mutex_);
  std::vector<Summary> found;
  Statement rows(database_.get(), std::string(summaryColumns) + conditions(query) +
                                      " ORDER BY position DESC LIMIT ?");
  bind(rows, query, query.before);
  rows << static_cast<std::int64_t>(query.most);
  while (rows.next()) found.push_back(readSummary(rows));
  return found;
}

std::int64_t Store::countSummaries(const SummaryQuery& query) const {
  const std::lock_guard lock(mutex_);
  Statement count(database_.get(), "SELECT count(*) FROM authentications" + conditions(query));
  bind(count, query, SummaryQuery{}.before);
  count.next();
  return count.number(0);
}

std::optional<Summary> Store::summary(std::string_view key) const {
  const std::lock_guard lock(mutex_);
  Statement row(database_.get(), std::string(summaryColumns) + " WHERE key = ?");
  row << key;
  if (!row.next()) return std::nullopt;
  return readSummary(row);
}

std::int64_t Store::countStrays() const {
  const std::lock_guard lock(mutex_);
  Statement count(database_.get(), "SELECT count(*) FROM requests WHERE authentication = ''");
  count.next();
  return count.number(0);
}

Entry Store::readEntry(Statement& row) const {
  Entry entry;
  auto& request = entry.request;
  entry.id = row.number(0);
  request.received = row.text(1);
  request.method = row.text(2);
  request.target = row.text(3);
  request.head = row.text(4);
  request.step = row.text(5);
  request.authentication = row.text(6);
  request.status = static_cast<int>(row.number(7));
  request.fault = row.text(8);

  Statement details(database_.get(),
                    "SELECT kind, substr(CAST(name AS BLOB), 1, ?),"
                    " substr(CAST(value AS BLOB), 1, ?), length(CAST(value AS BLOB)) FROM details"
                    " WHERE request = ? AND kind IN ('deviation', 'parameter') AND position < ?"
                    " ORDER BY kind, position");
  details << shownBytes << shownBytes << entry.id << mostFields;
  while (details.next()) {
    if (details.text(0) == "deviation") {
      request.deviations.push_back(details.text(2));
    } else {
      entry.fields.push_back(
          {details.text(1), details.text(2), static_cast<std::uint64_t>(details.number(3))});
    }
  }
  Statement further(database_.get(),
                    "SELECT count(*) FROM details"
                    " WHERE request = ? AND kind = 'parameter' AND position >= ?");
  further << entry.id << mostFields;
  further.next();
  entry.furtherFields = further.number(0);

  Statement file(database_.get(),
                 "SELECT substr(CAST(field AS BLOB), 1, ?), substr(CAST(file_name AS BLOB), 1, ?),"
                 " substr(CAST(content_type AS BLOB), 1, ?), sha256, size, path FROM uploads"
                 " WHERE request = ?");
  file << shownBytes << shownBytes << shownBytes << entry.id;
  if (file.next()) {
    request.upload = Upload{file.text(0),
                            file.text(1),
                            file.text(2),
                            file.text(3),
                            static_cast<std::uint64_t>(file.number(4)),
                            directory_ / "files" / file.text(5)};
  }
  return entry;
}

std::vector<Entry> Store::entries(const EntryQuery& query) const {
  const std::lock_guard lock(mutex_);
  std::vector<Entry> found;
  const bool latestFirst = query.before > 0;
  Statement rows(database_.get(),
                 std::string(entryColumns) + " WHERE authentication = ? AND id " +
                     (latestFirst ? "< ? ORDER BY id DESC LIMIT ?" : "> ? ORDER BY id LIMIT ?"));
  bindEntryColumns(rows);
  rows << query.key << (latestFirst ? query.before : query.after)
       << static_cast<std::int64_t>(query.most);
  while (rows.next()) found.push_back(readEntry(rows));
  return found;
}

std::optional<Entry> Store::entry(std::int64_t id) const {
  const std::lock_guard lock(mutex_);
  Statement row(database_.get(), std::string(entryColumns) + " WHERE id = ?");
  bindEntryColumns(row);
  row << id;
  if (!row.next()) return std::nullopt;
  return readEntry(row);
}

std::optional<Failure> Store::remove(std::string_view key) {
  return removeWhere(" WHERE authentication = ?", key);
}

std::optional<Failure> Store::removeAll() {
  return removeWhere("", {});
}

std::optional<Failure> Store::removeWhere(std::string_view condition, std::string_view key) try {
  const std::lock_guard lock(mutex_);
  sqlite3* const database = database_.get();
  const bool all = condition.empty();
  const auto statement = [&](const std::string& sql) {
    Statement made(database, sql);
    if (!all) made << key;
    return made;
  };
  const auto ids = "(SELECT id FROM requests" + std::string(condition) + ')';
  std::vector<std::filesystem::path> files;
  {
    Transaction transaction(database);
    auto paths = statement("SELECT path FROM uploads WHERE request IN " + ids);
    while (paths.next()) files.push_back(directory_ / "files" / paths.text(0));
    statement("DELETE FROM uploads WHERE request IN " + ids).run();
    statement("DELETE FROM details WHERE request IN " + ids).run();
    statement("DELETE FROM requests" + std::string(condition)).run();
    const auto removed = sqlite3_changes64(database);
    statement(std::string("DELETE FROM authentications") + (all ? "" : " WHERE key = ?")).run();
    transaction.commit();
    count_ -= static_cast<std::size_t>(removed);
  }
  ++changes_;
  // Files whose removal fails here are removed with the next start, as no request names them.
  std::error_code ignored;
  for (const auto& file : files) std::filesystem::remove(file, ignored);
  // Nor does the log keep what was removed.
  execute(database, "PRAGMA wal_checkpoint(TRUNCATE)");
  return std::nullopt;
} catch (const SqlError& error) {
  return Failure{std::string("the record cannot be removed: ") + error.what()};
}

std::string Store::revision() const {
  return start_ + '-' + std::to_string(changes_.load());
}

}  // namespace kestrova::sandbox
