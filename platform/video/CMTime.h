#pragma once

#include <cstdint>
#include <numeric>

namespace kestrova::platform {

// A time of `value` / `timescale` seconds. A timescale is positive.
struct CMTime {
  std::int64_t value = 0;
  std::int32_t timescale = 1;

  double seconds() const { return static_cast<double>(value) / timescale; }

  // In the least timescale that holds both.
  friend CMTime operator+(const CMTime& a, const CMTime& b) {
    const auto scale = std::lcm(a.timescale, b.timescale);
    return {a.value * (scale / a.timescale) + b.value * (scale / b.timescale), scale};
  }
  friend bool operator==(const CMTime&, const CMTime&) = default;
};

inline constexpr CMTime kCMTimeZero{0, 1};

}  // namespace kestrova::platform
