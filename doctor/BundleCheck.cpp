#include <array>
#include <set>
#include <string>
#include <string_view>

#include "doctor/Checks.h"
#include "platform/foundation/Bundle.h"
#include "platform/foundation/FileManager.h"
#include "platform/foundation/JSONSerialization.h"

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
    Resource{"backsideIDGIF", "gif", "GIF8"}, Resource{"photoPageGIF", "gif", "GIF8"},
    Resource{"verifiedBadge", "gif", "GIF8"}, Resource{"DRIVERS_LICENSE", "svg", "<"},
    Resource{"KestrovaMark", "svg", "<"},     Resource{"NATIONAL_ID_CARD", "svg", "<"},
    Resource{"PASSPORT", "svg", "<"},         Resource{"arrowDown", "svg", "<"},
    Resource{"backChevron", "svg", "<"},      Resource{"cancelMark", "svg", "<"},
    Resource{"checkmark", "svg", "<"},        Resource{"closeCross", "svg", "<"},
    Resource{"cornerDecoration", "svg", "<"}, Resource{"cornersMark", "svg", "<"},
    Resource{"encryptionIcon", "svg", "<"},   Resource{"flashMark", "svg", "<"},
    Resource{"glareMark", "svg", "<"},        Resource{"greyCircleDefault", "svg", "<"},
    Resource{"lightMark", "svg", "<"},        Resource{"ovalMark", "svg", "<"},
    Resource{"readableMark", "svg", "<"},     Resource{"turnMark", "svg", "<"},
    Resource{"warningMark", "svg", "<"},      Resource{"Colors", "json", "{"},
    Resource{"KestrovaButton", "ui", "<"}};

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

Finding failure(std::string found) {
  return {"bundle", Severity::failure, std::move(found), kReinstall};
}

std::optional<platform::JSONValue> readJSON(const std::filesystem::path& file) {
  const auto bytes = platform::FileManager::contents(file);
  if (!bytes) return std::nullopt;
  auto value = platform::JSONSerialization::jsonObject(bytes.value().view());
  return value ? std::optional(std::move(value).value()) : std::nullopt;
}

// The files of all screens, and of the rows in their tables.
void collectViews(const platform::JSONValue& value, std::set<std::string>& views) {
  if (const auto* const array = value.array()) {
    for (const auto& element : *array) collectViews(element, views);
  }
  if (const auto* const dictionary = value.dictionary()) {
    if (const auto* const view = platform::textForKey(*dictionary, "view")) views.insert(*view);
    for (const auto& [key, element] : *dictionary) collectViews(element, views);
  }
}

void checkScreens(Findings& findings, const std::filesystem::path& folder) {
  const auto storyboard = readJSON(folder / "storyboard.json");
  const auto screens = Bundle::at(folder);
  std::set<std::string> views;
  if (storyboard) collectViews(*storyboard, views);
  if (!screens || views.empty()) {
    findings.push_back(failure("the screens (FrameworkStoryboard) are missing"));
    return;
  }
  for (const auto& view : views) {
    const auto name = std::filesystem::path(view).stem().string();
    if (auto text = fault(*screens, {name, "ui", "<"}); !text.empty()) {
      findings.push_back(failure("a screen cannot be shown: " + text));
    }
  }
}

void checkCountries(Findings& findings, const Bundle& bundle) {
  const auto countries = readJSON(bundle.bundlePath() / "countries.json");
  const auto* const list = countries ? countries->array() : nullptr;
  if (!list || list->empty()) {
    findings.push_back(failure("the countries (countries.json) are missing"));
    return;
  }
  std::vector<std::string> missing;
  for (const auto& country : *list) {
    const auto* const entry = country.dictionary();
    const auto* const code = entry ? platform::textForKey(*entry, "code") : nullptr;
    if (code && !fault(bundle, {*code, "svg", "<"}).empty()) missing.push_back(*code);
  }
  if (missing.empty()) return;
  findings.push_back({"bundle", Severity::warning,
                      "flags are missing: " + std::to_string(missing.size()) + ", the first is " +
                          missing.front() + ".svg",
                      kReinstall});
}

template <typename Resources>
bool appendFaults(Findings& findings, const Bundle& bundle, const Resources& resources) {
  const auto before = findings.size();
  for (const auto& resource : resources) {
    if (auto text = fault(bundle, resource); !text.empty()) {
      findings.push_back(failure(std::move(text)));
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
    return {failure("no resource bundle at " + where)};
  }
  Findings findings;
  if (appendFaults(findings, *bundle, kPictures)) {
    findings.push_back({"bundle", Severity::ok, bundle->bundlePath().string(), {}});
  }
  if (appendFaults(findings, *bundle, kTypefaces)) {
    findings.push_back({"bundle", Severity::ok, "all typefaces of the flow are there", {}});
  }
  checkScreens(findings, bundle->bundlePath() / "FrameworkStoryboard");
  checkCountries(findings, *bundle);
  return findings;
}

}  // namespace kestrova::doctor
