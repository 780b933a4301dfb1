#include "platform/graphics/PixelTarget.h"

#include <array>
#include <cstring>

#include "platform/graphics/AxisWeights.h"
#include "platform/graphics/Scaler.h"

namespace kestrova::platform {

namespace {

constexpr std::size_t kPixelSize = 4;

// `over` on top of `under`, both premultiplied: two channels at a time.
std::uint32_t compose(std::uint32_t over, std::uint32_t under) {
  const std::uint32_t rest = 255 - (over >> 24U);
  const auto scaled = [rest](std::uint32_t pair) {
    pair = (pair & 0xff00ffU) * rest + 0x800080U;
    return (pair + (pair >> 8U & 0xff00ffU)) >> 8U & 0xff00ffU;
  };
  return over + (scaled(under) | scaled(under >> 8U) << 8U);
}

// One axis of the source in the target: its place, and the way through memory. Where the source
// runs against the target's coordinates, places count from the far end.
struct Axis {
  std::ptrdiff_t offset(std::size_t position) const {
    return start + static_cast<std::ptrdiff_t>(position) * step;
  }

  double begin;
  double end;
  std::size_t limit;
  std::ptrdiff_t start;
  std::ptrdiff_t step;
};

Axis axis(double begin, double end, std::size_t limit, std::size_t stride, bool isReversed) {
  const auto step = static_cast<std::ptrdiff_t>(stride);
  if (!isReversed) return {begin, end, limit, 0, step};
  const auto length = static_cast<double>(limit);
  return {length - end, length - begin, limit, static_cast<std::ptrdiff_t>(limit - 1) * step,
          -step};
}

struct Turn {
  // Whether the source's columns run against the target's coordinates, and its rows.
  bool columns;
  bool rows;
};

// Index: the orientation.
constexpr std::array<Turn, 8> kTurns{{{false, false},
                                      {true, true},
                                      {true, false},
                                      {false, true},
                                      {true, false},
                                      {false, true},
                                      {false, false},
                                      {true, true}}};

}  // namespace

void PixelTarget::blend(std::uint8_t* pixel, std::uint32_t over) const {
  std::uint32_t word = over;
  if (over >> 24U != 255) {
    if (over == 0) return;
    std::memcpy(&word, pixel, kPixelSize);
    if (format == Format::noneSkipFirst) word = __builtin_bswap32(word) | 0xff000000U;
    word = compose(over, word);
  }
  if (format == Format::noneSkipFirst) word = __builtin_bswap32(word);
  std::memcpy(pixel, &word, kPixelSize);
}

bool PixelTarget::draw(PixelRows& source, UIImageOrientation orientation,
                       const CGRect& rect) const {
  const auto turn = kTurns.at(static_cast<std::size_t>(orientation));
  const bool swaps = swapsSides(orientation);
  const auto horizontal = [&](bool isReversed) {
    return axis(rect.minX(), rect.maxX(), width, kPixelSize, isReversed);
  };
  const auto vertical = [&](bool isReversed) {
    return axis(rect.minY(), rect.maxY(), height, bytesPerRow, isReversed);
  };
  const auto columnAxis = swaps ? vertical(turn.columns) : horizontal(turn.columns);
  const auto rowAxis = swaps ? horizontal(turn.rows) : vertical(turn.rows);
  const AxisWeights columns(source.width(), columnAxis.begin, columnAxis.end, columnAxis.limit);
  const AxisWeights rows(source.height(), rowAxis.begin, rowAxis.end, rowAxis.limit);
  if (columns.count() == 0) return true;
  Scaler scaler(source, columns, rows);
  for (std::size_t y = 0; y < rows.count(); ++y) {
    const auto* const row = scaler.next();
    if (!row) return false;
    auto* pixel = memory + rowAxis.offset(rows.first() + y) + columnAxis.offset(columns.first());
    for (std::size_t x = 0; x < columns.count(); ++x, pixel += columnAxis.step) {
      blend(pixel, row[x]);
    }
  }
  return true;
}

}  // namespace kestrova::platform
