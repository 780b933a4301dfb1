#pragma once

#include <string>
#include <string_view>

namespace kestrova::sandbox {

// A recorded deviation as its two sides.
struct DeviationText {
  std::string where;  // the part of the request; empty: all of it
  std::string expected;
  std::string came;
};

DeviationText readDeviation(std::string_view deviation);

}  // namespace kestrova::sandbox
