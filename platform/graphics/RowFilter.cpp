#include "platform/graphics/RowFilter.h"

#include <algorithm>
#include <array>
#include <cstdlib>

namespace kestrova::platform {

namespace {

// Written in small integers, so that compilers make vector code of it.
using Small = std::int16_t;

Small distance(Small a, Small b) {
  return static_cast<Small>(a > b ? a - b : b - a);
}

std::uint8_t paeth(Small left, Small up, Small corner) {
  const auto toLeft = distance(up, corner);
  const auto toUp = distance(left, corner);
  const auto toCorner = static_cast<Small>(std::abs(left + up - 2 * corner));
  const Small upOrCorner = toUp <= toCorner ? up : corner;
  return static_cast<std::uint8_t>(toLeft <= std::min(toUp, toCorner) ? left : upOrCorner);
}

template <typename Prediction>
std::uint32_t sum(const std::uint8_t* row, std::size_t size, Prediction prediction) {
  std::uint32_t total = 0;
  for (std::size_t i = 0; i < size; ++i) {
    const auto rest = static_cast<std::uint8_t>(row[i] - prediction(i));
    total += std::min<std::uint8_t>(rest, static_cast<std::uint8_t>(-rest));
  }
  return total;
}

}  // namespace

RowFilter bestFilter(const std::uint8_t* row, const std::uint8_t* above, std::size_t size,
                     std::size_t pixelSize) {
  const auto* const left = row - pixelSize;
  const auto* const corner = above - pixelSize;
  using Byte = std::uint8_t;
  const std::array sums{
      sum(row, size, [](std::size_t) { return Byte{0}; }),
      sum(row, size, [left](std::size_t i) { return left[i]; }),
      sum(row, size, [above](std::size_t i) { return above[i]; }),
      sum(row, size, [=](std::size_t i) { return static_cast<Byte>((left[i] + above[i]) / 2); }),
      sum(row, size, [=](std::size_t i) { return paeth(left[i], above[i], corner[i]); })};
  return static_cast<RowFilter>(std::ranges::min_element(sums) - sums.begin());
}

}  // namespace kestrova::platform
