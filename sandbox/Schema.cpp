#include "sandbox/Schema.h"

#include <string>

#include "sandbox/Sql.h"

namespace kestrova::sandbox {

namespace {

constexpr const char* firstVersion = R"sql(
  CREATE TABLE authentications (
    position INTEGER PRIMARY KEY AUTOINCREMENT, key TEXT UNIQUE, api_key TEXT, opened TEXT);
  CREATE TABLE requests (
    id INTEGER PRIMARY KEY AUTOINCREMENT, received TEXT, method TEXT, target TEXT, head BLOB,
    body BLOB, step TEXT, authentication TEXT, status INTEGER, fault TEXT);
  CREATE INDEX requests_of_authentication ON requests (authentication);
  -- kind: header, parameter or deviation; a deviation has no name
  CREATE TABLE details (request INTEGER, kind TEXT, position INTEGER, name TEXT, value TEXT,
    PRIMARY KEY (request, kind, position)) WITHOUT ROWID;
  CREATE TABLE uploads (request INTEGER PRIMARY KEY, field TEXT, file_name TEXT,
    content_type TEXT, size INTEGER, sha256 TEXT, path TEXT);
  PRAGMA user_version = 1;
)sql";

// A summary in each authentication, so that a page of them needs no other table.
constexpr const char* secondVersion = R"sql(
  CREATE INDEX requests_of_step ON requests (step, authentication);
  ALTER TABLE authentications ADD COLUMN last_received TEXT NOT NULL DEFAULT '';
  ALTER TABLE authentications ADD COLUMN last_step TEXT NOT NULL DEFAULT '';
  ALTER TABLE authentications ADD COLUMN email TEXT NOT NULL DEFAULT '';
  ALTER TABLE authentications ADD COLUMN country TEXT NOT NULL DEFAULT '';
  ALTER TABLE authentications ADD COLUMN document TEXT NOT NULL DEFAULT '';
  ALTER TABLE authentications ADD COLUMN assessment TEXT NOT NULL DEFAULT '';
  ALTER TABLE authentications ADD COLUMN requests INTEGER NOT NULL DEFAULT 0;
  ALTER TABLE authentications ADD COLUMN deviations INTEGER NOT NULL DEFAULT 0;
  ALTER TABLE authentications ADD COLUMN faults INTEGER NOT NULL DEFAULT 0;
  ALTER TABLE authentications ADD COLUMN finished INTEGER NOT NULL DEFAULT 0;
  UPDATE authentications SET
    requests = (SELECT count(*) FROM requests r WHERE r.authentication = key),
    faults = (SELECT count(*) FROM requests r WHERE r.authentication = key AND r.fault <> ''),
    deviations = (SELECT count(*) FROM requests r JOIN details d ON d.request = r.id
      WHERE r.authentication = key AND d.kind = 'deviation'),
    finished = EXISTS (SELECT 1 FROM requests r WHERE r.authentication = key AND r.status = 200
      AND r.step = 'check_authentication_document_video_success'),
    last_received = coalesce((SELECT r.received FROM requests r WHERE r.authentication = key
      ORDER BY r.id DESC LIMIT 1), ''),
    last_step = coalesce((SELECT substr(r.step, 1, 400) FROM requests r
      WHERE r.authentication = key ORDER BY r.id DESC LIMIT 1), '');
  PRAGMA user_version = 2;
)sql";

void fillSummaries(sqlite3* database) {
  for (const auto& [step, field, column] : summaryFields) {
    const auto name = std::string(column);
    Statement fill(database, "UPDATE authentications SET " + name +
                                 " = coalesce((SELECT CAST(substr(CAST(d.value AS BLOB), 1, 400)"
                                 " AS TEXT) FROM requests r JOIN details d ON d.request = r.id"
                                 " WHERE r.authentication = key AND r.step = ?"
                                 " AND d.kind = 'parameter' AND d.name = ?"
                                 " ORDER BY r.id DESC, d.position DESC LIMIT 1), '')");
    fill << step << field;
    fill.run();
  }
}

}  // namespace

void prepareSchema(sqlite3* database) {
  // A write-ahead log without a sync each time: what was committed survives the process, though not
  // a power failure.
  execute(database,
          "PRAGMA journal_mode = WAL; PRAGMA synchronous = NORMAL; PRAGMA secure_delete = ON;");
  std::int64_t found = 0;
  {
    Statement version(database, "PRAGMA user_version");
    version.next();
    found = version.number(0);
  }
  if (found < 0 || found > 2) throw SqlError("it was made by another version of the sandbox");
  if (found == 2) return;
  Transaction transaction(database);
  if (found == 0) execute(database, firstVersion);
  execute(database, secondVersion);
  fillSummaries(database);
  transaction.commit();
}

}  // namespace kestrova::sandbox
