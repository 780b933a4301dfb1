#include "platform/graphics/RowFilter.h"

#include <algorithm>
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

struct Predictions {
  const std::uint8_t* left;
  const std::uint8_t* above;
  const std::uint8_t* corner;

  // Calls `use` with the function that predicts the i-th byte of the row.
  template <typename Use>
  auto with(RowFilter filter, Use use) const {
    using Byte = std::uint8_t;
    switch (filter) {
      case RowFilter::none:
        return use([](std::size_t) { return Byte{0}; });
      case RowFilter::sub:
        return use([p = *this](std::size_t i) { return p.left[i]; });
      case RowFilter::up:
        return use([p = *this](std::size_t i) { return p.above[i]; });
      case RowFilter::average:
        return use(
            [p = *this](std::size_t i) { return static_cast<Byte>((p.left[i] + p.above[i]) / 2); });
      default:
        return use(
            [p = *this](std::size_t i) { return paeth(p.left[i], p.above[i], p.corner[i]); });
    }
  }
};

}  // namespace

RowFilter bestFilter(const std::uint8_t* row, const std::uint8_t* above, std::size_t size,
                     std::size_t pixelSize) {
  const Predictions predictions{row - pixelSize, above, above - pixelSize};
  auto best = RowFilter::none;
  std::uint32_t least = UINT32_MAX;
  for (const auto filter :
       {RowFilter::none, RowFilter::sub, RowFilter::up, RowFilter::average, RowFilter::paeth}) {
    const auto sum = predictions.with(filter, [row, size](auto prediction) {
      std::uint32_t total = 0;
      for (std::size_t i = 0; i < size; ++i) {
        const auto rest = static_cast<std::uint8_t>(row[i] - prediction(i));
        total += std::min<std::uint8_t>(rest, static_cast<std::uint8_t>(-rest));
      }
      return total;
    });
    if (sum < least) {
      least = sum;
      best = filter;
    }
  }
  return best;
}

void applyFilter(RowFilter filter, const std::uint8_t* row, const std::uint8_t* above,
                 std::size_t size, std::size_t pixelSize, std::uint8_t* to) {
  const Predictions predictions{row - pixelSize, above, above - pixelSize};
  predictions.with(filter, [row, size, to](auto prediction) {
    for (std::size_t i = 0; i < size; ++i) {
      to[i] = static_cast<std::uint8_t>(row[i] - prediction(i));
    }
  });
}

}  // namespace kestrova::platform
