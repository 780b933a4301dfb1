#pragma once

#include <cstddef>

namespace kestrova::platform {

// A row of a table, both counted from 0.
struct IndexPath {
  std::size_t row = 0;
  std::size_t section = 0;

  friend bool operator==(const IndexPath&, const IndexPath&) = default;
};

}  // namespace kestrova::platform
