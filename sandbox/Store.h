#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "sandbox/Descriptor.h"
#include "sandbox/Outcome.h"
#include "sandbox/Records.h"
#include "sandbox/Sandbox.h"
#include "sandbox/StepContract.h"

// SQLite's; never seen outside .cpp files.
struct sqlite3;

namespace kestrova::sandbox {

class Statement;

// An authentication that was opened.
struct Authentication {
  std::string key;
  std::string apiKey;
  std::string opened;  // as Request::received
};

// The record of a sandbox in its directory: a database, and the uploaded files under files/. What
// record() returned from survives the process. One store a directory at a time, held by a lock. Any
// thread may call. Reading throws std::runtime_error where the database cannot be read.
class Store {
 public:
  // Makes the directory where it is missing, private to the user.
  static Outcome<std::unique_ptr<Store>> open(const std::filesystem::path& directory);

  // What came in for the key; nothing where no such authentication was opened.
  std::optional<History> history(std::string_view key) const;

  // Writes an uploaded file; fills in size, sha256 and path. It belongs to the record only with the
  // request that names it. What is wrong where the disk refuses.
  std::optional<Failure> saveFile(std::string_view bytes, Upload& upload) const;

  // Appends a request and, where `opened` is given, the authentication that it opened. All or
  // nothing.
  std::optional<Failure> record(const Request& request,
                                const std::optional<Authentication>& opened);

  std::vector<Authentication> authentications() const;  // in order of opening
  std::vector<Request> requests() const;                // in order of arrival
  bool waitForRequests(std::size_t count, std::chrono::milliseconds deadline) const;

  std::vector<Summary> summaries(const SummaryQuery& query) const;
  // How many fit, whatever `before` and `most` are.
  std::int64_t countSummaries(const SummaryQuery& query) const;
  std::optional<Summary> summary(std::string_view key) const;
  std::int64_t countStrays() const;  // requests of no authentication
  std::vector<Entry> entries(const EntryQuery& query) const;
  std::optional<Entry> entry(std::int64_t id) const;

  // Removes an authentication with its requests and files, where the key is empty the requests of
  // none. What is removed is overwritten.
  std::optional<Failure> remove(std::string_view key);
  std::optional<Failure> removeAll();

  // Changes with every change of the record, and with every start.
  std::string revision() const;

 private:
  struct Close {
    void operator()(sqlite3* database) const;
  };
  using Database = std::unique_ptr<sqlite3, Close>;

  Store(std::filesystem::path directory, Descriptor lock, Database database, std::size_t count);

  void removeUnrecordedFiles() const;
  Entry readEntry(Statement& row) const;
  std::optional<Failure> removeWhere(std::string_view condition, std::string_view key);

  std::filesystem::path directory_;
  Descriptor lock_;
  mutable std::mutex mutex_;  // of what follows
  Database database_;
  std::size_t count_;
  mutable std::condition_variable grown_;
  std::string start_;
  std::atomic<std::uint64_t> changes_{0};
};

}  // namespace kestrova::sandbox
