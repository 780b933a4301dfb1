#include <algorithm>
#include <cerrno>
#include <cmath>
#include <fstream>
#include <functional>
#include <set>
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

// Reading and writing.
constexpr mode_t kBoth = 6;

// The group whose members may open the node; empty where its mode does not let them, or where it is
// the superuser's, which nobody is to join.
std::string openingGroup(const struct stat& node) {
  return node.st_gid != 0 && (node.st_mode >> 3 & kBoth) == kBoth ? groupOf(node.st_gid) : "";
}

// Whoever may open the node by its owner, its group and its mode.
std::string whoMayOpen(const struct stat& node) {
  if ((node.st_mode & kBoth) == kBoth) return "everybody";
  std::string who = userOf(node.st_uid);
  if (const auto group = openingGroup(node); !group.empty()) who += " and the group " + group;
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

// What the SDK's cameras read: Motion JPEG, and the plain formats that the media framework knows.
// Of the others the common ones are raw sensors (Bayer) and streams (H.264).
bool isRead(const CameraFormat& format) {
  static const std::set<std::string, std::less<>> kRead{
      "MJPG", "JPEG", "PJPG", "YUYV", "YVYU", "UYVY", "NV12", "NM12", "NV21", "NM21", "NV16",
      "NM16", "NV61", "NM61", "NV24", "YU12", "YM12", "YV12", "YM21", "422P", "YM16", "411P",
      "YUV9", "YVU9", "GREY", "Y16 ", "RGB3", "BGR3", "RGB4", "BGR4", "XR24", "AR24", "XB24",
      "AB24", "BX24", "BA24", "RX24", "RA24", "RGBP", "RGBO", "XR15"};
  return kRead.contains(format.code);
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

std::string adviceFor(int error, const struct stat& node) {
  if (error == EBUSY) return "Another program uses it: end that one first.";
  if (error != EACCES && error != EPERM) {
    return "Unplug the camera and plug it in again, and look into the kernel's log.";
  }
  const auto group = openingGroup(node);
  const auto who = "It is open to " + whoMayOpen(node) + ". ";
  if (group.empty()) {
    return who +
           "Open it to the group video by a rule of udev (KERNEL==\"video*\", GROUP=\"video\", "
           "MODE=\"0660\"), and add the user to that group.";
  }
  return who + "Add the user to the group (sudo usermod -aG " + group + " NAME) and log in again.";
}

}  // namespace

Findings checkCameras(const Machine& machine) {
  Findings findings;
  std::size_t usable = 0;
  for (const auto& device : videoNodes(machine.devices)) {
    const auto facts = machine.camera(device);
    struct stat node {};
    const int error = ::stat(device.c_str(), &node) == 0 ? facts.error : errno;
    const auto who = holders(machine.processes, device);
    if (error != 0) {
      findings.push_back({"camera", Severity::warning,
                          device.string() + ": " + std::generic_category().message(error) +
                              (who.empty() ? "" : "; held by " + who),
                          adviceFor(error, node)});
      continue;
    }
    if (!facts.givesPictures) {
      findings.push_back({"camera", Severity::note, device.string() + " is no camera",
                          "Nothing: most cameras have such a node beside their own."});
      continue;
    }
    if (std::none_of(facts.formats.begin(), facts.formats.end(), isRead)) {
      findings.push_back(
          {"camera", Severity::warning,
           device.string() + ": " + facts.name +
               " gives no format that the SDK reads: " + formatsOf(facts),
           "A raw sensor needs its image processor's own node; else give the SDK a camera of the "
           "host's own (CameraConfiguration)."});
      continue;
    }
    ++usable;
    findings.push_back({"camera",
                        Severity::ok,
                        device.string() + ": " + facts.name + ", " + formatsOf(facts) +
                            "; open to " + whoMayOpen(node),
                        {}});
    if (!who.empty()) {
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
