#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace kestrova::sandbox {

// The decoded fields of a request and what deviated from the contract on the way.
struct Fields {
  std::vector<std::pair<std::string, std::string>> pairs;  // in order of arrival
  std::vector<std::string> deviations;

  // The first value under the key; nullptr when there is none.
  const std::string* find(std::string_view key) const;
};

// Reads a body of type application/x-www-form-urlencoded. Always yields what can be made out of it:
// a broken escape stays as it is.
Fields readForm(std::string_view contentType, std::string_view body);

// Without any check; + is a space, as browsers and curl send it.
Fields readLooseForm(std::string_view body);

}  // namespace kestrova::sandbox
