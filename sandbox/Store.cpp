#include "sandbox/Store.h"

#include <cerrno>
#include <set>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <openssl/evp.h>
#include <sqlite3.h>
#include <sys/file.h>

#include "sandbox/Files.h"
#include "sandbox/Schema.h"
#include "sandbox/Sql.h"
#include "sandbox/Text.h"

namespace kestrova::sandbox {

namespace {

namespace fs = std::filesystem;

std::string sha256(std::string_view bytes) {
  std::string digest(32, '\0');
  EVP_Digest(bytes.data(), bytes.size(), reinterpret_cast<unsigned char*>(digest.data()), nullptr,
             EVP_sha256(), nullptr);
  return lowerHex(digest);
}

std::string_view extensionFor(std::string_view contentType) {
  if (contentType == "image/png") return ".png";
  if (contentType == "video/quicktime") return ".mov";
  return ".bin";
}

void addDetail(sqlite3* database, std::int64_t id, std::string_view kind, std::size_t position,
               std::string_view name, std::string_view value) {
  Statement(database, "INSERT INTO details VALUES (?, ?, ?, ?, ?)")
      .
      operator<<(id)
      .
      operator<<(kind)
      .
      operator<<(static_cast<std::int64_t>(position))
      .
      operator<<(name)
      .
      operator<<(value)
      .run();
}

constexpr std::size_t summaryBytes = 400;

// What the request tells about its authentication.
void addToSummary(sqlite3* database, const Request& request) {
  if (request.authentication.empty()) return;
  const bool finished =
      request.step == "check_authentication_document_video_success" && request.status == 200;
  Statement update(database,
                   "UPDATE authentications SET requests = requests + 1,"
                   " deviations = deviations + ?, faults = faults + ?, finished = max(finished, ?),"
                   " last_received = ?, last_step = ? WHERE key = ?");
  update << static_cast<std::int64_t>(request.deviations.size())
         << std::int64_t{request.fault.empty() ? 0 : 1} << std::int64_t{finished ? 1 : 0}
         << request.received << std::string_view(request.step).substr(0, summaryBytes)
         << request.authentication;
  update.run();
  for (const auto& [step, field, column] : summaryFields) {
    if (request.step != step) continue;
    for (const auto& [name, value] : request.parameters) {
      if (name != field) continue;
      Statement set(database,
                    "UPDATE authentications SET " + std::string(column) + " = ? WHERE key = ?");
      set << std::string_view(value).substr(0, summaryBytes) << request.authentication;
      set.run();
    }
  }
}

}  // namespace

void Store::Close::operator()(sqlite3* database) const {
  sqlite3_close(database);
}

Outcome<std::unique_ptr<Store>> Store::open(const fs::path& directory) {
  const auto failure = [&](const std::string& why) {
    return Failure{"the store " + directory.string() + " cannot be opened: " + why};
  };
  std::error_code error;
  if (!fs::exists(directory, error) && !error && fs::create_directories(directory, error)) {
    fs::permissions(directory, fs::perms::owner_all, error);
  }
  if (error) return failure(error.message());
  fs::create_directory(directory / "files", error);
  if (error) return failure(error.message());

  Descriptor lock(::open((directory / "lock").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600));
  if (!lock) return failure(std::generic_category().message(errno));
  if (flock(lock.number(), LOCK_EX | LOCK_NB) != 0) {
    if (errno != EWOULDBLOCK) return failure(std::generic_category().message(errno));
    return Failure{"the store " + directory.string() + " is in use by another sandbox"};
  }

  sqlite3* opened = nullptr;
  const auto path = directory / "record.db";
  // SQLite would make it readable for all, and its log files take over its permissions.
  const Descriptor privateFile(::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600));
  const int result =
      sqlite3_open_v2(path.c_str(), &opened,
                      SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOMUTEX, nullptr);
  Database database(opened);
  if (result != SQLITE_OK) return failure(sqlite3_errstr(result));
  try {
    prepareSchema(opened);
    Statement counting(opened, "SELECT count(*) FROM requests");
    counting.next();
    const auto count = static_cast<std::size_t>(counting.number(0));
    std::unique_ptr<Store> store(new Store(directory, std::move(lock), std::move(database), count));
    store->removeUnrecordedFiles();
    return store;
  } catch (const SqlError& sqlError) {
    return failure(std::string("record.db: ") + sqlError.what());
  }
}

Store::Store(fs::path directory, Descriptor lock, Database database, std::size_t count)
    : directory_(std::move(directory)),
      lock_(std::move(lock)),
      database_(std::move(database)),
      count_(count),
      start_(randomHex(8)) {}

// A run that was killed may have left files behind whose requests were never answered.
void Store::removeUnrecordedFiles() const {
  std::set<std::string> recorded;
  Statement rows(database_.get(), "SELECT path FROM uploads");
  while (rows.next()) recorded.insert(rows.text(0));
  std::error_code error;
  for (const auto& entry : fs::directory_iterator(directory_ / "files", error)) {
    if (!recorded.contains(entry.path().filename())) fs::remove(entry.path(), error);
  }
}

std::optional<History> Store::history(std::string_view key) const {
  const std::lock_guard lock(mutex_);
  History history;
  Statement opened(database_.get(), "SELECT api_key FROM authentications WHERE key = ?");
  opened << key;
  if (!opened.next()) return std::nullopt;
  history.apiKey = opened.text(0);
  Statement steps(database_.get(), "SELECT DISTINCT step FROM requests WHERE authentication = ?");
  steps << key;
  while (steps.next()) history.steps.push_back(steps.text(0));
  Statement choice(database_.get(),
                   "SELECT value FROM details JOIN requests ON request = id"
                   " WHERE authentication = ? AND step = 'choose_authentication_document'"
                   " AND kind = 'parameter' AND name = 'authentication_method'"
                   " ORDER BY id DESC LIMIT 1");
  choice << key;
  if (choice.next()) history.documentType = choice.text(0);
  return history;
}

std::optional<Failure> Store::saveFile(std::string_view bytes, Upload& upload) const {
  upload.size = bytes.size();
  upload.sha256 = sha256(bytes);
  upload.path = directory_ / "files" / (randomHex(12).append(extensionFor(upload.contentType)));
  if (writeFile(upload.path, bytes, true)) return std::nullopt;
  return Failure{"the file cannot be stored: " + std::generic_category().message(errno)};
}

std::optional<Failure> Store::record(const Request& request,
                                     const std::optional<Authentication>& opened) try {
  const std::lock_guard lock(mutex_);
  sqlite3* const database = database_.get();
  Transaction transaction(database);
  if (opened) {
    Statement insert(database,
                     "INSERT INTO authentications (key, api_key, opened) VALUES (?, ?, ?)");
    insert << opened->key << opened->apiKey << opened->opened;
    insert.run();
  }
  Statement insert(database, "INSERT INTO requests VALUES (NULL, ?, ?, ?, ?, ?, ?, ?, ?, ?)");
  insert << request.received << request.method << request.target << request.head << request.body
         << request.step << request.authentication << std::int64_t{request.status} << request.fault;
  insert.run();
  const std::int64_t id = sqlite3_last_insert_rowid(database);
  const auto addPairs = [&](std::string_view kind, const auto& pairs) {
    for (std::size_t i = 0; i < pairs.size(); ++i) {
      addDetail(database, id, kind, i, pairs[i].first, pairs[i].second);
    }
  };
  addPairs("header", request.headers);
  addPairs("parameter", request.parameters);
  for (std::size_t i = 0; i < request.deviations.size(); ++i) {
    addDetail(database, id, "deviation", i, "", request.deviations[i]);
  }
  if (request.upload) {
    const auto& upload = *request.upload;
    Statement file(database, "INSERT INTO uploads VALUES (?, ?, ?, ?, ?, ?, ?)");
    file << id << upload.field << upload.fileName << upload.contentType
         << static_cast<std::int64_t>(upload.size) << upload.sha256
         << upload.path.filename().string();
    file.run();
  }
  addToSummary(database, request);
  transaction.commit();
  ++count_;
  ++changes_;
  grown_.notify_all();
  return std::nullopt;
} catch (const SqlError& error) {
  return Failure{std::string("the request cannot be stored: ") + error.what()};
}

std::vector<Authentication> Store::authentications() const {
  const std::lock_guard lock(mutex_);
  std::vector<Authentication> all;
  Statement rows(database_.get(),
                 "SELECT key, api_key, opened FROM authentications ORDER BY position");
  while (rows.next()) all.push_back({rows.text(0), rows.text(1), rows.text(2)});
  return all;
}

std::vector<Request> Store::requests() const {
  const std::lock_guard lock(mutex_);
  std::vector<Request> all;
  std::vector<std::int64_t> ids;
  Statement rows(database_.get(),
                 "SELECT id, received, method, target, head, body, step, authentication, status,"
                 " fault FROM requests ORDER BY id");
  while (rows.next()) {
    Request request;
    request.received = rows.text(1);
    request.method = rows.text(2);
    request.target = rows.text(3);
    request.head = rows.text(4);
    request.body = rows.text(5);
    request.step = rows.text(6);
    request.authentication = rows.text(7);
    request.status = static_cast<int>(rows.number(8));
    request.fault = rows.text(9);
    all.push_back(std::move(request));
    ids.push_back(rows.number(0));
  }
  for (std::size_t i = 0; i < all.size(); ++i) {
    Request& request = all[i];
    Statement details(database_.get(),
                      "SELECT kind, name, value FROM details WHERE request = ?"
                      " ORDER BY kind, position");
    details << ids[i];
    while (details.next()) {
      const auto kind = details.text(0);
      if (kind == "header") request.headers.emplace_back(details.text(1), details.text(2));
      if (kind == "parameter") request.parameters.emplace_back(details.text(1), details.text(2));
      if (kind == "deviation") request.deviations.push_back(details.text(2));
    }
    Statement files(database_.get(),
                    "SELECT field, file_name, content_type, size, sha256, path FROM uploads"
                    " WHERE request = ?");
    files << ids[i];
    if (files.next()) {
      request.upload = Upload{files.text(0),
                              files.text(1),
                              files.text(2),
                              files.text(4),
                              static_cast<std::uint64_t>(files.number(3)),
                              directory_ / "files" / files.text(5)};
    }
  }
  return all;
}

bool Store::waitForRequests(std::size_t count, std::chrono::milliseconds deadline) const {
  std::unique_lock lock(mutex_);
  return grown_.wait_for(lock, deadline, [&] { return count_ >= count; });
}

}  // namespace kestrova::sandbox
