#include <algorithm>
#include <cmath>
#include <fstream>
#include <string_view>
#include <system_error>

#include <grp.h>
#include <pwd.h>
#include <sys/stat.h>

#include "doctor/Checks.h"

namespace kestrova::doctor {

namespace {

namespace fs = std::filesystem;

bool isNumber(std::string_view text) {
  return !text.empty() && text.find_first_not_of("0123456789") == text.npos;
}

std::vector<fs::path> videoNodes(const fs::path& folder) {
  constexpr std::string_view kPrefix = "video";
  std::vector<fs::path> found;
  std::error_code none;
  for (const auto& entry : fs::directory_iterator(folder, none)) {
    const auto name = entry.path().filename().string();
    if (name.starts_with(kPrefix) && isNumber(std::string_view(name).substr(kPrefix.size()))) {
      found.push_back(entry.path());
    }
  }
  std::sort(found.begin(), found.end());
  return found;
}

std::string groupOf(gid_t group) {
  // NOLINTNEXTLINE(concurrency-mt-unsafe): there is one thread.
  const auto* const entry = ::getgrgid(group);
  return entry ? entry->gr_name : std::to_string(group);
}

std::string userOf(uid_t user) {
  // NOLINTNEXTLINE(concurrency-mt-unsafe): there is one thread.
  const auto* const entry = ::getpwuid(user);
  return entry ? entry->pw_name : std::to_string(user);
}

// Whoever may open the node by its owner, its group and its mode.
std::string whoMayOpen(const struct stat& node) {
  constexpr mode_t kBoth = 6;
  if ((node.st_mode & kBoth) == kBoth) return "everybody";
  std::string who = userOf(node.st_uid);
  if ((node.st_mode >> 3 & kBoth) == kBoth) who += " and the group " + groupOf(node.st_gid);
  return who;
}

// The processes that have the device open, as far as they can be looked into.
std::string holders(const fs::path& processes, const fs::path& device) {
  std::string who;
  std::error_code none;
  for (const auto& process : fs::directory_iterator(processes, none)) {
    if (!isNumber(process.path().filename().string())) continue;
    for (fs::directory_iterator open(process.path() / "fd", none), end; !none && open != end;
         open.increment(none)) {
      std::error_code gone;
      if (fs::read_symlink(open->path(), gone) != device) continue;
      std::string name;
      std::getline(std::ifstream(process.path() / "comm"), name);
      who += (who.empty() ? "" : ", ") + name + " (process " + process.path().filename().string() +
             ")";
      break;
    }
  }
  return who;
}

std::string formatsOf(const CameraFacts& facts) {
  std::string text;
  for (const auto& format : facts.formats) {
    text += (text.empty() ? "" : ", ") + format.code;
    if (format.width > 0) {
      text += " up to " + std::to_string(format.width) + " x " + std::to_string(format.height);
    }
    if (format.perSecond >= 1) {
      text += " at " + std::to_string(std::lround(format.perSecond)) + " a second";
    }
  }
  return text.empty() ? "no formats" : text;
}

Finding unopened(const fs::path& device, const CameraFacts& facts, const struct stat& node) {
  const auto why = std::generic_category().message(facts.error);
  std::string advice = "Unplug the camera and plug it in again, and look into the kernel's log.";
  if (facts.error == EACCES || facts.error == EPERM) {
    const auto group = groupOf(node.st_gid);
    advice = "It is open to " + whoMayOpen(node) +
             ". Add the user to the group (sudo usermod -aG " + group + " NAME) and log in again.";
  } else if (facts.error == EBUSY) {
    advice = "Another program uses it: end that one first.";
  }
  return {"camera", Severity::warning, device.string() + ": " + why, std::move(advice)};
}

}  // namespace

Findings checkCameras(const Machine& machine) {
  Findings findings;
  std::size_t usable = 0;
  for (const auto& device : videoNodes(machine.devices)) {
    const auto facts = machine.camera(device);
    struct stat node {};
    if (facts.error != 0 || ::stat(device.c_str(), &node) != 0) {
      findings.push_back(unopened(device, facts, node));
      continue;
    }
    if (!facts.givesPictures) {
      findings.push_back({"camera", Severity::note, device.string() + " is no camera",
                          "Nothing: most cameras have such a node beside their own."});
      continue;
    }
    ++usable;
    findings.push_back({"camera",
                        Severity::ok,
                        device.string() + ": " + facts.name + ", " + formatsOf(facts) +
                            "; open to " + whoMayOpen(node),
                        {}});
    if (const auto who = holders(machine.processes, device); !who.empty()) {
      findings.push_back({"camera", Severity::warning, device.string() + " is held by " + who,
                          "End that program before a verification: most cameras serve one."});
    }
  }
  if (usable == 0) {
    findings.push_back({"camera", Severity::failure, "no camera can be used",
                        "Connect a camera, or give the SDK one of the host's own "
                        "(CameraConfiguration)."});
  }
  return findings;
}

}  // namespace kestrova::doctor
