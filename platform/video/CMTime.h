#pragma once

#include <cstdint>
#include <limits>
#include <numeric>

namespace kestrova::platform {

inline constexpr std::uint32_t kCMTimeFlags_Valid = 1;

// A time of `value` / `timescale` seconds. Default-constructed it is invalid. Times of two epochs
// belong to two time lines.
struct CMTime {
  std::int64_t value = 0;
  std::int32_t timescale = 0;
  std::uint32_t flags = 0;
  std::int64_t epoch = 0;

  bool isValid() const { return (flags & kCMTimeFlags_Valid) != 0 && timescale > 0; }

  // In the smallest timescale that holds both. Invalid if either is, if their epochs differ, and
  // if the sum does not fit.
  friend CMTime operator+(const CMTime& a, const CMTime& b) {
    if (!a.isValid() || !b.isValid() || a.epoch != b.epoch) return {};
    const auto scale = std::lcm<std::int64_t>(a.timescale, b.timescale);
    std::int64_t first = 0;
    std::int64_t second = 0;
    CMTime sum{0, static_cast<std::int32_t>(scale), kCMTimeFlags_Valid, a.epoch};
    if (scale > std::numeric_limits<std::int32_t>::max() ||
        __builtin_mul_overflow(a.value, scale / a.timescale, &first) ||
        __builtin_mul_overflow(b.value, scale / b.timescale, &second) ||
        __builtin_add_overflow(first, second, &sum.value)) {
      return {};
    }
    return sum;
  }
  friend bool operator==(const CMTime&, const CMTime&) = default;
};

constexpr CMTime CMTimeMake(std::int64_t value, std::int32_t timescale) {
  return {value, timescale, kCMTimeFlags_Valid, 0};
}

inline constexpr CMTime kCMTimeZero = CMTimeMake(0, 1);

}  // namespace kestrova::platform
