#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/foundation/NSError.h"

namespace kestrova::platform {

inline constexpr auto kNibErrorDomain = "NibErrorDomain";

// All that is wrong with a storyboard or nib.
class NibFaults {
 public:
  void add(std::string line) { lines_.push_back(std::move(line)); }
  // Those of a part, each after "<where>: ".
  void add(std::string_view where, const NibFaults& part) {
    for (const auto& line : part.lines_) add(std::string(where).append(": ").append(line));
  }
  bool isEmpty() const { return lines_.empty(); }
  std::size_t count() const { return lines_.size(); }

  // One error with a line for each.
  NSError error() const {
    std::string all;
    for (const auto& line : lines_) all.append(all.empty() ? "" : "\n").append(line);
    return {kNibErrorDomain, 1, std::move(all)};
  }

 private:
  std::vector<std::string> lines_;
};

}  // namespace kestrova::platform
