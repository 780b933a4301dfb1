#include <cerrno>
#include <cstdlib>
#include <system_error>

#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include "doctor/Checks.h"

namespace kestrova::doctor {

namespace {

namespace fs = std::filesystem;

constexpr auto kElsewhere =
    "Make the folder writable for the user, or set XDG_DATA_HOME to one that is.";

std::string reason(int code) {
  return std::generic_category().message(code);
}

Finding finding(Severity severity, std::string found, std::string advice) {
  return {"documents", severity, std::move(found), std::move(advice)};
}

fs::path nearestExisting(fs::path folder) {
  struct stat status {};
  while (folder.has_relative_path() && ::lstat(folder.c_str(), &status) != 0) {
    folder = folder.parent_path();
  }
  return folder;
}

// The errno of an attempt to make something there, which is taken back; 0 where it went well. The
// mode alone does not say it: the file system may be read-only.
int whyNotWritable(const fs::path& folder) {
  std::string attempt = folder / ".kestrova-doctor.XXXXXX";
  if (!::mkdtemp(attempt.data())) return errno;
  ::rmdir(attempt.c_str());
  return 0;
}

// What is wrong with the application's own folder, which is there already.
Findings faultsOf(const fs::path& folder, const struct stat& status) {
  const auto path = folder.string();
  if (!S_ISDIR(status.st_mode)) {
    return {finding(Severity::failure, path + " is no folder", "Move it out of the way.")};
  }
  if (status.st_uid != ::geteuid()) {
    return {finding(Severity::failure, path + " belongs to another user",
                    "Run the host as the user whom the folder belongs to.")};
  }
  if ((status.st_mode & 077) != 0) {
    return {finding(Severity::warning, path + " is open to other users",
                    "The SDK makes it private when it keeps its first file. Look at what lies "
                    "there now: others may have read it.")};
  }
  return {};
}

}  // namespace

Findings checkDocuments(const Machine& machine) {
  const auto folder =
      machine.application.empty() ? machine.data : machine.data / machine.application / "Documents";
  const auto nearest = nearestExisting(folder);
  struct stat status {};
  if (::stat(nearest.c_str(), &status) != 0 || !S_ISDIR(status.st_mode)) {
    return {
        finding(Severity::failure, nearest.string() + " is no folder", "Move it out of the way.")};
  }
  Findings findings;
  if (nearest == folder && !machine.application.empty()) {
    ::lstat(folder.c_str(), &status);
    findings = faultsOf(folder, status);
  }
  if (const int code = whyNotWritable(nearest); code != 0) {
    findings.push_back(finding(Severity::failure,
                               "nothing can be kept in " + folder.string() + ": " + reason(code),
                               kElsewhere));
    return findings;
  }
  std::string found = folder.string() + " can be written";
  if (nearest == folder && !machine.application.empty()) found += " and is the user's alone";
  struct statvfs space {};
  if (::statvfs(nearest.c_str(), &space) == 0) {
    const std::uint64_t room = std::uint64_t{space.f_bavail} * space.f_frsize;
    const auto text = "room for " + std::to_string(room >> 20) + " MiB";
    found += ", " + text;
    if (room < machine.roomWanted) {
      findings.push_back(finding(Severity::warning, folder.string() + " has " + text + " only",
                                 "Make room: a verification keeps up to three files there."));
    }
  }
  if (findings.empty()) findings.push_back(finding(Severity::ok, std::move(found), {}));
  return findings;
}

}  // namespace kestrova::doctor
