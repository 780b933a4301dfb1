#include <array>
#include <string_view>

#include "doctor/Checks.h"
#include "platform/foundation/Bundle.h"
#include "platform/foundation/FileManager.h"

namespace kestrova::doctor {

namespace {

using platform::Bundle;

constexpr auto kReinstall = "Install the SDK's package again, or name the folder with --bundle.";

struct Resource {
  std::string_view name;
  std::string_view type;
  // How such a file begins.
  std::string_view beginning;
};

constexpr std::string_view kTrueType("\0\1\0\0", 4);
constexpr std::array kTypefaces{
    Resource{"Exo-Black", "ttf", kTrueType},     Resource{"Exo-Bold", "ttf", kTrueType},
    Resource{"Exo-ExtraBold", "ttf", kTrueType}, Resource{"Exo-Light", "ttf", kTrueType},
    Resource{"Exo-Medium", "ttf", kTrueType},    Resource{"Exo-Regular", "ttf", kTrueType},
    Resource{"Exo-SemiBold", "ttf", kTrueType}};
constexpr std::array kPictures{
    Resource{"iddocument", "png", "\x89PNG"}, Resource{"backsideiddocument", "png", "\x89PNG"},
    Resource{"headGIF", "gif", "GIF8"},       Resource{"IDGIF", "gif", "GIF8"},
    Resource{"verifiedBadge", "gif", "GIF8"}, Resource{"countries", "json", "["},
    Resource{"Colors", "json", "{"},          Resource{"KestrovaButton", "ui", "<"}};

// Why the resource cannot be used; empty where it can.
std::string fault(const Bundle& bundle, const Resource& resource) {
  const auto name = std::string(resource.name).append(".").append(resource.type);
  const auto path = bundle.path(resource.name, resource.type);
  if (!path) return name + " is missing";
  const auto contents = platform::FileManager::contents(*path);
  if (!contents) return contents.error().localizedDescription;
  const auto begins = contents.value().view().starts_with(resource.beginning);
  return begins ? std::string() : name + " is damaged";
}

template <typename Resources>
bool appendFaults(Findings& findings, const Bundle& bundle, const Resources& resources) {
  const auto before = findings.size();
  for (const auto& resource : resources) {
    if (auto text = fault(bundle, resource); !text.empty()) {
      findings.push_back({"bundle", Severity::failure, std::move(text), kReinstall});
    }
  }
  return findings.size() == before;
}

std::optional<Bundle> bundleOf(const Machine& machine) {
  if (!machine.bundle.empty()) return Bundle::at(machine.bundle);
  const auto prefix = Bundle::containing(reinterpret_cast<const void*>(&bundleOf));
  const auto path = prefix.path("Kestrova", "bundle");
  return path ? Bundle::at(*path) : std::nullopt;
}

}  // namespace

Findings checkBundle(const Machine& machine) {
  const auto bundle = bundleOf(machine);
  if (!bundle) {
    const auto where = machine.bundle.empty() ? std::string("share/kestrova beside this program")
                                              : machine.bundle.string();
    return {{"bundle", Severity::failure, "no resource bundle at " + where, kReinstall}};
  }
  Findings findings;
  if (appendFaults(findings, *bundle, kPictures)) {
    findings.push_back({"bundle", Severity::ok, bundle->bundlePath().string(), {}});
  }
  if (appendFaults(findings, *bundle, kTypefaces)) {
    findings.push_back({"bundle", Severity::ok, "all typefaces of the flow are there", {}});
  }
  if (!std::filesystem::exists(bundle->bundlePath() / "FrameworkStoryboard" / "storyboard.json")) {
    findings.push_back(
        {"bundle", Severity::failure, "the screens (FrameworkStoryboard) are missing", kReinstall});
  }
  return findings;
}

}  // namespace kestrova::doctor
