#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "platform/foundation/JSONValue.h"
#include "sdk/Platform.h"

namespace kestrova {

// A country, or the divider between the pinned countries and the rest. Keys: "code" (two letters in
// lower case, the name of the flag's image, what the backend gets) and "name" (in lower case).
using CountryEntry = JSONDictionary;

// The code of the divider.
inline constexpr std::string_view kSeparatorCode = "none";

const std::string& codeOf(const CountryEntry& country);
const std::string& nameOf(const CountryEntry& country);
bool isSeparator(const CountryEntry& country);

// The countries of a resource file: de, gb, us, fr and es first, in the reverse of their order in
// the file, the divider at position 5, then the rest. An element without a text "code" or "name" is
// left out with one line on standard output; a file that cannot be read or is no JSON array gives
// an empty list and one line. No divider where fewer than five entries stand before it.
std::vector<CountryEntry> countriesIn(const std::filesystem::path& file);

// The countries whose name, as stored, begins with the text in lower case. When there are none, the
// comparison ignores accents and kinds of apostrophes, so that "cote d'" finds "côte d’ivoire".
std::vector<CountryEntry> matching(const std::vector<CountryEntry>& countries,
                                   std::string_view searchText);

}  // namespace kestrova
