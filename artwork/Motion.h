#pragma once

#include <algorithm>
#include <cmath>
#include <numbers>

// Motion over a share of time from 0 to 1.
namespace kestrova::artwork {

// The share of the way from `begin` to `end` at `time`, held at both ends.
inline double share(double time, double begin, double end) {
  return std::clamp((time - begin) / (end - begin), 0.0, 1.0);
}

inline double mix(double from, double to, double share) {
  return from + (to - from) * share;
}

// Sets off and arrives gently.
inline double easeInOut(double share) {
  return (1 - std::cos(std::numbers::pi * share)) / 2;
}

inline double easeOut(double share) {
  return 1 - std::pow(1 - share, 3);
}

// Goes a little too far and comes back.
inline double easeOutBack(double share) {
  constexpr double kOvershoot = 1.5;
  const double rest = share - 1;
  return 1 + (kOvershoot + 1) * std::pow(rest, 3) + kOvershoot * rest * rest;
}

}  // namespace kestrova::artwork
