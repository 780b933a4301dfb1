#pragma once

#include <algorithm>
#include <cstdint>

namespace kestrova::platform {

// A pixel 0xAARRGGBB with its colours multiplied by alpha.
inline std::uint32_t premultiplied(std::uint32_t straight) {
  const auto alpha = straight >> 24U;
  if (alpha == 255) return straight;
  const auto part = [&](unsigned shift) {
    return ((straight >> shift & 0xffU) * alpha + 127) / 255 << shift;
  };
  return alpha << 24U | part(16) | part(8) | part(0);
}

// The inverse; black where alpha is 0.
inline std::uint32_t straight(std::uint32_t premultiplied) {
  const auto alpha = premultiplied >> 24U;
  if (alpha == 255 || alpha == 0) return alpha == 0 ? 0 : premultiplied;
  const auto part = [&](unsigned shift) {
    const auto color = premultiplied >> shift & 0xffU;
    return std::min((color * 255 + alpha / 2) / alpha, 255U) << shift;
  };
  return alpha << 24U | part(16) | part(8) | part(0);
}

}  // namespace kestrova::platform
