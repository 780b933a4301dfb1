#include "sdk/flow/CountryEntry.h"

#include <algorithm>
#include <array>

#include "platform/foundation/FileManager.h"
#include "platform/foundation/JSONSerialization.h"
#include "platform/foundation/Print.h"
#include "platform/foundation/Text.h"

namespace kestrova {

namespace {

constexpr std::array<std::string_view, 5> kPinned{"de", "gb", "us", "fr", "es"};
constexpr std::size_t kSeparatorPosition = 5;

const std::string& text(const CountryEntry& country, std::string_view key) {
  static const std::string empty;
  const auto* found = textForKey(country, key);
  return found ? *found : empty;
}

}  // namespace

const std::string& codeOf(const CountryEntry& country) {
  return text(country, "code");
}

const std::string& nameOf(const CountryEntry& country) {
  return text(country, "name");
}

bool isSeparator(const CountryEntry& country) {
  return codeOf(country) == kSeparatorCode;
}

std::vector<CountryEntry> countriesIn(const std::filesystem::path& file) {
  const auto bytes = FileManager::contents(file);
  if (!bytes) {
    print("Kestrova: the countries cannot be read: " + bytes.error().localizedDescription);
    return {};
  }
  const auto json = JSONSerialization::jsonObject(bytes.value().view());
  if (!json || !json.value().array()) {
    print("Kestrova: the countries are no JSON array");
    return {};
  }
  std::vector<CountryEntry> countries;
  for (const auto& element : *json.value().array()) {
    const auto* country = element.dictionary();
    if (!country) continue;
    const auto* code = textForKey(*country, "code");
    if (!code || !textForKey(*country, "name")) {
      print("Kestrova: an entry of the countries is left out, it has no code or no name: " +
            description(*country));
      continue;
    }
    const bool pinned = std::find(kPinned.begin(), kPinned.end(), *code) != kPinned.end();
    countries.insert(pinned ? countries.begin() : countries.end(), *country);
  }
  if (countries.size() >= kSeparatorPosition) {
    countries.insert(countries.begin() + kSeparatorPosition,
                     CountryEntry{{"code", kSeparatorCode}, {"name", ""}});
  }
  return countries;
}

std::vector<CountryEntry> matching(const std::vector<CountryEntry>& countries,
                                   std::string_view searchText) {
  const std::string prefix = lowercased(searchText);
  const std::string folded = foldingAccentsAndApostrophes(prefix);
  std::vector<CountryEntry> kept;
  std::copy_if(countries.begin(), countries.end(), std::back_inserter(kept),
               [&](const auto& country) { return nameOf(country).starts_with(prefix); });
  if (!kept.empty()) return kept;
  std::copy_if(countries.begin(), countries.end(), std::back_inserter(kept),
               [&](const auto& country) {
                 return foldingAccentsAndApostrophes(nameOf(country)).starts_with(folded);
               });
  return kept;
}

}  // namespace kestrova
